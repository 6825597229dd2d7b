#include "platform/ShareNames.h"
#include "platform/linux/HostFile.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/SystemError.h"
#include "platform/linux/TreeRemoval.h"

#include <fcntl.h>
#include <sys/random.h>

#include <array>
#include <cerrno>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr size_t kCopyBlock = 1024 * 1024;

void refuseVolumeRoot(const Place &place, const QString &path) {
  if (place.isVolumeRoot) {
    throw Failure(u"a mounted volume: "_s + path);
  }
}

QByteArray folderOf(const QByteArray &path) {
  const qsizetype slash = path.lastIndexOf('/');
  return slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : path.left(slash);
}

void copyBytes(const FileDescriptor &from, const FileDescriptor &to, const QString &source, const QString &target) {
  QByteArray block(kCopyBlock, Qt::Uninitialized);
  for (;;) {
    const ssize_t got = ::read(from.get(), block.data(), kCopyBlock);
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got < 0) {
      throw systemFailure(errno, source);
    }
    if (got == 0) {
      return;
    }
    writeAll(to, QByteArray::fromRawData(block.constData(), got), target);
  }
}

// A share decides itself what modes mean.
void setModeOf(const FileDescriptor &file, mode_t mode, const Place &place, const QString &shown) {
  if (::fchmod(file.get(), mode) != 0) {
    const Failure failure = systemFailure(errno, shown);
    if (!place.isOnVolume || failure.kind() == FailureKind::Unknown) {
      throw failure;
    }
  }
}

