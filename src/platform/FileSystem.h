// Files and volumes, in the system's own absolute paths ("/Volumes/...", "/Library/..."); the realisation
// turns them into host paths. Every method may block and may be called from any thread. Failures are thrown
// as Failure: kind Absent where there is nothing, and only for a real "no such file" on a live volume, Unknown when
// the volume does not answer, DiskFull when the bytes did not fit. Nothing is written below a folder of /Volumes that
// is not mounted: such a write fails with Unknown.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <exception>
#include <memory>
#include <optional>

namespace sonorel {

enum class Presence { Present, Absent, Unknown };
enum class FileKind { File, Folder, Link, Other };
enum class Links { Follow, NoFollow };

struct FileAttributes {
  FileKind kind = FileKind::File;
  quint64 size = 0;
  qint64 modifiedSeconds = 0; // since 1970, UTC
  qint32 modifiedNanoseconds = 0;
  quint32 mode = 0;   // permission bits, 0 to 07777
  quint64 fileId = 0; // changes when the name is given to another file
};

struct Volume {
  QString mountRoot;     // the system's path of the mount point, no trailing "/"
  QString typeName;      // "smbfs" for every kind of share mount
  quint64 freeBytes = 0; // what this user may still write
  quint64 mountId = 0;   // changes with every mount
  // Asked just now, where a question about a file may be answered from what the system remembers. When it is false
  // the server is gone, and nothing is free.
  bool answers = true;
};

// Held until destroyed; released by the operating system when the process dies.
class FileLock {
public:
  virtual ~FileLock() = default;
};

class FileSystem {
public:
  virtual ~FileSystem() = default;

  // Follows links. Never throws.
  [[nodiscard]] virtual Presence presence(const QString &path) = 0;
  // nullopt when certainly absent; throws Unknown otherwise.
  [[nodiscard]] virtual std::optional<FileAttributes> attributes(const QString &path, Links links) = 0;
  // Whole content; a file larger than limit bytes fails with Other before anything is allocated. Only regular
  // files are opened.
  [[nodiscard]] virtual QByteArray read(const QString &path, quint64 limit = kReadLimit) = 0;
  // A regular file that this user may read now. Never throws.
  [[nodiscard]] virtual bool canRead(const QString &path) = 0;
  // Truncates and writes the file itself; creates it with 0666 less the umask. Close errors are failures.
  virtual void write(const QString &path, const QByteArray &bytes) = 0;
  // Writes beside the target under a name beginning ".sonorel-" and renames; the old file is whole until then.
  // A given mode is set exactly, else the old file's mode is kept, else 0666 less the umask.
  virtual void writeAtomically(const QString &path, const QByteArray &bytes, std::optional<quint32> mode = {}) = 0;
  // As write, but fails with Exists when the name is taken.
  virtual void createExclusively(const QString &path, const QByteArray &bytes) = 0;
  // The file's (or folder's) content is on the disk when this returns.
  virtual void sync(const QString &path) = 0;
  // One level; the mode is set exactly, whatever the umask. Fails with Exists when the name is taken.
  virtual void createFolder(const QString &path, quint32 mode) = 0;
  // Exactly, whatever the umask; follows links.
  virtual void setMode(const QString &path, quint32 mode) = 0;
  // Replaces the target's content, keeps nothing but the bytes.
  virtual void copy(const QString &from, const QString &to) = 0;
  // A file of the target's name is replaced. Fails across volumes.
  virtual void rename(const QString &from, const QString &to) = 0;
  // Of a link the link itself.
  virtual void removeFile(const QString &path) = 0;
  // Never follows a link and never crosses onto another mount.
  virtual void removeTree(const QString &path) = 0;
  // Renames a file to a free name beside it and returns that name.
  virtual QString setAside(const QString &path) = 0;
  // The same file behind both names; false when either cannot be read.
  [[nodiscard]] virtual bool sameFile(const QString &a, const QString &b) = 0;
  // Names in a folder, without "." and "..", sorted by code unit.
  [[nodiscard]] virtual QStringList list(const QString &path) = 0;
  // Null when another process holds it. Creates the lock file when missing.
  [[nodiscard]] virtual std::unique_ptr<FileLock> lock(const QString &path) = 0;
  // The mounted volume that holds the path, by the mount table: never blocks on a dead mount except for
  // freeBytes. nullopt when it cannot be told.
  [[nodiscard]] virtual std::optional<Volume> volume(const QString &path) = 0;

  static constexpr quint64 kReadLimit = 256ULL * 1024 * 1024;
};

// True for a folder that is certainly there.
[[nodiscard]] inline bool isFolder(FileSystem &files, const QString &path) {
  if (files.presence(path) != Presence::Present) {
    return false;
  }
  try {
    const auto found = files.attributes(path, Links::Follow);
    return found && found->kind == FileKind::Folder;
  } catch (const std::exception &) {
    return false;
  }
}

} // namespace sonorel
