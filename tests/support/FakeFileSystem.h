// A working file system in memory, in the system's own paths: folders, modes, times, links, locks and volumes that
// come and go and keep what they hold. Knobs let the n-th operation fail, a volume fall silent or fill up, or the
// whole client die. Every call of the interface is one operation at least; a writing call is one for each step
// after which an interruption leaves something else behind. Any thread; beforeOperation runs on the caller's, with
// no lock held, and is set before other threads use the object.
#pragma once

#include "platform/Failure.h"
#include "platform/FileSystem.h"

#include <QHash>
#include <QMap>
#include <QSet>

#include <functional>
#include <mutex>

namespace sonorel::test {

// The client's process ended here. Nobody but a test may catch it.
struct Died {};

class FakeFileSystem : public FileSystem {
public:
  FakeFileSystem();
  ~FakeFileSystem() override;

  static constexpr quint64 kPlenty = 100ULL * 1024 * 1024 * 1024;
  static constexpr qint64 kStart = 1'000'000;

  // --- the tree; none of these is an operation, none of them fails ---
  // Volumes. The point is made when missing; what lay there is covered. A volume that was unmounted comes back with
  // its content.
  void mount(const QString &root, const QString &typeName = QStringLiteral("smbfs"), quint64 freeBytes = kPlenty);
  void unmount(const QString &root);
  [[nodiscard]] bool isMounted(const QString &root) const;
  void makeFolders(const QString &path);
  void put(const QString &path, const QByteArray &bytes, qint64 modifiedSeconds = 1000);
  void putLink(const QString &path, const QString &target);
  void putOther(const QString &path);                        // a FIFO, a device
  [[nodiscard]] QByteArray bytes(const QString &path) const; // throws std::runtime_error when there is no such file
  [[nodiscard]] bool exists(const QString &path) const;
  // What stands on the disk itself, also while its volume is not mounted or does not answer.
  [[nodiscard]] std::optional<QByteArray> stored(const QString &path) const;
  [[nodiscard]] qint64 modified(const QString &path) const;
  [[nodiscard]] quint32 mode(const QString &path) const;
  void erase(const QString &path); // with all below
  // Paths below root, relative to it; folders end in "/" and hold nothing.
  [[nodiscard]] QMap<QString, QByteArray> tree(const QString &root) const;
  qint64 nowSeconds = kStart; // the time that new bytes get

  // --- faults ---
  void setFreeBytes(const QString &root, quint64 freeBytes);
  void setUnknown(const QString &root, bool unknown); // the volume is mounted and does not answer
  // The volume is mounted, its server is gone, and what was seen of its files is still told.
  void setRemembered(const QString &root, bool remembered);
  void failAt(int operation, FailureKind kind); // the n-th operation from now, counted from 1
  void failPath(const QString &path, FailureKind kind);
  void clearFailures();
  void dieAt(int operation); // the n-th operation from now and all after it throw Died
  void revive();             // a new process: the locks of the dead one are free
  [[nodiscard]] bool isDead() const;
  // Called before each operation with its number since the construction.
  std::function<void(int)> beforeOperation;

  [[nodiscard]] int operations() const;  // since the construction
  [[nodiscard]] QStringList log() const; // "write /path", one line for each operation
  void clearLog();

  // --- FileSystem ---
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

  // --- for the tools ---
  // One operation each.
  void removeFolder(const QString &path);   // only an empty one
  void removeLeftover(const QString &path); // a file; also below a point that is not mounted
  void setModified(const QString &path, qint64 seconds);
  // The first half of the bytes, as a tool leaves it that was killed.
  void writeHalf(const QString &path, const QByteArray &bytes);

private:
  struct Node {
    FileKind kind = FileKind::File;
    QByteArray bytes;
    QString target;
    qint64 modified = 0;
    quint32 mode = 0;
    quint64 fileId = 0;
  };
  struct Disk {
    QString root;
    QString typeName;
    quint64 freeBytes = kPlenty;
    quint64 mountId = 0;
    bool mounted = false;
    bool unknown = false;
    bool remembered = false;
    QMap<QString, Node> nodes; // by whole path
  };
  struct Held {
    std::recursive_mutex mutex;
    QHash<QString, quint64> byPath; // path to the serial of its holder
    quint64 nextSerial = 1;
  };
  class Lock;

  // Recursive, and given back whole while a hook runs, however deep it was taken: a hook does what another thread
  // might do at that moment, with locks of its own.
  class TreeMutex {
  public:
    void lock();
    void unlock();
    void runUnlocked(const std::function<void()> &task);

  private:
    std::recursive_mutex m_mutex; // guards m_depth
    int m_depth = 0;
  };

  // One operation: counted, logged, and failed when a knob says so.
  void step(const char *name, const QString &path);
  void steppedByDeath();
  [[noreturn]] static void fail(FailureKind kind, const QString &path);

  [[nodiscard]] QString resolved(const QString &path) const;
  [[nodiscard]] const Disk &diskOf(const QString &path) const;
  [[nodiscard]] Disk &diskOf(const QString &path);
  [[nodiscard]] const Node *find(const QString &path) const;
  [[nodiscard]] Node *find(const QString &path);
  [[nodiscard]] Node &existing(const QString &path);
  [[nodiscard]] Node &existingFile(const QString &path);
  [[nodiscard]] QStringList names(const QString &path) const;
  void requireAnswer(const QString &path) const;
  void requireWritable(const QString &path) const;
  void requireParent(const QString &path) const;
  Node &make(const QString &path, FileKind kind, quint32 mode);
  void fill(const QString &path, Node &node, const QByteArray &bytes);
  void empty(const QString &path, Node &node);
  void drop(const QString &path);
  void dropTree(const QString &path);
  void writeSteps(const QString &path, const QByteArray &bytes);

  mutable TreeMutex m_mutex; // guards everything below
  Disk m_base;
  QMap<QString, Disk> m_disks; // by root
  int m_links = 0;
  quint64 m_nextFileId = 1;
  quint64 m_nextMountId = 2;
  int m_nextTemporary = 1;
  int m_operations = 0;
  int m_failAt = 0;
  FailureKind m_failKind = FailureKind::Other;
  int m_dieAt = 0;
  bool m_dead = false;
  QHash<QString, FailureKind> m_failPaths;
  QStringList m_log;
  std::shared_ptr<Held> m_held = std::make_shared<Held>();
};

} // namespace sonorel::test
