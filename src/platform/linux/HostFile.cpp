#include "platform/linux/HostFile.h"

#include "platform/linux/SystemError.h"

#include <fcntl.h>

#include <cerrno>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr int kOpenFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

void requireRegular(const FileDescriptor &file, const QString &shown) {
  struct stat facts = {};
  if (::fstat(file.get(), &facts) != 0) {
    throw systemFailure(errno, shown);
  }
  if (!S_ISREG(facts.st_mode)) {
    throw Failure(u"not a regular file: "_s + shown);
  }
}

// Devices can react to being opened, so the kind is looked at before as well as after.
void refuseOtherKinds(const Place &place, const QString &shown) {
  const auto facts = statOf(place, Links::Follow, shown);
  if (facts && !S_ISREG(facts->st_mode)) {
    throw Failure(u"not a regular file: "_s + shown);
  }
}

FileDescriptor opened(const Place &place, int flags, mode_t mode, const QString &shown) {
  for (;;) {
    const int fd = ::openat(place.at(), place.path.constData(), flags | kOpenFlags, mode);
    if (fd >= 0) {
      return FileDescriptor(fd);
    }
    if (errno != EINTR) {
      throw systemFailure(errno, shown);
    }
  }
}

} // namespace

std::optional<struct stat> statOf(const Place &place, Links links, const QString &shown) {
  struct stat facts = {};
  const int flags = links == Links::Follow ? 0 : AT_SYMLINK_NOFOLLOW;
  if (::fstatat(place.at(), place.path.constData(), &facts, flags) == 0) {
    return facts;
  }
  const int error = errno;
  if (provesAbsence(error)) {
    return std::nullopt;
  }
  throw Failure(systemFailure(error, shown).reason(), FailureKind::Unknown);
}

FileAttributes attributesOf(const struct stat &facts) {
  FileAttributes found;
  found.kind = S_ISREG(facts.st_mode)   ? FileKind::File
               : S_ISDIR(facts.st_mode) ? FileKind::Folder
               : S_ISLNK(facts.st_mode) ? FileKind::Link
                                        : FileKind::Other;
  found.size = static_cast<quint64>(facts.st_size);
  found.modifiedSeconds = facts.st_mtim.tv_sec;
  found.modifiedNanoseconds = static_cast<qint32>(facts.st_mtim.tv_nsec);
  found.mode = facts.st_mode & 07777;
  found.fileId = facts.st_ino;
  return found;
}

FileDescriptor openForReading(const Place &place, const QString &shown) {
  refuseOtherKinds(place, shown);
  FileDescriptor file = opened(place, O_RDONLY, 0, shown);
  requireRegular(file, shown);
  return file;
}

FileDescriptor openForWriting(const Place &place, const QString &shown) {
  refuseOtherKinds(place, shown);
  FileDescriptor file = opened(place, O_WRONLY | O_CREAT, 0666, shown);
  requireRegular(file, shown);
  if (::ftruncate(file.get(), 0) != 0) {
    throw systemFailure(errno, shown);
  }
  return file;
}

FileDescriptor createNew(const Place &place, mode_t mode, const QString &shown) {
  return opened(place, O_WRONLY | O_CREAT | O_EXCL, mode, shown);
}

void writeAll(const FileDescriptor &file, const QByteArray &bytes, const QString &shown) {
  const char *next = bytes.constData();
  auto left = static_cast<size_t>(bytes.size());
  while (left > 0) {
    const ssize_t written = ::write(file.get(), next, left);
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written <= 0) {
      throw systemFailure(written == 0 ? EIO : errno, shown);
    }
    next += written;
    left -= static_cast<size_t>(written);
  }
}

void syncToDisk(const FileDescriptor &file, const QString &shown) {
  // Some network file systems have no such call; there the bytes are at the server once they are written.
  if (::fsync(file.get()) != 0 && errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) {
    throw systemFailure(errno, shown);
  }
}

void closeChecked(FileDescriptor file, const QString &shown) {
  if (::close(file.release()) != 0) {
    throw systemFailure(errno, shown);
  }
}

void writeNew(const Place &place, const QByteArray &bytes, const QString &shown) {
  FileDescriptor file = createNew(place, 0666, shown);
  try {
    writeAll(file, bytes, shown);
    closeChecked(std::move(file), shown);
  } catch (const Failure &e) {
    if (e.kind() != FailureKind::Unknown) {
      ::unlinkat(place.at(), place.path.constData(), 0);
    }
    throw;
  }
}

} // namespace sonorel
