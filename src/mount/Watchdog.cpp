#include "mount/Watchdog.h"

#include "mount/MountPoint.h"
#include "mount/Outcome.h"
#include "mount/Sockets.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <sys/timerfd.h>

#include <array>
#include <csignal>
#include <utility>

namespace sonorel {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kAgain{100}; // an operation that opens a new connection after the cut loses that one too

timespec timeOf(milliseconds time) {
  return {time.count() / 1000, (time.count() % 1000) * 1'000'000};
}

sigset_t endingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) {
    sigaddset(&signals, number);
  }
  return signals;
}

} // namespace

Watchdog::Watchdog()
    : m_timer(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)), m_stop(::eventfd(0, EFD_CLOEXEC)),
      m_mountTable(::open("/proc/self/mounts", O_RDONLY | O_CLOEXEC)) {
  const sigset_t signals = endingSignals();
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  m_signals.reset(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
  m_thread = std::thread([this] { watch(); });
}

Watchdog::~Watchdog() {
  ::eventfd_write(m_stop.get(), 1);
  m_thread.join();
}

Watchdog::Operation::Operation(Watchdog &watchdog, milliseconds limit) : m_watchdog(watchdog) {
  m_watchdog.m_wasCut = false;
  m_watchdog.arm(limit);
}

Watchdog::Operation::~Operation() {
  m_watchdog.arm(milliseconds(0));
}

bool Watchdog::Operation::wasCut() const {
  return m_watchdog.m_wasCut || m_watchdog.m_isEnding;
}

void Watchdog::arm(milliseconds limit) const {
  const itimerspec times{limit.count() > 0 ? timeOf(kAgain) : timespec{}, timeOf(limit)};
  ::timerfd_settime(m_timer.get(), 0, &times, nullptr);
}

bool Watchdog::mounted(const std::string &point, const std::function<bool()> &mount, std::function<void()> end) {
  const std::lock_guard lock(m_mutex);
  if (!mount()) {
    return false;
  }
  m_point = point;
  m_end = std::move(end);
  return true;
}

void Watchdog::watch() {
  for (;;) {
    std::array<pollfd, 4> files{{{m_stop.get(), POLLIN, 0},
                                 {m_signals.get(), POLLIN, 0},
                                 {m_timer.get(), POLLIN, 0},
                                 {m_mountTable.get(), POLLPRI, 0}}};
    if (::poll(files.data(), files.size(), -1) <= 0) {
      continue;
    }
    if (files[0].revents != 0) {
      return;
    }
    if (files[1].revents != 0) {
      hearSignal();
    }
    std::uint64_t times = 0;
    if (files[2].revents != 0 && ::read(m_timer.get(), &times, sizeof times) == sizeof times) {
      m_wasCut = true;
      cutConnections();
    }
    if (files[3].revents != 0) {
      const std::lock_guard lock(m_mutex);
      if (!m_point.empty() && !isMountPoint(m_point)) {
        finish();
      }
    }
  }
}

void Watchdog::hearSignal() {
  signalfd_siginfo facts = {};
  while (::read(m_signals.get(), &facts, sizeof facts) > 0) {
  }
  const std::lock_guard lock(m_mutex);
  if (m_point.empty()) {
    ::_exit(static_cast<int>(ExitStatus::Failed));
  }
  finish();
}

void Watchdog::finish() {
  if (!m_isEnding.exchange(true)) {
    m_end();
    arm(milliseconds(1)); // whatever is being asked has no time left
  }
}

} // namespace sonorel
