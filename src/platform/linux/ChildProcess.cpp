#include "platform/linux/ChildProcess.h"

#include "platform/linux/FileDescriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <vector>

namespace sonorel {

namespace {

using std::chrono::milliseconds;
using SteadyClock = std::chrono::steady_clock;

constexpr milliseconds kGrace{300};     // from the request to end to the order
constexpr milliseconds kPatience{2000}; // for one that hangs in the kernel after the order
constexpr milliseconds kTick{5};        // where the kernel does not tell about an exit

// Above the numbers that the child uses, so that none is overwritten while they are put in place.
FileDescriptor raised(FileDescriptor file) {
  return FileDescriptor(file.isOpen() ? ::fcntl(file.get(), F_DUPFD_CLOEXEC, kPassedFolder + 1) : -1);
}

struct Channel {
  FileDescriptor ours;
  FileDescriptor theirs;
};

Channel outputChannel() {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    return {};
  }
  ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return {FileDescriptor(ends[0]), raised(FileDescriptor(ends[1]))};
}

// A socket, because a write to a pipe that the child has closed would be a signal to the client.
Channel inputChannel(bool hasInput) {
  if (!hasInput) {
    return {FileDescriptor(), raised(FileDescriptor(::open("/dev/null", O_RDWR | O_CLOEXEC)))};
  }
  int ends[2] = {-1, -1};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
    return {};
  }
  return {FileDescriptor(ends[0]), raised(FileDescriptor(ends[1]))};
}

class SpawnActions {
public:
  SpawnActions(int input, int output, int folder) {
    posix_spawn_file_actions_init(&m_actions);
    posix_spawn_file_actions_adddup2(&m_actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&m_actions, output, STDERR_FILENO);
    if (folder >= 0) {
      posix_spawn_file_actions_adddup2(&m_actions, folder, kPassedFolder);
    }
    posix_spawn_file_actions_addclosefrom_np(&m_actions, folder >= 0 ? kPassedFolder + 1 : kPassedFolder);
  }
  ~SpawnActions() { posix_spawn_file_actions_destroy(&m_actions); }
  SpawnActions(const SpawnActions &) = delete;
  SpawnActions &operator=(const SpawnActions &) = delete;
  [[nodiscard]] const posix_spawn_file_actions_t *get() const { return &m_actions; }

private:
  posix_spawn_file_actions_t m_actions = {};
};

// The client's own signal handling is not the child's.
class SpawnAttributes {
public:
  explicit SpawnAttributes(bool ownSession) {
    posix_spawnattr_init(&m_attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&m_attributes, &signals);
    for (const int number : {SIGPIPE, SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGCHLD}) {
      sigaddset(&signals, number);
    }
    posix_spawnattr_setsigdefault(&m_attributes, &signals);
    const int group = ownSession ? POSIX_SPAWN_SETSID : POSIX_SPAWN_SETPGROUP;
    posix_spawnattr_setflags(&m_attributes,
                             static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | group));
  }
  ~SpawnAttributes() { posix_spawnattr_destroy(&m_attributes); }
  SpawnAttributes(const SpawnAttributes &) = delete;
  SpawnAttributes &operator=(const SpawnAttributes &) = delete;
  [[nodiscard]] const posix_spawnattr_t *get() const { return &m_attributes; }

private:
  posix_spawnattr_t m_attributes = {};
};

QByteArray nameOf(const QByteArray &variable) {
  return variable.left(variable.indexOf('=') + 1);
}

QList<QByteArray> environmentWith(const QList<QByteArray> &changes) {
  QList<QByteArray> variables = changes;
  for (char **entry = environ; *entry != nullptr; ++entry) {
    const QByteArray variable(*entry);
    const bool isChanged = std::any_of(changes.cbegin(), changes.cend(), [&variable](const QByteArray &change) {
      return nameOf(change) == nameOf(variable);
    });
    if (!isChanged) {
      variables.append(variable);
    }
  }
  return variables;
}

