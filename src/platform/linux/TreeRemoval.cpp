#include "platform/linux/TreeRemoval.h"

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/SystemError.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

struct FolderCloser {
  void operator()(DIR *folder) const { ::closedir(folder); }
};

// Device and mount of an entry: a bind mount has the device of what it shows, so the device alone is not enough.
struct statx factsOf(int at, const char *path, const QString &shown) {
  struct statx facts = {};
  const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT;
  if (::statx(at, path, flags, STATX_BASIC_STATS | STATX_MNT_ID, &facts) != 0) {
    throw systemFailure(errno, shown);
  }
  return facts;
}

bool isSameMount(const struct statx &a, const struct statx &b) {
  return a.stx_dev_major == b.stx_dev_major && a.stx_dev_minor == b.stx_dev_minor && a.stx_mnt_id == b.stx_mnt_id;
}

std::vector<QByteArray> namesIn(int folder, const QString &shown) {
  FileDescriptor copy(::fcntl(folder, F_DUPFD_CLOEXEC, 0));
  const std::unique_ptr<DIR, FolderCloser> open(copy.isOpen() ? ::fdopendir(copy.get()) : nullptr);
  if (!open) {
    throw systemFailure(errno, shown);
  }
  static_cast<void>(copy.release());
  std::vector<QByteArray> names;
  errno = 0;
  while (const dirent *entry = ::readdir(open.get())) {
    const QByteArray name(entry->d_name);
    if (name != "." && name != "..") {
      names.push_back(name);
    }
    errno = 0;
  }
  if (errno != 0) {
    throw systemFailure(errno, shown);
  }
  return names;
}

void removeEntry(int at, const QByteArray &path, const struct statx &start, const QString &shown) {
  const struct statx facts = factsOf(at, path.constData(), shown);
  if (!isSameMount(facts, start)) {
    throw Failure(u"another volume: "_s + shown);
  }
  const bool isFolder = S_ISDIR(facts.stx_mode);
  if (isFolder) {
    const int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    const FileDescriptor folder(::openat(at, path.constData(), flags));
    if (!folder.isOpen()) {
      throw systemFailure(errno, shown);
    }
    for (const QByteArray &name : namesIn(folder.get(), shown)) {
      try {
        removeEntry(folder.get(), name, start, shown + u'/' + QString::fromUtf8(name));
      } catch (const Failure &e) {
        if (e.kind() != FailureKind::Absent) { // somebody else was quicker
          throw;
        }
      }
    }
  }
  if (::unlinkat(at, path.constData(), isFolder ? AT_REMOVEDIR : 0) != 0) {
    throw systemFailure(errno, shown);
  }
}

} // namespace

void removeTreeAt(int at, const QByteArray &path, const QString &shown) {
  // An open folder says which mount it belongs to; without one the caller has asked the mount table.
  const struct statx start = factsOf(at, at == AT_FDCWD ? path.constData() : ".", shown);
  removeEntry(at, path, start, shown);
}

} // namespace sonorel
