#include "scripts/PictureFile.h"

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/RegularFile.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/random.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>

namespace sonorel {

namespace {

// As in platform/ShareNames.h, which would bring Qt into the exporter.
constexpr const char *kTemporaryPrefix = ".sonorel-";

volatile std::sig_atomic_t endRequested = 0;

[[noreturn]] void fail(const std::string &what) {
  throw std::system_error(errno, std::generic_category(), what);
}

void requireNameOfOwn(const std::string &name) {
  if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos) {
    throw std::invalid_argument("not a name: \"" + name + '"');
  }
}

std::string randomName() {
  std::array<unsigned char, 4> random = {};
  if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) {
    fail("getrandom");
  }
  constexpr const char *kDigits = "0123456789abcdef";
  std::string name = kTemporaryPrefix;
  for (const unsigned char byte : random) {
    name += kDigits[byte >> 4U];
    name += kDigits[byte & 15U];
  }
  return name;
}

bool standsThere(const FileDescriptor &folder, const std::string &name, std::string_view bytes) {
  struct stat facts = {};
  if (::fstatat(folder.get(), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno != ENOENT) {
      fail(name);
    }
    return false;
  }
  if (S_ISDIR(facts.st_mode)) {
    throw std::runtime_error(name + " is a folder");
  }
  if (!S_ISREG(facts.st_mode) || static_cast<std::size_t>(facts.st_size) != bytes.size()) {
    return false;
  }
  const FileDescriptor file(::openat(folder.get(), name.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
  const auto there = wholeOf(file, bytes.size());
  return there && *there == bytes;
}

void writeAll(const FileDescriptor &file, std::string_view bytes) {
  while (!bytes.empty()) {
    if (endRequested != 0) {
      throw std::runtime_error("asked to end");
    }
    const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
    if (written > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (written == 0 || errno != EINTR) {
      errno = written == 0 ? EIO : errno;
      fail("the picture cannot be written");
    }
  }
}

} // namespace

std::string pictureFolder(const std::string &musicFolder, const std::string &folders) {
  if (!musicFolder.starts_with('/')) {
    throw std::invalid_argument("SONOREL_MUSIC_FOLDER is not an absolute path");
  }
  std::string path = musicFolder.ends_with('/') ? musicFolder : musicFolder + '/';
  std::size_t begin = 0;
  while (begin < folders.size()) {
    const std::size_t end = folders.find(':', begin);
    const std::string name = folders.substr(begin, end - begin);
    requireNameOfOwn(name);
    path += name + '/';
    begin = end == std::string::npos ? end : end + 1;
  }
  return path;
}

void removeLeftOver(const std::string &folder, const std::string &temporaryName) {
  if (temporaryName.empty()) {
    return;
  }
  requireNameOfOwn(temporaryName);
  if (!temporaryName.starts_with(kTemporaryPrefix)) {
    throw std::invalid_argument("not a temporary name: \"" + temporaryName + '"');
  }
  ::unlink((folder + temporaryName).c_str()); // as a rule there is none
}

void placePicture(const std::string &folder, const std::string &name, std::string_view bytes,
                  const std::string &temporaryName) {
  requireNameOfOwn(name);
  const FileDescriptor place(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!place.isOpen()) {
    fail(folder);
  }
  if (standsThere(place, name, bytes)) {
    return;
  }
  const std::string temporary = temporaryName.empty() ? randomName() : temporaryName;
  FileDescriptor file(::openat(place.get(), temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!file.isOpen()) {
    fail(folder);
  }
  try {
    writeAll(file, bytes);
    // What a network file system could not write may be reported only here.
    if (::close(file.release()) != 0) {
      fail("the picture cannot be written");
    }
    if (::renameat(place.get(), temporary.c_str(), place.get(), name.c_str()) != 0) {
      fail(name);
    }
  } catch (...) {
    ::unlinkat(place.get(), temporary.c_str(), 0);
    throw;
  }
}

void obeyRequestsToEnd() {
  struct sigaction action = {};
  action.sa_handler = [](int) { endRequested = 1; };
  ::sigaction(SIGTERM, &action, nullptr); // without SA_RESTART: a write that waits is interrupted
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
}

} // namespace sonorel
