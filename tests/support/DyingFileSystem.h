// A file system in front of another one, in a process that is killed in the middle of its work: operations are
// counted, and at the one that was asked for the process gets SIGKILL, before it or while it and what follows it are
// at work. Any thread.
#pragma once

#include "platform/FileSystem.h"

#include <atomic>
#include <chrono>

namespace sonorel::test {

struct Death {
  QString from;      // counting begins with the first operation at or below this path; empty: with the first of all
  int operation = 0; // counted from 1; 0: never
  std::chrono::microseconds delay{0}; // how long the process lives on; 0: the operation is never begun
};

class DyingFileSystem final : public FileSystem {
public:
  // files must outlive the object.
  DyingFileSystem(FileSystem &files, Death death) : m_files(files), m_death(std::move(death)) {}
  // Says on the standard error how many operations were counted: "counted operations: N".
  ~DyingFileSystem() override;
  DyingFileSystem(const DyingFileSystem &) = delete;
  DyingFileSystem &operator=(const DyingFileSystem &) = delete;

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

private:
  // Before every operation; what it returns is the file system that answers.
  FileSystem &count(const QString &path);

  FileSystem &m_files;
  const Death m_death;
  std::atomic<bool> m_isCounting = false;
  std::atomic<int> m_counted = 0;
};

} // namespace sonorel::test
