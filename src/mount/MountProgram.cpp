#include "mount/MountProgram.h"

#include "mount/FuseLoop.h"
#include "mount/Handshake.h"
#include "mount/Help.h"
#include "mount/MountPoint.h"

#include <sys/prctl.h>
#include <sys/resource.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace sonorel {

namespace {

constexpr const char *kMountName = "sonorel-mount";
constexpr const char *kUnmountName = "sonorel-umount";
constexpr size_t kLongestUrl = 16384;

// The password lives in this process: nobody else's program may look into it, and no core dump keeps it.
void closeToOthers() {
  const rlimit none{0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
  ::prctl(PR_SET_DUMPABLE, 0);
}

// A connection that somebody left open would be taken for the one to the product, and no file is to be held open for
// as long as the mount lives.
void closeInherited() {
  ::close_range(STDERR_FILENO + 1, ~0U, 0);
}

// One line, or all there is.
std::string readUrl() {
  std::string text;
  text.reserve(kLongestUrl); // never moved, so that no copy stays behind
  char byte = 0;
  while (text.size() < kLongestUrl) {
    const ssize_t got = ::read(STDIN_FILENO, &byte, 1);
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0 || byte == '\n') {
      break;
    }
    text += byte;
  }
  return text;
}

void wipe(std::string &text) {
  ::explicit_bzero(text.data(), text.size());
  text.clear();
}

int ended(const Outcome &outcome, const char *program) {
  if (!outcome.isDone()) {
    const std::string line = printedLine(outcome, program);
    std::fputs(line.c_str(), stderr);
  }
  return static_cast<int>(outcome.status);
}

int refused(const char *usage) {
  std::fputs(usage, stderr);
  return static_cast<int>(ExitStatus::Usage);
}

// The second process, from the login to the end of the mount.
void serve(const MountUrl &url, const std::string &point, Handshake &handshake) {
  Watchdog watchdog;
  SmbSession session(url, watchdog);
  if (const Outcome reached = session.connect(); !reached.isDone()) {
    handshake.tell(reached);
    return;
  }
  ShareFiles files(session);
  FuseLoop loop(files, "//" + url.host + '/' + url.share, [&handshake] { return handshake.tell({}); });
  Outcome mounted;
  const bool isMounted = watchdog.mounted(
      point,
      [&] {
        mounted = loop.mount(point);
        if (mounted.isDone()) {
          Handshake::becomeIndependent();
        }
        return mounted.isDone();
      },
      [&] {
        static_cast<void>(unmountPoint(point, Unmount::ByForce));
        loop.exit();
      });
  if (!isMounted) {
    handshake.tell(mounted);
    return;
  }
  loop.run();
  session.close();
  static_cast<void>(unmountPoint(point, Unmount::ByForce));
  ::_exit(0);
}

} // namespace

int runMount(const std::vector<std::string> &arguments) {
  if (arguments.size() == 1 && arguments.front() == "--help") {
    std::fputs(kMountHelp, stdout);
    return 0;
  }
  if (arguments.size() == 1 && arguments.front() == "--version") {
    std::puts("sonorel-mount " SONOREL_VERSION);
    return 0;
  }
  if (arguments.size() != 1 || arguments.front().starts_with('-')) {
    return refused(kMountUsage);
  }
  closeToOthers();
  closeInherited();
  const auto point = realPoint(arguments.front());
  if (!point) {
    return ended({ExitStatus::BadMountPoint, "the mount point is no folder"}, kMountName);
  }
  std::string text = readUrl();
  auto url = parseMountUrl(text);
  wipe(text);
  if (!url) {
    return ended({ExitStatus::Usage, "the standard input is not //user:password@address[:port]/share"}, kMountName);
  }
  Outcome outcome = prepareMountPoint(*point);
  if (outcome.isDone()) {
    outcome = runInBackground([&](Handshake &handshake) { serve(*url, *point, handshake); });
  }
  wipe(url->password);
  return ended(outcome, kMountName);
}

int runUnmount(const std::vector<std::string> &arguments) {
  if (arguments.size() == 1 && arguments.front() == "--help") {
    std::fputs(kUnmountHelp, stdout);
    return 0;
  }
  const bool isForced = arguments.size() == 2 && arguments.front() == "-f";
  if ((arguments.size() != 1 && !isForced) || arguments.back().starts_with('-')) {
    return refused(kUnmountUsage);
  }
  const auto point = realPoint(arguments.back());
  if (!point) {
    return ended({ExitStatus::NotMounted, "nothing is mounted there"}, kUnmountName);
  }
  return ended(unmountPoint(*point, isForced ? Unmount::ByForce : Unmount::IfIdle), kUnmountName);
}

} // namespace sonorel
