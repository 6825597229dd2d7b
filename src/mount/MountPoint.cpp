#include "mount/MountPoint.h"

#include <fcntl.h>
#include <mntent.h>
#include <spawn.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

namespace sonorel {

namespace {

using namespace std::chrono_literals;

constexpr auto kHelperPatience = 1500ms;
constexpr int kCannotRun = 127;

// A helper that hangs is ended; its words are not passed on, because they could hold those that the client looks for.
int runHelper(const std::vector<std::string> &words) {
  std::vector<char *> arguments;
  for (const std::string &word : words) {
    arguments.push_back(const_cast<char *>(word.c_str()));
  }
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  pid_t helper = 0;
  const int error = ::posix_spawnp(&helper, arguments[0], &actions, &attributes, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  if (error != 0) {
    return kCannotRun;
  }
  int status = 0;
  const auto end = std::chrono::steady_clock::now() + kHelperPatience;
  while (::waitpid(helper, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() >= end) {
      ::kill(helper, SIGKILL);
      ::waitpid(helper, &status, 0);
      break;
    }
    std::this_thread::sleep_for(2ms);
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
}

int unmountAsOther(const std::string &point, const std::string &type, Unmount how) {
  if (type.starts_with("fuse")) {
    return runHelper({"fusermount3", how == Unmount::ByForce ? "-uz" : "-u", "--", point});
  }
  // A disk of another kind that the user may unmount by the system's own rules.
  return how == Unmount::ByForce ? runHelper({"umount", "-f", "--", point}) : runHelper({"umount", "--", point});
}

bool isDead(const std::string &point) {
  struct stat facts = {};
  return ::stat(point.c_str(), &facts) != 0 && (errno == ENOTCONN || errno == ECONNABORTED);
}

} // namespace

std::optional<std::string> realPoint(const std::string &point) {
  const std::filesystem::path path = std::filesystem::path(point).lexically_normal();
  const std::filesystem::path folder = path.has_filename() ? path : path.parent_path();
  const std::string parent = folder.has_parent_path() ? folder.parent_path().string() : std::string(".");
  const std::unique_ptr<char, void (*)(void *)> real(::realpath(parent.c_str(), nullptr), std::free);
  const std::string name = folder.filename().string();
  if (!real || name.empty() || name == "." || name == "..") {
    return std::nullopt;
  }
  const std::string base = real.get();
  return (base == "/" ? base : base + '/') + name;
}

std::optional<std::string> mountedType(const std::string &realPoint) {
  const std::unique_ptr<FILE, int (*)(FILE *)> table(::setmntent("/proc/self/mounts", "re"), ::endmntent);
  std::optional<std::string> type;
  mntent entry = {};
  std::array<char, PATH_MAX + 4096> text = {};
  while (table && ::getmntent_r(table.get(), &entry, text.data(), static_cast<int>(text.size())) != nullptr) {
    if (realPoint == entry.mnt_dir) {
      type = entry.mnt_type;
    }
  }
  return type;
}

bool isMountPoint(const std::string &realPoint) {
  return mountedType(realPoint).has_value();
}

Outcome prepareMountPoint(const std::string &realPoint) {
  if (const auto type = mountedType(realPoint)) {
    if (*type != kFileSystemType || !isDead(realPoint) || !unmountPoint(realPoint, Unmount::ByForce).isDone()) {
      return {ExitStatus::BadMountPoint, "something is mounted there already"};
    }
  }
  struct stat facts = {};
  if (::lstat(realPoint.c_str(), &facts) != 0 || !S_ISDIR(facts.st_mode)) {
    return {ExitStatus::BadMountPoint, "the mount point is no folder"};
  }
  std::error_code error;
  if (!std::filesystem::is_empty(realPoint, error) || error) {
    return {ExitStatus::BadMountPoint, "the mount point is not an empty folder"};
  }
  return {};
}

Outcome unmountPoint(const std::string &realPoint, Unmount how) {
  const auto type = mountedType(realPoint);
  if (!type) {
    return {ExitStatus::NotMounted, "nothing is mounted there"};
  }
  const int flags = UMOUNT_NOFOLLOW | (how == Unmount::ByForce ? MNT_DETACH : 0);
  if (::umount2(realPoint.c_str(), flags) == 0) {
    return {};
  }
  const bool isBusy = errno == EBUSY;
  const int status = isBusy ? 1 : unmountAsOther(realPoint, *type, how);
  if (status == 0 || !isMountPoint(realPoint)) {
    return {};
  }
  if (status == kCannotRun) {
    return {ExitStatus::NoFuse, "fusermount3 cannot be run"};
  }
  if (how == Unmount::ByForce) {
    return {ExitStatus::Failed, "it cannot be unmounted"};
  }
  // Whoever has a file open where no program serves it any more has nothing of it.
  if (*type == kFileSystemType && isDead(realPoint)) {
    return unmountPoint(realPoint, Unmount::ByForce);
  }
  return {ExitStatus::Busy, isBusy ? "it is in use" : "it cannot be unmounted"};
}

} // namespace sonorel
