#include "support/FakeFileSystem.h"

#include <stdexcept>

namespace sonorel::test {

FakeFileSystem::FakeFileSystem() {
  m_base.root = QStringLiteral("/");
  m_base.typeName = QStringLiteral("ext4");
  m_base.mountId = 1;
  m_base.mounted = true;
  Node root;
  root.kind = FileKind::Folder;
  root.mode = 0755;
  m_base.nodes.insert(m_base.root, root);
  makeFolders(QStringLiteral("/Volumes"));
}

FakeFileSystem::~FakeFileSystem() = default;

void FakeFileSystem::mount(const QString &root, const QString &typeName, quint64 freeBytes) {
  const std::lock_guard guard(m_mutex);
  makeFolders(root);
  const bool known = m_disks.contains(root);
  Disk &disk = m_disks[root];
  disk.root = root;
  disk.typeName = typeName;
  if (!known) {
    disk.freeBytes = freeBytes;
    Node folder;
    folder.kind = FileKind::Folder;
    folder.mode = 0777;
    folder.modified = nowSeconds;
    folder.fileId = m_nextFileId++;
    disk.nodes.insert(root, folder);
  }
  disk.mounted = true;
  disk.unknown = false;
  disk.remembered = false;
  disk.mountId = m_nextMountId++;
}

void FakeFileSystem::unmount(const QString &root) {
  const std::lock_guard guard(m_mutex);
  if (const auto disk = m_disks.find(root); disk != m_disks.end()) {
    disk->mounted = false;
    disk->unknown = false;
  }
}

bool FakeFileSystem::isMounted(const QString &root) const {
  const std::lock_guard guard(m_mutex);
  const auto disk = m_disks.constFind(root);
  return disk != m_disks.constEnd() && disk->mounted;
}

void FakeFileSystem::makeFolders(const QString &path) {
  const std::lock_guard guard(m_mutex);
  for (qsizetype end = path.indexOf(u'/', 1);; end = path.indexOf(u'/', end + 1)) {
    const QString folder = end < 0 ? path : path.left(end);
    if (!folder.isEmpty() && !folder.endsWith(u'/') && find(folder) == nullptr) {
      make(folder, FileKind::Folder, 0755);
    }
    if (end < 0) {
      return;
    }
  }
}

void FakeFileSystem::put(const QString &path, const QByteArray &bytes, qint64 modifiedSeconds) {
  const std::lock_guard guard(m_mutex);
  makeFolders(path.left(path.lastIndexOf(u'/')));
  Node *node = find(path);
  Node &file = node != nullptr ? *node : make(path, FileKind::File, 0644);
  file.bytes = bytes;
  file.modified = modifiedSeconds;
}

void FakeFileSystem::putLink(const QString &path, const QString &target) {
  const std::lock_guard guard(m_mutex);
  makeFolders(path.left(path.lastIndexOf(u'/')));
  make(path, FileKind::Link, 0777).target = target;
  ++m_links;
}

void FakeFileSystem::putOther(const QString &path) {
  const std::lock_guard guard(m_mutex);
  makeFolders(path.left(path.lastIndexOf(u'/')));
  make(path, FileKind::Other, 0644);
}

QByteArray FakeFileSystem::bytes(const QString &path) const {
  const std::lock_guard guard(m_mutex);
  const Node *node = find(resolved(path));
  if (node == nullptr || node->kind != FileKind::File) {
    throw std::runtime_error("no such file in the fake tree: " + path.toStdString());
  }
  return node->bytes;
}

bool FakeFileSystem::exists(const QString &path) const {
  const std::lock_guard guard(m_mutex);
  return find(resolved(path)) != nullptr;
}

std::optional<QByteArray> FakeFileSystem::stored(const QString &path) const {
  const std::lock_guard guard(m_mutex);
  for (const Disk &disk : m_disks) {
    if (path.startsWith(disk.root + u'/')) {
      const auto node = disk.nodes.constFind(path);
      return node == disk.nodes.constEnd() ? std::nullopt : std::optional(node->bytes);
    }
  }
  const auto node = m_base.nodes.constFind(path);
  return node == m_base.nodes.constEnd() ? std::nullopt : std::optional(node->bytes);
}

qint64 FakeFileSystem::modified(const QString &path) const {
  const std::lock_guard guard(m_mutex);
  const Node *node = find(resolved(path));
  return node != nullptr ? node->modified : -1;
}

quint32 FakeFileSystem::mode(const QString &path) const {
  const std::lock_guard guard(m_mutex);
  const Node *node = find(resolved(path));
  return node != nullptr ? node->mode : 0;
}

void FakeFileSystem::erase(const QString &path) {
  const std::lock_guard guard(m_mutex);
  dropTree(path);
}

QMap<QString, QByteArray> FakeFileSystem::tree(const QString &root) const {
  const std::lock_guard guard(m_mutex);
  QMap<QString, QByteArray> found;
  const QString base = root.endsWith(u'/') ? root.chopped(1) : root;
  QStringList folders{base};
  while (!folders.isEmpty()) {
    const QString folder = folders.takeLast();
    for (const QString &name : names(folder)) {
      const QString path = folder + u'/' + name;
      const Node *node = find(path);
      const QString relative = path.mid(base.size() + 1);
      if (node->kind == FileKind::Folder) {
        found.insert(relative + u'/', QByteArray());
        folders.append(path);
      } else {
        found.insert(relative, node->bytes);
      }
    }
  }
  return found;
}

void FakeFileSystem::setFreeBytes(const QString &root, quint64 freeBytes) {
  const std::lock_guard guard(m_mutex);
  (root == m_base.root ? m_base : m_disks[root]).freeBytes = freeBytes;
}

void FakeFileSystem::setUnknown(const QString &root, bool unknown) {
  const std::lock_guard guard(m_mutex);
  m_disks[root].unknown = unknown;
}

void FakeFileSystem::setRemembered(const QString &root, bool remembered) {
  const std::lock_guard guard(m_mutex);
  m_disks[root].remembered = remembered;
}

void FakeFileSystem::failAt(int operation, FailureKind kind) {
  const std::lock_guard guard(m_mutex);
  m_failAt = m_operations + operation;
  m_failKind = kind;
}

void FakeFileSystem::failPath(const QString &path, FailureKind kind) {
  const std::lock_guard guard(m_mutex);
  m_failPaths.insert(path, kind);
}

void FakeFileSystem::clearFailures() {
  const std::lock_guard guard(m_mutex);
  m_failPaths.clear();
  m_failAt = 0;
}

void FakeFileSystem::dieAt(int operation) {
  const std::lock_guard guard(m_mutex);
  m_dieAt = m_operations + operation;
}

void FakeFileSystem::revive() {
  const std::lock_guard guard(m_mutex);
  m_dead = false;
  m_dieAt = 0;
  const std::lock_guard held(m_held->mutex);
  m_held->byPath.clear();
}

bool FakeFileSystem::isDead() const {
  const std::lock_guard guard(m_mutex);
  return m_dead;
}

int FakeFileSystem::operations() const {
  const std::lock_guard guard(m_mutex);
  return m_operations;
}

QStringList FakeFileSystem::log() const {
  const std::lock_guard guard(m_mutex);
  return m_log;
}

void FakeFileSystem::clearLog() {
  const std::lock_guard guard(m_mutex);
  m_log.clear();
}

} // namespace sonorel::test
