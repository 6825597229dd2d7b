#include "support/FakeFileSystem.h"

#include <QScopeGuard>

namespace sonorel::test {

namespace {

QString parentOf(const QString &path) {
  const qsizetype slash = path.lastIndexOf(u'/');
  return slash <= 0 ? QStringLiteral("/") : path.left(slash);
}

QString withSlash(const QString &path) {
  return path.endsWith(u'/') ? path : path + u'/';
}

QString cleaned(const QString &path) {
  QString clean = path;
  while (clean.contains(QStringLiteral("//"))) {
    clean.replace(QStringLiteral("//"), QStringLiteral("/"));
  }
  if (clean.size() > 1 && clean.endsWith(u'/')) {
    clean.chop(1);
  }
  return clean;
}

} // namespace

void FakeFileSystem::TreeMutex::lock() {
  m_mutex.lock();
  ++m_depth;
}

void FakeFileSystem::TreeMutex::unlock() {
  --m_depth;
  m_mutex.unlock();
}

void FakeFileSystem::TreeMutex::runUnlocked(const std::function<void()> &task) {
  const int depth = m_depth;
  for (int i = 0; i < depth; ++i) {
    unlock();
  }
  const auto again = qScopeGuard([this, depth] {
    for (int i = 0; i < depth; ++i) {
      lock();
    }
  });
  task();
}

void FakeFileSystem::fail(FailureKind kind, const QString &path) {
  switch (kind) {
  case FailureKind::Absent:
    throw Failure(QStringLiteral("no such file: ") + path, kind);
  case FailureKind::Exists:
    throw Failure(QStringLiteral("the name is taken: ") + path, kind);
  case FailureKind::DiskFull:
    throw Failure(QStringLiteral("no space left: ") + path, kind);
  case FailureKind::Unknown:
    throw Failure(QStringLiteral("the volume does not answer: ") + path, kind);
  default:
    throw Failure(QStringLiteral("the operation failed: ") + path, kind);
  }
}

void FakeFileSystem::steppedByDeath() {
  if (m_dieAt > 0 && m_operations >= m_dieAt) {
    m_dead = true;
  }
  if (!m_dead) {
    return;
  }
  // Objects that tidy up while the dead client's stack unwinds get an ordinary failure: in a real process they would
  // not run at all.
  if (std::uncaught_exceptions() > 0) {
    fail(FailureKind::Unknown, QStringLiteral("(the client is dead)"));
  }
  throw Died();
}

void FakeFileSystem::step(const char *name, const QString &path) {
  ++m_operations;
  steppedByDeath();
  if (beforeOperation) {
    m_mutex.runUnlocked([this, number = m_operations] { beforeOperation(number); });
  }
  m_log.append(QString::fromLatin1(name) + u' ' + path);
  if (m_operations == m_failAt) {
    fail(m_failKind, path);
  }
  if (const auto found = m_failPaths.constFind(path); found != m_failPaths.constEnd()) {
    fail(*found, path);
  }
}

QString FakeFileSystem::resolved(const QString &path) const {
  QString whole = cleaned(path);
  for (int hops = 0; m_links > 0 && hops < 16; ++hops) {
    bool changed = false;
    for (qsizetype end = whole.indexOf(u'/', 1); !changed; end = whole.indexOf(u'/', end + 1)) {
      const QString prefix = end < 0 ? whole : whole.left(end);
      const Node *node = find(prefix);
      if (node != nullptr && node->kind == FileKind::Link) {
        whole = node->target + (end < 0 ? QString() : whole.mid(end));
        changed = true;
      }
      if (end < 0) {
        break;
      }
    }
    if (!changed) {
      break;
    }
  }
  return whole;
}

const FakeFileSystem::Disk &FakeFileSystem::diskOf(const QString &path) const {
  const Disk *best = &m_base;
  for (const Disk &disk : m_disks) {
    const bool holds = path == disk.root || path.startsWith(withSlash(disk.root));
    if (disk.mounted && holds && (best == &m_base || disk.root.size() > best->root.size())) {
      best = &disk;
    }
  }
  return *best;
}

FakeFileSystem::Disk &FakeFileSystem::diskOf(const QString &path) {
  return const_cast<Disk &>(std::as_const(*this).diskOf(path));
}

const FakeFileSystem::Node *FakeFileSystem::find(const QString &path) const {
  const Disk &disk = diskOf(path);
  const auto node = disk.nodes.constFind(path);
  return node == disk.nodes.constEnd() ? nullptr : &*node;
}

FakeFileSystem::Node *FakeFileSystem::find(const QString &path) {
  Disk &disk = diskOf(path);
  const auto node = disk.nodes.find(path);
  return node == disk.nodes.end() ? nullptr : &*node;
}

FakeFileSystem::Node &FakeFileSystem::existing(const QString &path) {
  requireAnswer(path);
  Node *node = find(path);
  if (node == nullptr) {
    fail(FailureKind::Absent, path);
  }
  return *node;
}

FakeFileSystem::Node &FakeFileSystem::existingFile(const QString &path) {
  Node &node = existing(path);
  if (node.kind != FileKind::File) {
    throw Failure(QStringLiteral("not a regular file: ") + path);
  }
  return node;
}

QStringList FakeFileSystem::names(const QString &path) const {
  const QString start = withSlash(path);
  const Disk &disk = diskOf(path);
  QStringList found;
  for (auto node = disk.nodes.lowerBound(start); node != disk.nodes.end() && node.key().startsWith(start); ++node) {
    const QString name = node.key().mid(start.size());
    if (!name.isEmpty() && !name.contains(u'/')) {
      found.append(name);
    }
  }
  found.sort();
  return found;
}

void FakeFileSystem::requireAnswer(const QString &path) const {
  if (diskOf(path).unknown) {
    fail(FailureKind::Unknown, path);
  }
}

void FakeFileSystem::requireWritable(const QString &path) const {
  requireAnswer(path);
  const QString volumes = QStringLiteral("/Volumes/");
  if (&diskOf(path) == &m_base && path.startsWith(volumes) && path.mid(volumes.size()).contains(u'/')) {
    fail(FailureKind::Unknown, path);
  }
}

void FakeFileSystem::requireParent(const QString &path) const {
  const Node *parent = find(parentOf(path));
  if (parent == nullptr) {
    fail(FailureKind::Absent, parentOf(path));
  }
  if (parent->kind != FileKind::Folder) {
    throw Failure(QStringLiteral("not a folder: ") + parentOf(path));
  }
}

FakeFileSystem::Node &FakeFileSystem::make(const QString &path, FileKind kind, quint32 mode) {
  Node node;
  node.kind = kind;
  node.mode = mode;
  node.modified = nowSeconds;
  node.fileId = m_nextFileId++;
  return *diskOf(path).nodes.insert(path, node);
}

void FakeFileSystem::fill(const QString &path, Node &node, const QByteArray &bytes) {
  Disk &disk = diskOf(path);
  const auto room = static_cast<qsizetype>(qMin<quint64>(disk.freeBytes, static_cast<quint64>(bytes.size())));
  node.bytes = bytes.left(room);
  node.modified = nowSeconds;
  disk.freeBytes -= static_cast<quint64>(room);
  if (room < bytes.size()) {
    fail(FailureKind::DiskFull, path);
  }
}

void FakeFileSystem::empty(const QString &path, Node &node) {
  diskOf(path).freeBytes += static_cast<quint64>(node.bytes.size());
  node.bytes.clear();
  node.modified = nowSeconds;
}

void FakeFileSystem::drop(const QString &path) {
  Disk &disk = diskOf(path);
  const auto node = disk.nodes.find(path);
  if (node != disk.nodes.end()) {
    disk.freeBytes += static_cast<quint64>(node->bytes.size());
    m_links -= node->kind == FileKind::Link ? 1 : 0;
    disk.nodes.erase(node);
  }
}

void FakeFileSystem::dropTree(const QString &path) {
  for (const QString &name : names(path)) {
    dropTree(withSlash(path) + name);
  }
  drop(path);
}

} // namespace sonorel::test