// The new name is in the folder only after this. A file system that cannot do it has done its best.
void syncFolder(const Place &place) {
  const FileDescriptor folder(
      ::openat(place.at(), folderOf(place.path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.isOpen()) {
    ::fsync(folder.get());
  }
}

// False when the name is taken.
bool renameToFree(const Place &from, const Place &to, const QString &shown) {
  if (::renameat2(from.at(), from.path.constData(), to.at(), to.path.constData(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  if (errno == EEXIST) {
    return false;
  }
  if (errno != EINVAL && errno != ENOSYS) {
    throw systemFailure(errno, shown);
  }
  // A file system without that call.
  if (statOf(to, Links::NoFollow, shown)) {
    return false;
  }
  if (::renameat(from.at(), from.path.constData(), to.at(), to.path.constData()) != 0) {
    throw systemFailure(errno, shown);
  }
  return true;
}

} // namespace

Place LinuxFileSystem::entryPlace(const QString &path) {
  Place place = m_volumes.place(path, Access::Write);
  refuseVolumeRoot(place, path);
  return place;
}

Place LinuxFileSystem::temporaryBeside(const Place &target) const {
  std::array<char, 4> random = {};
  if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) {
    throw systemFailure(errno, u"getrandom"_s);
  }
  const QByteArray mark = m_temporaryMark.isEmpty() ? QByteArray() : m_temporaryMark.toUtf8() + '-';
  const QByteArray name = kTemporaryPrefix.toLatin1() + mark + QByteArray(random.data(), random.size()).toHex();
  FileDescriptor root;
  if (target.root.isOpen()) {
    root.reset(::fcntl(target.root.get(), F_DUPFD_CLOEXEC, 0));
    if (!root.isOpen()) { // the path alone would mean another folder
      throw systemFailure(errno, u"fcntl"_s);
    }
  }
  return {std::move(root), target.path.left(target.path.lastIndexOf('/') + 1) + name, false, target.isOnVolume};
}

void LinuxFileSystem::write(const QString &path, const QByteArray &bytes) {
  FileDescriptor file = openForWriting(m_volumes.place(path, Access::Write), path);
  writeAll(file, bytes, path);
  closeChecked(std::move(file), path);
}

void LinuxFileSystem::writeAtomically(const QString &path, const QByteArray &bytes, std::optional<quint32> mode) {
  const Place target = entryPlace(path);
  const auto old = statOf(target, Links::NoFollow, path);
  if (old && !S_ISREG(old->st_mode)) {
    throw Failure(u"not a regular file: "_s + path);
  }
  if (!mode && old) {
    mode = old->st_mode & 07777;
  }
  const Place temporary = temporaryBeside(target);
  FileDescriptor file = createNew(temporary, mode ? 0600 : 0666, path);
  try {
    writeAll(file, bytes, path);
    if (mode) {
      setModeOf(file, *mode, target, path);
    }
    syncToDisk(file, path);
    closeChecked(std::move(file), path);
    if (::renameat(temporary.at(), temporary.path.constData(), target.at(), target.path.constData()) != 0) {
      throw systemFailure(errno, path);
    }
  } catch (const Failure &e) {
    if (e.kind() != FailureKind::Unknown) {
      ::unlinkat(temporary.at(), temporary.path.constData(), 0);
    }
    throw;
  }
  syncFolder(target);
}

void LinuxFileSystem::createExclusively(const QString &path, const QByteArray &bytes) {
  writeNew(entryPlace(path), bytes, path);
}

void LinuxFileSystem::sync(const QString &path) {
  const Place place = m_volumes.place(path, Access::Read);
  const auto facts = statOf(place, Links::Follow, path);
  if (!facts) {
    throw systemFailure(ENOENT, path);
  }
  if (!S_ISREG(facts->st_mode) && !S_ISDIR(facts->st_mode)) {
    throw Failure(u"neither a file nor a folder: "_s + path);
  }
  FileDescriptor file(::openat(place.at(), place.path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.isOpen()) {
    throw systemFailure(errno, path);
  }
  syncToDisk(file, path);
  closeChecked(std::move(file), path);
}

void LinuxFileSystem::createFolder(const QString &path, quint32 mode) {
  const Place place = m_volumes.place(path, Access::Write);
  if (::mkdirat(place.at(), place.path.constData(), mode) != 0) {
    throw systemFailure(errno, path);
  }
  // A share decides itself what modes mean; the folder is there.
  if (::fchmodat(place.at(), place.path.constData(), mode, 0) != 0 && !place.isOnVolume) {
    throw systemFailure(errno, path);
  }
}

void LinuxFileSystem::setMode(const QString &path, quint32 mode) {
  const Place place = m_volumes.place(path, Access::Write);
  if (::fchmodat(place.at(), place.path.constData(), mode, 0) != 0) {
    throw systemFailure(errno, path);
  }
}

void LinuxFileSystem::copy(const QString &from, const QString &to) {
  FileDescriptor source = openForReading(m_volumes.place(from, Access::Read), from);
  if (sameFile(from, to)) {
    throw Failure(u"source and target are the same file: "_s + to);
  }
  FileDescriptor target = openForWriting(m_volumes.place(to, Access::Write), to);
  copyBytes(source, target, from, to);
  closeChecked(std::move(target), to);
}

void LinuxFileSystem::rename(const QString &from, const QString &to) {
  const Place source = entryPlace(from);
  const Place target = entryPlace(to);
  if (::renameat(source.at(), source.path.constData(), target.at(), target.path.constData()) != 0) {
    throw systemFailure(errno, to);
  }
}

void LinuxFileSystem::removeFile(const QString &path) {
  const Place place = entryPlace(path);
  if (::unlinkat(place.at(), place.path.constData(), 0) == 0) {
    return;
  }
  const int error = errno;
  // Shares refuse to remove a file with the read-only mark.
  const auto facts = statOf(place, Links::NoFollow, path);
  const bool isMarked = facts && S_ISREG(facts->st_mode) && (facts->st_mode & S_IWUSR) == 0;
  if (place.isOnVolume && isMarked && (error == EACCES || error == EPERM)) {
    const mode_t mode = facts->st_mode & 07777;
    if (::fchmodat(place.at(), place.path.constData(), mode | S_IWUSR, 0) == 0) {
      if (::unlinkat(place.at(), place.path.constData(), 0) == 0) {
        return;
      }
      ::fchmodat(place.at(), place.path.constData(), mode, 0);
    }
  }
  throw systemFailure(error, path);
}

void LinuxFileSystem::removeTree(const QString &path) {
  const Place place = entryPlace(path);
  const auto host = map().host(path);
  if (!place.isOnVolume && m_volumes.holdsMounts(place.path)) {
    throw Failure(u"a volume is mounted in "_s + path);
  }
  const auto clean = PathMap::cleaned(path);
  if (!place.isOnVolume && !PathMap::volumeName(*clean).isEmpty()) {
    // A point that is not mounted goes only when it is empty: nothing in it is the system's to remove.
    if (::unlinkat(AT_FDCWD, host->toUtf8().constData(), AT_REMOVEDIR) != 0) {
      const int error = errno;
      throw Failure(systemFailure(error, path).reason(),
                    error == ENOENT ? FailureKind::Absent : FailureKind::Unknown);
    }
    return;
  }
  removeTreeAt(place.at(), place.path, path);
}

QString LinuxFileSystem::setAside(const QString &path) {
  const auto clean = PathMap::cleaned(path);
  const Place source = entryPlace(path);
  for (int number = 1; number < 10'000; ++number) {
    const QString name = *clean + u".damaged"_s + (number == 1 ? QString() : u'-' + QString::number(number));
    if (renameToFree(source, entryPlace(name), path)) {
      return name;
    }
  }
  throw Failure(u"no free name beside "_s + path, FailureKind::Exists);
}

} // namespace sonorel
