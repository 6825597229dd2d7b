#include "platform/linux/LinuxFileSystem.h"

#include "platform/linux/HostFile.h"
#include "platform/linux/SystemError.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/statvfs.h>

#include <cerrno>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

class FlockLock final : public FileLock {
public:
  explicit FlockLock(FileDescriptor file) : m_file(std::move(file)) {}

private:
  FileDescriptor m_file;
};

struct FolderCloser {
  void operator()(DIR *folder) const { ::closedir(folder); }
};

// This question is never answered from memory.
void askForSpace(const QByteArray &path, Volume &volume) {
  struct statvfs facts = {};
  volume.answers = ::statvfs(path.constData(), &facts) == 0;
  if (volume.answers) {
    const quint64 unit = facts.f_frsize != 0 ? facts.f_frsize : facts.f_bsize;
    volume.freeBytes = unit * facts.f_bavail;
  }
}

} // namespace

LinuxFileSystem::LinuxFileSystem(Roots roots, QString temporaryMark, std::function<void(const QString &)> log)
    : m_volumes(std::move(roots)), m_temporaryMark(std::move(temporaryMark)), m_log(std::move(log)) {}

void LinuxFileSystem::note(const QString &line) const {
  if (m_log) {
    m_log(line);
  }
}

Presence LinuxFileSystem::presence(const QString &path) {
  try {
    return attributes(path, Links::Follow) ? Presence::Present : Presence::Absent;
  } catch (const Failure &) {
    return Presence::Unknown;
  }
}

std::optional<FileAttributes> LinuxFileSystem::attributes(const QString &path, Links links) {
  try {
    const auto facts = statOf(m_volumes.place(path, Access::Read), links, path);
    return facts ? std::optional(attributesOf(*facts)) : std::nullopt;
  } catch (const Failure &e) {
    if (e.kind() == FailureKind::Absent) {
      return std::nullopt;
    }
    throw;
  }
}

QByteArray LinuxFileSystem::read(const QString &path, quint64 limit) {
  const FileDescriptor file = openForReading(m_volumes.place(path, Access::Read), path);
  struct stat facts = {};
  if (::fstat(file.get(), &facts) != 0) {
    throw systemFailure(errno, path);
  }
  const auto refuse = [&path] { throw Failure(u"larger than allowed: "_s + path); };
  if (static_cast<quint64>(facts.st_size) > limit) {
    refuse();
  }
  // One byte more than the file has: the second call then finds the end at once.
  QByteArray bytes(facts.st_size + 1, Qt::Uninitialized);
  qsizetype filled = 0;
  for (;;) {
    if (filled == bytes.size()) {
      bytes.resize(bytes.size() * 2);
    }
    const ssize_t got = ::read(file.get(), bytes.data() + filled, static_cast<size_t>(bytes.size() - filled));
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got < 0) {
      throw systemFailure(errno, path);
    }
    if (got == 0) {
      break;
    }
    filled += got;
    if (static_cast<quint64>(filled) > limit) {
      refuse(); // it grew meanwhile
    }
  }
  bytes.truncate(filled);
  return bytes;
}

bool LinuxFileSystem::canRead(const QString &path) {
  try {
    return openForReading(m_volumes.place(path, Access::Read), path).isOpen();
  } catch (const Failure &) {
    return false;
  }
}

bool LinuxFileSystem::sameFile(const QString &a, const QString &b) {
  try {
    const auto first = statOf(m_volumes.place(a, Access::Read), Links::Follow, a);
    const auto second = statOf(m_volumes.place(b, Access::Read), Links::Follow, b);
    return first && second && first->st_dev == second->st_dev && first->st_ino == second->st_ino;
  } catch (const Failure &) {
    return false;
  }
}

QStringList LinuxFileSystem::list(const QString &path) {
  const Place place = m_volumes.place(path, Access::Read);
  FileDescriptor file(::openat(place.at(), place.path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!file.isOpen()) {
    const int error = errno;
    const bool isOther = error == ENOTDIR && presence(path) == Presence::Present;
    throw isOther ? Failure(u"not a folder: "_s + path) : systemFailure(error, path);
  }
  const std::unique_ptr<DIR, FolderCloser> folder(::fdopendir(file.get()));
  if (!folder) {
    throw systemFailure(errno, path);
  }
  static_cast<void>(file.release()); // closedir closes it
  QStringList names;
  for (;;) {
    errno = 0;
    const dirent *entry = ::readdir(folder.get());
    if (entry == nullptr) {
      break;
    }
    const QByteArray bytes(entry->d_name);
    const QString name = QString::fromUtf8(bytes);
    if (name.toUtf8() != bytes) {
      note(u"A name that is not UTF-8 is passed over in "_s + path);
    } else if (name != u"."_s && name != u".."_s) {
      names.append(name);
    }
  }
  if (errno != 0) {
    throw systemFailure(errno, path);
  }
  names.sort();
  return names;
}

std::unique_ptr<FileLock> LinuxFileSystem::lock(const QString &path) {
  const Place place = m_volumes.place(path, Access::Write);
  const int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  FileDescriptor file(::openat(place.at(), place.path.constData(), flags, 0666));
  if (!file.isOpen()) {
    throw systemFailure(errno, path);
  }
  while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK) {
      return nullptr;
    }
    if (errno != EINTR) {
      throw systemFailure(errno, path);
    }
  }
  return std::make_unique<FlockLock>(std::move(file));
}

std::optional<Volume> LinuxFileSystem::volume(const QString &path) {
  try {
    if (const auto found = m_volumes.volumeOf(path)) {
      Volume volume{found->root, found->typeName, 0, found->mountId};
      askForSpace(found->hostRoot, volume);
      return volume;
    }
    const auto host = map().host(path);
    const auto entry = host ? m_volumes.hostMount(host->toUtf8()) : std::nullopt;
    if (!entry) {
      return std::nullopt;
    }
    const QByteArray existing = presence(path) == Presence::Present ? host->toUtf8() : entry->point;
    Volume volume{QString::fromUtf8(entry->point), systemTypeName(entry->type), 0, mountIdentity(*entry)};
    askForSpace(existing, volume);
    return volume;
  } catch (const Failure &) {
    return std::nullopt;
  }
}

} // namespace sonorel
