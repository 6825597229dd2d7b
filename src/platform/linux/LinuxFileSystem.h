// Files and volumes of Linux behind the system's paths: POSIX calls, names in UTF-8, descriptors closed on exec.
// Nothing below a point of /Volumes can be seen or written while nothing is mounted there. Any thread.
// See PathMap for the paths and Volumes for what is mounted.
#pragma once

#include "platform/FileSystem.h"
#include "platform/linux/Volumes.h"

#include <functional>

namespace sonorel {

class LinuxFileSystem final : public FileSystem {
public:
  // temporaryMark stands in the name of every temporary file, so that this client knows its own later:
  // ".sonorel-MARK-XXXXXXXX", or ".sonorel-XXXXXXXX" without a mark. log gets lines about names that cannot be
  // shown; it may be called from any thread.
  explicit LinuxFileSystem(Roots roots, QString temporaryMark = {}, std::function<void(const QString &)> log = {});

  Presence presence(const QString &path) override;
  std::optional<FileAttributes> attributes(const QString &path, Links links) override;
  QByteArray read(const QString &path, quint64 limit = kReadLimit) override;
  bool canRead(const QString &path) override;
  void write(const QString &path, const QByteArray &bytes) override;
  void writeAtomically(const QString &path, const QByteArray &bytes, std::optional<quint32> mode = {}) override;
  void createExclusively(const QString &path, const QByteArray &bytes) override;
  void sync(const QString &path) override;
  void createFolder(const QString &path, quint32 mode) override;
  void setMode(const QString &path, quint32 mode) override;
  void copy(const QString &from, const QString &to) override;
  void rename(const QString &from, const QString &to) override;
  void removeFile(const QString &path) override;
  void removeTree(const QString &path) override;
  QString setAside(const QString &path) override;
  bool sameFile(const QString &a, const QString &b) override;
  QStringList list(const QString &path) override;
  std::unique_ptr<FileLock> lock(const QString &path) override;
  std::optional<Volume> volume(const QString &path) override;

  [[nodiscard]] const PathMap &map() const { return m_volumes.map(); }

private:
  // A place whose entry may be replaced or removed: not the root of a mounted volume.
  [[nodiscard]] Place entryPlace(const QString &path);
  [[nodiscard]] Place temporaryBeside(const Place &target) const;
  void note(const QString &line) const;

  Volumes m_volumes;
  const QString m_temporaryMark;
  const std::function<void(const QString &)> m_log;
};

} // namespace sonorel
