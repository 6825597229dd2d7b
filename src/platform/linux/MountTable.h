// The mount table of this process: what is mounted where, without asking any file system, so that a dead server
// blocks nothing. Any thread.
#pragma once

#include "platform/linux/FileDescriptor.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <mutex>
#include <vector>

namespace sonorel {

struct MountEntry {
  quint64 id = 0;
  QByteArray device; // "0:42"
  QByteArray point;  // host path
  QByteArray type;   // "cifs", "fuse.sonorel"
  QByteArray source;
};

using MountEntries = std::vector<MountEntry>;

// The text of mountinfo; lines that do not have its form are left out. Of several mounts on one point the last is on
// top.
[[nodiscard]] MountEntries parseMountTable(const QByteArray &text);
[[nodiscard]] const MountEntry *mountAt(const MountEntries &entries, const QByteArray &point);
// The mount that holds a path, by its text.
[[nodiscard]] const MountEntry *mountHolding(const MountEntries &entries, const QByteArray &path);
// True when something is mounted on the path or below it.
[[nodiscard]] bool hasMountWithin(const MountEntries &entries, const QByteArray &path);
// "smbfs" for every kind of share mount, else the type itself.
[[nodiscard]] QString systemTypeName(const QByteArray &type);
// A number that another mount on the same point does not share: the table gives its own ids out again.
[[nodiscard]] quint64 mountIdentity(const MountEntry &entry);

class MountTable {
public:
  // Read again only when the kernel says that it has changed. Throws Unknown when it cannot be read.
  [[nodiscard]] std::shared_ptr<const MountEntries> entries();

private:
  std::mutex m_mutex; // guards both
  FileDescriptor m_file;
  std::shared_ptr<const MountEntries> m_entries; // shared with who still reads it when a newer one replaces it
};

} // namespace sonorel