std::vector<char *> pointersTo(QList<QByteArray> &texts) {
  std::vector<char *> pointers;
  for (QByteArray &text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

struct Streams {
  int input = -1;
  int output = -1;
};

pid_t spawn(const HostCommand &command, const Streams &streams, bool ownSession,
            const QList<QByteArray> &environmentChanges) {
  QList<QByteArray> arguments{command.program};
  arguments.append(command.arguments);
  QList<QByteArray> environment = environmentWith(environmentChanges);
  FileDescriptor folder;
  if (command.passedFolder >= 0) {
    folder.reset(::fcntl(command.passedFolder, F_DUPFD_CLOEXEC, kPassedFolder + 1));
    if (!folder.isOpen()) {
      return 0;
    }
  }
  const SpawnActions actions(streams.input, streams.output, folder.get());
  const SpawnAttributes attributes(ownSession);
  pid_t process = 0;
  const int error = ::posix_spawn(&process, command.program.constData(), actions.get(), attributes.get(),
                                  pointersTo(arguments).data(), pointersTo(environment).data());
  return error == 0 ? process : 0;
}

// The C library's own function has no C++ declaration in its first version.
int openHandle(pid_t process) {
  return static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
}

// The child while it runs. Its number stays its own until statusOf, so that a signal never meets a stranger.
class Child {
public:
  Child(pid_t process, FileDescriptor input, FileDescriptor output, const QByteArray &text)
      : m_process(process), m_handle(openHandle(process)), m_input(std::move(input)), m_output(std::move(output)),
        m_text(text) {}

  // Serves the child's streams until it has ended or the time has come or wake can be read; true when it has ended.
  bool serveUntil(SteadyClock::time_point end, int wake) {
    for (;;) {
      if (hasEnded()) {
        return true;
      }
      if (SteadyClock::now() >= end || isReadable(wake)) {
        return false;
      }
      waitForEvents(end, wake);
    }
  }

  void signal(int number) const { ::kill(-m_process, number); }

  // After its end: what it left in the pipe, without waiting for those who inherited it.
  ToolResult collect() {
    readOutput();
    int status = 0;
    while (::waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
    }
    const int value = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return {ToolEnding::Exited, value, m_collected};
  }

  [[nodiscard]] const QByteArray &output() const { return m_collected; }

private:
  [[nodiscard]] bool hasEnded() const {
    siginfo_t facts = {};
    return ::waitid(P_PID, static_cast<id_t>(m_process), &facts, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           facts.si_pid == m_process;
  }

  static bool isReadable(int file) {
    pollfd one{file, POLLIN, 0};
    return file >= 0 && ::poll(&one, 1, 0) > 0;
  }

  void waitForEvents(SteadyClock::time_point end, int wake) {
    std::array<pollfd, 4> files{
        {{m_handle.get(), POLLIN, 0}, {wake, POLLIN, 0}, {m_output.get(), POLLIN, 0}, {m_input.get(), POLLOUT, 0}}};
    auto wait = std::chrono::ceil<milliseconds>(std::min(end - SteadyClock::now(), SteadyClock::duration(kLongest)));
    if (!m_handle.isOpen()) {
      wait = std::min(wait, kTick);
    }
    if (::poll(files.data(), files.size(), static_cast<int>(std::max(wait, milliseconds(0)).count())) <= 0) {
      return;
    }
    if (files[2].revents != 0) {
      readOutput();
    }
    if (files[3].revents != 0) {
      writeInput();
    }
  }

  void readOutput() {
    std::array<char, 16384> block = {};
    for (int turn = 0; turn < kTurns && m_output.isOpen(); ++turn) {
      const ssize_t got = ::read(m_output.get(), block.data(), block.size());
      if (got > 0) {
        m_collected.append(block.data(), std::min<qsizetype>(got, kOutputLimit - m_collected.size()));
      } else if (got < 0 && errno == EINTR) {
        continue;
      } else {
        if (got == 0 || errno != EAGAIN) {
          m_output.reset();
        }
        return;
      }
    }
  }

  void writeInput() {
    const QByteArray rest = m_text.mid(m_written);
    const ssize_t sent =
        ::send(m_input.get(), rest.constData(), static_cast<size_t>(rest.size()), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent < 0 && (errno == EAGAIN || errno == EINTR)) {
      return;
    }
    m_written += std::max<ssize_t>(sent, 0);
    if (sent < 0 || m_written >= m_text.size()) {
      m_input.reset(); // the child reads the end
    }
  }

  static constexpr milliseconds kLongest{60'000};
  static constexpr int kTurns = 16; // a talkative child does not keep the deadline waiting

  pid_t m_process;
  FileDescriptor m_handle;
  FileDescriptor m_input;
  FileDescriptor m_output;
  QByteArray m_text;
  qsizetype m_written = 0;
  QByteArray m_collected;
};

} // namespace

ToolResult runChild(const HostCommand &command, milliseconds deadline, std::stop_token stop) {
  if (stop.stop_requested()) {
    return {ToolEnding::Stopped, -1, {}};
  }
  const FileDescriptor wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  Channel input = inputChannel(command.input.has_value());
  Channel output = outputChannel();
  if (!wake.isOpen() || !input.theirs.isOpen() || !output.theirs.isOpen()) {
    return {};
  }
  const auto end = deadline.count() > 0 ? SteadyClock::now() + deadline : SteadyClock::time_point::max();
  const pid_t process = spawn(command, {input.theirs.get(), output.theirs.get()}, false,
                              command.environment + QList<QByteArray>{"LC_ALL=C"});
  if (process == 0) {
    return {};
  }
  input.theirs.reset();
  output.theirs.reset();
  Child child(process, std::move(input.ours), std::move(output.ours), command.input.value_or(QByteArray()));
  const std::stop_callback onStop(stop, [&wake] { ::eventfd_write(wake.get(), 1); });
  if (child.serveUntil(end, wake.get())) {
    return child.collect();
  }
  const ToolEnding ending = stop.stop_requested() ? ToolEnding::Stopped : ToolEnding::DeadlinePassed;
  child.signal(SIGTERM);
  child.serveUntil(SteadyClock::now() + kGrace, -1);
  child.signal(SIGKILL); // whatever it started goes with it
  if (!child.serveUntil(SteadyClock::now() + kPatience, -1)) {
    return {ending, 128 + SIGKILL, child.output()};
  }
  ToolResult result = child.collect();
  result.ending = ending;
  return result;
}

bool DetachedChildren::start(const HostCommand &command) {
  collect();
  const Channel nothing = inputChannel(false);
  if (!nothing.theirs.isOpen()) {
    return false;
  }
  const pid_t child = spawn(command, {nothing.theirs.get(), nothing.theirs.get()}, true, command.environment);
  if (child == 0) {
    return false;
  }
  const std::lock_guard lock(m_mutex);
  m_running.push_back(child);
  return true;
}

void DetachedChildren::collect() {
  const std::lock_guard lock(m_mutex);
  std::erase_if(m_running, [](pid_t child) { return ::waitpid(child, nullptr, WNOHANG) != 0; });
}

} // namespace sonorel
