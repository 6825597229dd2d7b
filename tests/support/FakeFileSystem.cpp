#include "support/FakeFileSystem.h"

namespace sonorel::test {

class FakeFileSystem::Lock : public FileLock {
public:
  Lock(std::shared_ptr<Held> held, QString path, quint64 serial)
      : m_held(std::move(held)), m_path(std::move(path)), m_serial(serial) {}
  ~Lock() override {
    const std::lock_guard guard(m_held->mutex);
    if (m_held->byPath.value(m_path) == m_serial) {
      m_held->byPath.remove(m_path);
    }
  }

private:
  std::shared_ptr<Held> m_held;
  QString m_path;
  quint64 m_serial;
};

Presence FakeFileSystem::presence(const QString &path) {
  const std::lock_guard guard(m_mutex);
  try {
    step("presence", path);
    const QString real = resolved(path);
    requireAnswer(real);
    return find(real) != nullptr ? Presence::Present : Presence::Absent;
  } catch (const Failure &e) {
    return e.kind() == FailureKind::Absent ? Presence::Absent : Presence::Unknown;
  }
}

std::optional<FileAttributes> FakeFileSystem::attributes(const QString &path, Links links) {
  const std::lock_guard guard(m_mutex);
  try {
    step("attributes", path);
  } catch (const Failure &e) {
    if (e.kind() == FailureKind::Absent) {
      return std::nullopt;
    }
    throw Failure(e.reason(), FailureKind::Unknown);
  }
  const QString real = links == Links::Follow ? resolved(path) : path;
  requireAnswer(real);
  const Node *node = find(real.size() > 1 && real.endsWith(u'/') ? real.chopped(1) : real);
  if (node == nullptr) {
    return std::nullopt;
  }
  FileAttributes found;
  found.kind = node->kind;
  found.size = static_cast<quint64>(node->bytes.size());
  found.modifiedSeconds = node->modified;
  found.mode = node->mode;
  found.fileId = node->fileId;
  return found;
}

QByteArray FakeFileSystem::read(const QString &path, quint64 limit) {
  const std::lock_guard guard(m_mutex);
  step("read", path);
  const Node &node = existingFile(resolved(path));
  if (static_cast<quint64>(node.bytes.size()) > limit) {
    throw Failure(QStringLiteral("larger than allowed: ") + path);
  }
  return node.bytes;
}

void FakeFileSystem::writeSteps(const QString &path, const QByteArray &bytes) {
  const QString real = resolved(path);
  step("truncate", path);
  requireWritable(real);
  requireParent(real);
  if (find(real) == nullptr) {
    make(real, FileKind::File, 0644);
  }
  empty(real, existingFile(real));
  step("write", path);
  requireWritable(real);
  fill(real, existingFile(real), bytes);
}

void FakeFileSystem::write(const QString &path, const QByteArray &bytes) {
  const std::lock_guard guard(m_mutex);
  writeSteps(path, bytes);
}

void FakeFileSystem::writeAtomically(const QString &path, const QByteArray &bytes, std::optional<quint32> mode) {
  const std::lock_guard guard(m_mutex);
  const QString real = resolved(path);
  step("writeAtomically", path);
  requireWritable(real);
  requireParent(real);
  const Node *old = find(real);
  if (old != nullptr && old->kind != FileKind::File) {
    throw Failure(QStringLiteral("not a regular file: ") + path);
  }
  const quint32 kept = mode.value_or(old != nullptr ? old->mode : 0644);
  const QString beside = real.left(real.lastIndexOf(u'/') + 1) + QStringLiteral(".sonorel-") +
                         QString::number(m_nextTemporary++).rightJustified(4, u'0');
  try {
    fill(beside, make(beside, FileKind::File, kept), bytes);
    step("replace", path);
    requireWritable(real);
  } catch (const Failure &e) {
    if (e.kind() != FailureKind::Unknown) {
      drop(beside);
    }
    throw;
  }
  const Node made = existing(beside);
  drop(real);
  Disk &disk = diskOf(real);
  disk.nodes.remove(beside);
  disk.nodes.insert(real, made);
}

void FakeFileSystem::createExclusively(const QString &path, const QByteArray &bytes) {
  const std::lock_guard guard(m_mutex);
  step("createExclusively", path);
  const QString real = resolved(path);
  requireWritable(real);
  requireParent(real);
  if (find(real) != nullptr) {
    fail(FailureKind::Exists, path);
  }
  make(real, FileKind::File, 0644);
  try {
    step("write", path);
    requireWritable(real);
    fill(real, existingFile(real), bytes);
  } catch (const Failure &e) {
    if (e.kind() != FailureKind::Unknown) {
      drop(real);
    }
    throw;
  }
}

void FakeFileSystem::sync(const QString &path) {
  const std::lock_guard guard(m_mutex);
  step("sync", path);
  static_cast<void>(existing(resolved(path)));
}

void FakeFileSystem::createFolder(const QString &path, quint32 mode) {
  const std::lock_guard guard(m_mutex);
  step("createFolder", path);
  const QString real = resolved(path);
  requireWritable(real);
  requireParent(real);
  if (find(real) != nullptr) {
    fail(FailureKind::Exists, path);
  }
  make(real, FileKind::Folder, mode);
}

void FakeFileSystem::setMode(const QString &path, quint32 mode) {
  const std::lock_guard guard(m_mutex);
  step("setMode", path);
  const QString real = resolved(path);
  requireWritable(real);
  existing(real).mode = mode;
}

void FakeFileSystem::copy(const QString &from, const QString &to) {
  const std::lock_guard guard(m_mutex);
  step("copy", from);
  const QByteArray bytes = existingFile(resolved(from)).bytes;
  writeSteps(to, bytes);
}

void FakeFileSystem::rename(const QString &from, const QString &to) {
  const std::lock_guard guard(m_mutex);
  step("rename", from);
  requireWritable(from);
  requireWritable(to);
  const Node moved = existing(from);
  requireParent(to);
  if (&diskOf(from) != &diskOf(to)) {
    throw Failure(QStringLiteral("on another volume: ") + to);
  }
  const Node *target = find(to);
  if (target != nullptr && (target->kind == FileKind::Folder) != (moved.kind == FileKind::Folder)) {
    throw Failure(QStringLiteral("of another kind: ") + to);
  }
  if (target != nullptr && !names(to).isEmpty()) {
    fail(FailureKind::Exists, to);
  }
  drop(to);
  QMap<QString, Node> &nodes = diskOf(from).nodes;
  for (const QString &key : nodes.keys()) {
    if (key == from || key.startsWith(from + u'/')) {
      nodes.insert(to + key.mid(from.size()), nodes.take(key));
    }
  }
}

void FakeFileSystem::removeFile(const QString &path) {
  const std::lock_guard guard(m_mutex);
  step("removeFile", path);
  requireWritable(path);
  if (existing(path).kind == FileKind::Folder) {
    throw Failure(QStringLiteral("a folder: ") + path);
  }
  drop(path);
}

void FakeFileSystem::removeLeftover(const QString &path) {
  const std::lock_guard guard(m_mutex);
  step("removeFile", path);
  requireAnswer(path);
  if (existing(path).kind == FileKind::Folder) {
    throw Failure(QStringLiteral("a folder: ") + path);
  }
  drop(path);
}

void FakeFileSystem::removeFolder(const QString &path) {
  const std::lock_guard guard(m_mutex);
  step("removeFolder", path);
  requireWritable(path);
  const Node &node = existing(path);
  if (node.kind != FileKind::Folder || isMounted(path) || !names(path).isEmpty()) {
    throw Failure(QStringLiteral("no empty folder: ") + path);
  }
  drop(path);
}

void FakeFileSystem::removeTree(const QString &path) {
  const std::lock_guard guard(m_mutex);
  step("removeTree", path);
  requireWritable(path);
  const Node &node = existing(path);
  if (isMounted(path)) {
    throw Failure(QStringLiteral("another volume: ") + path);
  }
  if (node.kind == FileKind::Folder) {
    for (const QString &name : names(path)) {
      removeTree(path + u'/' + name);
    }
  }
  drop(path);
}

QString FakeFileSystem::setAside(const QString &path) {
  const std::lock_guard guard(m_mutex);
  QString free = path + QStringLiteral(".damaged");
  for (int number = 2; find(free) != nullptr; ++number) {
    free = path + QStringLiteral(".damaged-") + QString::number(number);
  }
  rename(path, free);
  return free;
}

bool FakeFileSystem::canRead(const QString &path) {
  const std::lock_guard guard(m_mutex);
  try {
    step("canRead", path);
    return existing(resolved(path)).kind == FileKind::File;
  } catch (const Failure &) {
    return false;
  }
}

bool FakeFileSystem::sameFile(const QString &a, const QString &b) {
  const std::lock_guard guard(m_mutex);
  try {
    step("sameFile", a);
    return existing(resolved(a)).fileId == existing(resolved(b)).fileId;
  } catch (const Failure &) {
    return false;
  }
}

QStringList FakeFileSystem::list(const QString &path) {
  const std::lock_guard guard(m_mutex);
  step("list", path);
  const QString real = resolved(path);
  if (existing(real).kind != FileKind::Folder) {
    throw Failure(QStringLiteral("not a folder: ") + path);
  }
  return names(real);
}

std::unique_ptr<FileLock> FakeFileSystem::lock(const QString &path) {
  const std::lock_guard guard(m_mutex);
  step("lock", path);
  requireWritable(path);
  requireParent(path);
  if (find(path) == nullptr) {
    make(path, FileKind::File, 0644);
  }
  const std::lock_guard held(m_held->mutex);
  if (m_held->byPath.contains(path)) {
    return nullptr;
  }
  const quint64 serial = m_held->nextSerial++;
  m_held->byPath.insert(path, serial);
  return std::make_unique<Lock>(m_held, path, serial);
}

std::optional<Volume> FakeFileSystem::volume(const QString &path) {
  const std::lock_guard guard(m_mutex);
  try {
    step("volume", path);
  } catch (const Failure &) {
    return std::nullopt;
  }
  const Disk &disk = diskOf(resolved(path));
  const bool answers = !disk.unknown && !disk.remembered;
  return Volume{disk.root, disk.typeName, answers ? disk.freeBytes : 0, disk.mountId, answers};
}

void FakeFileSystem::setModified(const QString &path, qint64 seconds) {
  const std::lock_guard guard(m_mutex);
  step("setModified", path);
  requireWritable(path);
  existing(path).modified = seconds;
}

void FakeFileSystem::writeHalf(const QString &path, const QByteArray &bytes) {
  const std::lock_guard guard(m_mutex);
  writeSteps(path, bytes.left(bytes.size() / 2));
}

} // namespace sonorel::test
