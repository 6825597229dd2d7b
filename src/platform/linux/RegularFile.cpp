#include "platform/linux/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace sonorel {

FileDescriptor openRegularFile(const std::string &path) {
  struct stat facts = {};
  // Devices can react to being opened, so the kind is looked at before as well as after; O_NONBLOCK: opening a
  // pipe that has taken the name meanwhile must not wait for a writer.
  if (::stat(path.c_str(), &facts) != 0 || !S_ISREG(facts.st_mode)) {
    return {};
  }
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  if (!file.isOpen() || ::fstat(file.get(), &facts) != 0 || !S_ISREG(facts.st_mode)) {
    return {};
  }
  return file;
}

std::optional<std::string> wholeOf(const FileDescriptor &file, std::size_t limit) {
  struct stat facts = {};
  if (!file.isOpen() || ::fstat(file.get(), &facts) != 0 || facts.st_size < 0 ||
      static_cast<std::size_t>(facts.st_size) > limit) {
    return std::nullopt;
  }
  std::string bytes(static_cast<std::size_t>(facts.st_size), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t got = ::pread(file.get(), bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0) {
      return std::nullopt; // cut shorter meanwhile
    }
    done += static_cast<std::size_t>(got);
  }
  return bytes;
}

} // namespace sonorel
