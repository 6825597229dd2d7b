#include "mount/Handshake.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>

namespace sonorel {

namespace {

// Whoever reads the parent's output to its end must not wait for the child.
void giveUpStreams() {
  const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    ::dup2(nothing, stream);
  }
  if (nothing > STDERR_FILENO) {
    ::close(nothing);
  }
}

std::string readAll(int file) {
  std::string text;
  char block[1024];
  for (;;) {
    const ssize_t got = ::read(file, block, sizeof block);
    if (got > 0) {
      text.append(block, static_cast<size_t>(got));
    } else if (got == 0 || errno != EINTR) {
      return text;
    }
  }
}

} // namespace

// One byte for the status, then the words.
bool Handshake::tell(const Outcome &outcome) {
  const std::string message = static_cast<char>(outcome.status) + outcome.text;
  const bool isTold =
      ::write(m_toParent.get(), message.data(), message.size()) == static_cast<ssize_t>(message.size());
  m_toParent.reset();
  return isTold;
}

void Handshake::becomeIndependent() {
  ::prctl(PR_SET_PDEATHSIG, 0);
  ::setsid();
}

Outcome runInBackground(const std::function<void(Handshake &)> &child) {
  int ends[2] = {-1, -1};
  const pid_t parent = ::getpid();
  ::signal(SIGPIPE, SIG_IGN);
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    return {ExitStatus::Failed, "no pipe can be made"};
  }
  FileDescriptor ours(ends[0]);
  FileDescriptor theirs(ends[1]);
  const pid_t process = ::fork();
  if (process < 0) {
    return {ExitStatus::Failed, "no process can be started"};
  }
  if (process == 0) {
    ours.reset();
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) {
      ::_exit(static_cast<int>(ExitStatus::Failed));
    }
    giveUpStreams();
    Handshake handshake(std::move(theirs));
    child(handshake);
    ::_exit(static_cast<int>(ExitStatus::Failed));
  }
  theirs.reset();
  const std::string message = readAll(ours.get());
  if (message.empty()) {
    ::waitpid(process, nullptr, 0);
    return {ExitStatus::Failed, "the mount program ended before it was done"};
  }
  return {static_cast<ExitStatus>(message.front()), message.substr(1)};
}

} // namespace sonorel
