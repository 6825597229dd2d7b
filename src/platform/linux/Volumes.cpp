#include "platform/linux/Volumes.h"

#include "platform/linux/EmbeddedProduct.h"
#include "platform/linux/SystemError.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr QLatin1String kVolumes("/Volumes/");

// The mount table knows real paths only. What is looked up here is on a local disk.
QByteArray realPath(const QByteArray &path) {
  const std::unique_ptr<char, void (*)(void *)> real(::realpath(path.constData(), nullptr), std::free);
  return real ? QByteArray(real.get()) : path;
}

// The mount that an open folder belongs to, by its table id.
quint64 tableIdOf(const FileDescriptor &folder) {
  struct statx facts = {};
  const int flags = AT_EMPTY_PATH | AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT;
  if (::statx(folder.get(), "", flags, STATX_MNT_ID, &facts) == 0 && (facts.stx_mask & STATX_MNT_ID) != 0) {
    return facts.stx_mnt_id;
  }
  return 0;
}

} // namespace

int Place::at() const {
  return root.isOpen() ? root.get() : AT_FDCWD;
}

QByteArray Volumes::hostPoint(const QString &name) const {
  return (m_map.hostVolumes() + u'/' + name).toUtf8();
}

std::optional<MountedVolume> Volumes::embedded(const QString &name) const {
  const QByteArray point = hostPoint(name);
  const auto identity = EmbeddedProduct::mountIdentity(point, m_map.roots().embedded);
  if (!identity) {
    return std::nullopt;
  }
  return MountedVolume{kVolumes + name, u"smbfs"_s, *identity, m_map.roots().embedded.toUtf8(), 0};
}

std::optional<MountedVolume> Volumes::mounted(const QString &name) {
  if (auto found = embedded(name)) {
    return found;
  }
  const auto entries = m_table.entries();
  const MountEntry *entry = mountAt(*entries, realPath(m_map.hostVolumes().toUtf8()) + '/' + name.toUtf8());
  if (entry == nullptr) {
    return std::nullopt;
  }
  return MountedVolume{kVolumes + name, systemTypeName(entry->type), mountIdentity(*entry), entry->point, entry->id};
}

std::optional<MountedVolume> Volumes::volumeOf(const QString &path) {
  const auto clean = PathMap::cleaned(path);
  const QString name = clean ? PathMap::volumeName(*clean) : QString();
  return name.isEmpty() ? std::nullopt : mounted(name);
}

std::optional<MountEntry> Volumes::hostMount(const QByteArray &hostPath) {
  const auto entries = m_table.entries();
  const MountEntry *entry = mountHolding(*entries, realPath(hostPath));
  return entry == nullptr ? std::nullopt : std::optional(*entry);
}

bool Volumes::holdsMounts(const QByteArray &hostPath) {
  return hasMountWithin(*m_table.entries(), realPath(hostPath));
}

FileDescriptor Volumes::hold(const MountedVolume &volume) {
  FileDescriptor folder(::open(volume.hostRoot.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  const bool isOther = volume.tableId != 0 && folder.isOpen() && tableIdOf(folder) != volume.tableId;
  if (!folder.isOpen() || isOther) {
    throw Failure(u"the volume does not answer: "_s + volume.root, FailureKind::Unknown);
  }
  return folder;
}

Place Volumes::place(const QString &path, Access access) {
  const auto clean = PathMap::cleaned(path);
  if (!clean) {
    throw Failure(u"not a usable path: "_s + path, access == Access::Read ? FailureKind::Absent : FailureKind::Other);
  }
  const QString name = PathMap::volumeName(*clean);
  const QString below = PathMap::belowVolume(*clean);
  if (const auto volume = name.isEmpty() ? std::nullopt : mounted(name)) {
    return {hold(*volume), below.isEmpty() ? QByteArray(".") : below.toUtf8(), below.isEmpty(), true};
  }
  if (!below.isEmpty()) {
    const QString reason = u"not mounted: "_s + kVolumes + name;
    throw Failure(reason, access == Access::Read ? FailureKind::Absent : FailureKind::Unknown);
  }
  return {FileDescriptor(), m_map.host(*clean)->toUtf8(), false, false};
}

} // namespace sonorel
