#include "app/EndRequests.h"

#include <csignal>
#include <poll.h>
#include <sys/signalfd.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr unsigned kPatience = 15; // seconds from the second request to the end, whatever still waits

} // namespace

EndRequests::EndRequests() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    sigaddset(&signals, signal);
  }
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  m_signals.reset(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

void EndRequests::observe(const QDBusConnection &bus, std::function<void()> requested) {
  m_requested = std::move(requested);
  m_notifier.emplace(m_signals.get(), QSocketNotifier::Read);
  connect(&*m_notifier, &QSocketNotifier::activated, this, &EndRequests::readSignal);
  QDBusConnection(bus).connect(QString(), u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                               u"Disconnected"_s, this, SLOT(busLost()));
}

bool EndRequests::arrivesWithin(std::chrono::milliseconds time) const {
  pollfd signals{m_signals.get(), POLLIN, 0};
  return ::poll(&signals, 1, static_cast<int>(time.count())) == 1;
}

void EndRequests::readSignal() {
  signalfd_siginfo information{};
  while (::read(m_signals.get(), &information, sizeof information) == sizeof information) {
    if (++m_signalsSeen == 2) { // a further one must not prolong the time
      ::alarm(kPatience);
    }
    m_requested();
  }
}

void EndRequests::busLost() {
  // The session has ended: nobody can ask any more, and nobody would see an alert.
  ::alarm(kPatience);
  m_requested();
  m_requested();
}

} // namespace sonorel
