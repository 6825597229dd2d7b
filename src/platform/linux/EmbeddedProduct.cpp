#include "platform/linux/EmbeddedProduct.h"

#include "platform/ShareNames.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/HostFile.h"
#include "platform/linux/HostFolders.h"
#include "platform/linux/SystemError.h"

#include <QHashFunctions>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>

#include <cerrno>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr mode_t kFolderMode = 0777;

// What the player of this model answers from its first version with Unicode names on.
QByteArray nameFile(const QString &productName) {
  const QByteArray name = productName.toUtf8() + '\n';
  return productName == kAuralis5 ? name + "5.03.00.2387\n" : name;
}

// A locally administered address of its own, so that two trees are two products.
QByteArray addressFile() {
  unsigned char random[5] = {};
  if (::getrandom(random, sizeof random, 0) != static_cast<ssize_t>(sizeof random)) {
    throw systemFailure(errno, u"getrandom"_s);
  }
  const QByteArray tail(reinterpret_cast<const char *>(random), sizeof random);
  return "127.0.0.1\n02-" + tail.toHex('-').toUpper() + '\n';
}

QByteArray limitsFile() {
  return "GREEN_ENABLED=1\r\nYELLOW_ENABLED=1\r\nRED_ENABLED=1\r\nBLUE_ENABLED=1\r\n"
         "GREEN_LIMIT=10\r\nYELLOW_LIMIT=10\r\nRED_LIMIT=10\r\nBLUE_LIMIT=10\r\n";
}

void writeWhenMissing(const QString &path, const QByteArray &bytes) {
  const Place place{FileDescriptor(), path.toUtf8(), false, false};
  try {
    writeNew(place, bytes, path);
  } catch (const Failure &e) {
    if (e.kind() != FailureKind::Exists) {
      throw;
    }
  }
}

} // namespace

bool EmbeddedProduct::isAddress(const QString &address) {
  return address.compare(u"embedded"_s, Qt::CaseInsensitive) == 0;
}

void EmbeddedProduct::prepare() const {
  for (const QString &folder : {u"/System"_s, u"/Music"_s, u"/Photo"_s, u"/Video"_s, u"/Favorites"_s}) {
    makeHostFolders(m_tree + folder, kFolderMode);
  }
  const QString system = m_tree + u"/System/"_s;
  writeWhenMissing(system + kProductNameFileName.toString(), nameFile(m_productName));
  writeWhenMissing(system + kAddressFileName.toString(), addressFile());
  writeWhenMissing(system + kLimitsFileName.toString(), limitsFile());
}

void EmbeddedProduct::mount(const QByteArray &point) const {
  const QString shown = QString::fromUtf8(point);
  if (::rmdir(point.constData()) != 0) {
    throw systemFailure(errno, shown);
  }
  if (::symlink(m_tree.toUtf8().constData(), point.constData()) != 0) {
    const int error = errno;
    ::mkdir(point.constData(), kFolderMode);
    throw systemFailure(error, shown);
  }
  // The link's own time tells this mount from the next one, which may get the same inode in the same tick.
  quint32 random = 0;
  if (::getrandom(&random, sizeof random, 0) == static_cast<ssize_t>(sizeof random)) {
    const timespec mark{static_cast<time_t>(random), static_cast<long>(random % 1'000'000'000U)};
    const timespec times[2] = {mark, mark};
    ::utimensat(AT_FDCWD, point.constData(), times, AT_SYMLINK_NOFOLLOW);
  }
}

bool EmbeddedProduct::unmount(const QByteArray &point) const {
  if (!mountIdentity(point, m_tree) || ::unlink(point.constData()) != 0) {
    return false;
  }
  if (::mkdir(point.constData(), kFolderMode) == 0) {
    ::chmod(point.constData(), kFolderMode);
  }
  return true;
}

std::optional<quint64> EmbeddedProduct::mountIdentity(const QByteArray &point, const QString &tree) {
  struct stat facts = {};
  const QByteArray wanted = tree.toUtf8();
  QByteArray target(wanted.size() + 1, '\0');
  const ssize_t length = ::readlink(point.constData(), target.data(), static_cast<size_t>(target.size()));
  if (length != wanted.size() || target.left(length) != wanted) {
    return std::nullopt;
  }
  if (::lstat(point.constData(), &facts) != 0) {
    return std::nullopt;
  }
  return qHashMulti(0, facts.st_ino, facts.st_mtim.tv_sec, facts.st_mtim.tv_nsec, facts.st_ctim.tv_sec,
                    facts.st_ctim.tv_nsec);
}

} // namespace sonorel
