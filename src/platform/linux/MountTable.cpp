#include "platform/linux/MountTable.h"

#include "platform/linux/SystemError.h"

#include <QHashFunctions>
#include <QList>

#include <fcntl.h>
#include <poll.h>

#include <cerrno>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr const char *kPath = "/proc/self/mountinfo";

bool isOctal(char c) {
  return c >= '0' && c <= '7';
}

// Blanks, tabs, line feeds and backslashes stand as "\ooo".
QByteArray unescaped(const QByteArray &field) {
  QByteArray plain;
  plain.reserve(field.size());
  for (qsizetype i = 0; i < field.size(); ++i) {
    const bool escape = field.at(i) == '\\' && i + 3 < field.size() && isOctal(field.at(i + 1)) &&
                        isOctal(field.at(i + 2)) && isOctal(field.at(i + 3));
    if (!escape) {
      plain.append(field.at(i));
      continue;
    }
    plain.append(
        static_cast<char>((field.at(i + 1) - '0') * 64 + (field.at(i + 2) - '0') * 8 + field.at(i + 3) - '0'));
    i += 3;
  }
  return plain;
}

bool isAtOrBelow(const QByteArray &path, const QByteArray &folder) {
  if (folder == "/") {
    return path.startsWith('/');
  }
  return path.startsWith(folder) && (path.size() == folder.size() || path.at(folder.size()) == '/');
}

QByteArray readAll(int file) {
  QByteArray text;
  char block[16384];
  ::lseek(file, 0, SEEK_SET);
  for (;;) {
    const ssize_t got = ::read(file, block, sizeof block);
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got < 0) {
      throw Failure(systemFailure(errno, QString::fromLatin1(kPath)).reason(), FailureKind::Unknown);
    }
    if (got == 0) {
      return text;
    }
    text.append(block, got);
  }
}

} // namespace

// ID PARENT MAJOR:MINOR ROOT POINT OPTIONS [TAG...] - TYPE SOURCE SUPEROPTIONS
MountEntries parseMountTable(const QByteArray &text) {
  MountEntries entries;
  for (const QByteArray &line : text.split('\n')) {
    const QList<QByteArray> fields = line.split(' ');
    const qsizetype dash = fields.indexOf("-", 6);
    bool isNumber = false;
    const quint64 id = fields.first().toULongLong(&isNumber);
    if (!isNumber || dash < 0 || fields.size() < dash + 3) {
      continue;
    }
    entries.push_back(
        {id, fields.at(2), unescaped(fields.at(4)), unescaped(fields.at(dash + 1)), unescaped(fields.at(dash + 2))});
  }
  return entries;
}

const MountEntry *mountAt(const MountEntries &entries, const QByteArray &point) {
  for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
    if (entry->point == point) {
      return &*entry;
    }
  }
  return nullptr;
}

const MountEntry *mountHolding(const MountEntries &entries, const QByteArray &path) {
  const MountEntry *best = nullptr;
  for (const MountEntry &entry : entries) {
    if (isAtOrBelow(path, entry.point) && (best == nullptr || entry.point.size() >= best->point.size())) {
      best = &entry;
    }
  }
  return best;
}

bool hasMountWithin(const MountEntries &entries, const QByteArray &path) {
  for (const MountEntry &entry : entries) {
    if (isAtOrBelow(entry.point, path)) {
      return true;
    }
  }
  return false;
}

QString systemTypeName(const QByteArray &type) {
  // The last is what mount/MountPoint.h calls our own mounts.
  for (const char *share : {"cifs", "smb3", "smbfs", "fuse.sonorel"}) {
    if (type == share) {
      return u"smbfs"_s;
    }
  }
  return QString::fromUtf8(type);
}

quint64 mountIdentity(const MountEntry &entry) {
  return qHashMulti(0, entry.id, entry.device, entry.source);
}

std::shared_ptr<const MountEntries> MountTable::entries() {
  const std::lock_guard lock(m_mutex);
  if (!m_file.isOpen()) {
    m_file.reset(::open(kPath, O_RDONLY | O_CLOEXEC));
    if (!m_file.isOpen()) {
      throw Failure(systemFailure(errno, QString::fromLatin1(kPath)).reason(), FailureKind::Unknown);
    }
  }
  // The kernel reports each change once for each open file, so the question has to come before the reading.
  pollfd changed{m_file.get(), POLLPRI, 0};
  const bool isNew = ::poll(&changed, 1, 0) != 0;
  if (isNew || !m_entries) {
    m_entries = std::make_shared<const MountEntries>(parseMountTable(readAll(m_file.get())));
  }
  return m_entries;
}

} // namespace sonorel
