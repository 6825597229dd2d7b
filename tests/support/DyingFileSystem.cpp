#include "support/DyingFileSystem.h"

#include <csignal>
#include <cstdio>
#include <thread>

#include <unistd.h>

namespace sonorel::test {

namespace {

// Nobody gets a chance to put anything in order.
[[noreturn]] void die() {
  for (;;) {
    ::kill(::getpid(), SIGKILL);
    ::pause();
  }
}

} // namespace

DyingFileSystem::~DyingFileSystem() {
  std::fprintf(stderr, "counted operations: %d\n", m_counted.load());
}

FileSystem &DyingFileSystem::count(const QString &path) {
  if (path.startsWith(m_death.from)) {
    m_isCounting = true;
  }
  if (!m_isCounting || ++m_counted != m_death.operation) {
    return m_files;
  }
  if (m_death.delay.count() == 0) {
    die();
  }
  std::thread([delay = m_death.delay] {
    std::this_thread::sleep_for(delay);
    die();
  }).detach();
  return m_files;
}

Presence DyingFileSystem::presence(const QString &path) {
  return count(path).presence(path);
}
std::optional<FileAttributes> DyingFileSystem::attributes(const QString &path, Links links) {
  return count(path).attributes(path, links);
}
QByteArray DyingFileSystem::read(const QString &path, quint64 limit) {
  return count(path).read(path, limit);
}
bool DyingFileSystem::canRead(const QString &path) {
  return count(path).canRead(path);
}
void DyingFileSystem::write(const QString &path, const QByteArray &bytes) {
  count(path).write(path, bytes);
}
void DyingFileSystem::writeAtomically(const QString &path, const QByteArray &bytes, std::optional<quint32> mode) {
  count(path).writeAtomically(path, bytes, mode);
}
void DyingFileSystem::createExclusively(const QString &path, const QByteArray &bytes) {
  count(path).createExclusively(path, bytes);
}
void DyingFileSystem::sync(const QString &path) {
  count(path).sync(path);
}
void DyingFileSystem::createFolder(const QString &path, quint32 mode) {
  count(path).createFolder(path, mode);
}
void DyingFileSystem::setMode(const QString &path, quint32 mode) {
  count(path).setMode(path, mode);
}
void DyingFileSystem::copy(const QString &from, const QString &to) {
  count(from).copy(from, to);
}
void DyingFileSystem::rename(const QString &from, const QString &to) {
  count(from).rename(from, to);
}
void DyingFileSystem::removeFile(const QString &path) {
  count(path).removeFile(path);
}
void DyingFileSystem::removeTree(const QString &path) {
  count(path).removeTree(path);
}
QString DyingFileSystem::setAside(const QString &path) {
  return count(path).setAside(path);
}
bool DyingFileSystem::sameFile(const QString &a, const QString &b) {
  return count(a).sameFile(a, b);
}
QStringList DyingFileSystem::list(const QString &path) {
  return count(path).list(path);
}
std::unique_ptr<FileLock> DyingFileSystem::lock(const QString &path) {
  return count(path).lock(path);
}
std::optional<Volume> DyingFileSystem::volume(const QString &path) {
  return count(path).volume(path);
}

} // namespace sonorel::test
