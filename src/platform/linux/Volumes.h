// The volumes below /Volumes as they are at this moment: mounted for real, the embedded product's link, or nothing.
// Turns a path of the system into a place on the host. A place on a volume is held by an open folder of that very
// mount, so that a volume that goes away between the question and the call is never mistaken for the empty folder
// that it covered. Any thread.
#pragma once

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/MountTable.h"
#include "platform/linux/PathMap.h"

namespace sonorel {

struct MountedVolume {
  QString root;        // "/Volumes/X"
  QString typeName;    // "smbfs" for every kind of share mount
  quint64 mountId = 0; // changes with every mount
  QByteArray hostRoot; // the folder that holds what is on the volume
  quint64 tableId = 0; // in the mount table; 0 for the embedded product
};

// For the calls that end in "at": path is relative to root, or absolute without one.
struct Place {
  FileDescriptor root;
  QByteArray path;
  bool isVolumeRoot = false; // path is "."
  bool isOnVolume = false;

  [[nodiscard]] int at() const;
};

enum class Access { Read, Write };

class Volumes {
public:
  explicit Volumes(Roots roots) : m_map(std::move(roots)) {}

  [[nodiscard]] const PathMap &map() const { return m_map; }
  // nullopt when nothing is mounted on /Volumes/NAME. Never blocks on a dead server.
  [[nodiscard]] std::optional<MountedVolume> mounted(const QString &name);
  // Of the volume that a path of the system lies on; nullopt when it lies on none of /Volumes.
  [[nodiscard]] std::optional<MountedVolume> volumeOf(const QString &path);
  // The mount of a host path that is on no volume of /Volumes.
  [[nodiscard]] std::optional<MountEntry> hostMount(const QByteArray &hostPath);
  // True when something is mounted at or below a host path.
  [[nodiscard]] bool holdsMounts(const QByteArray &hostPath);
  // An open folder of that mount and of no other; throws Unknown when it has gone meanwhile.
  [[nodiscard]] FileDescriptor hold(const MountedVolume &volume);
  // Below a point that is not mounted nothing can be read (Absent) or written (Unknown); the point itself is an
  // ordinary folder then.
  [[nodiscard]] Place place(const QString &path, Access access);
  // The host path of /Volumes/NAME, whatever is there.
  [[nodiscard]] QByteArray hostPoint(const QString &name) const;

private:
  [[nodiscard]] std::optional<MountedVolume> embedded(const QString &name) const;

  const PathMap m_map;
  MountTable m_table;
};

} // namespace sonorel
