#include "favourites/FavouritesRewrite.h"

#include "core/state/LogException.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qsizetype kLongestKey = 120;

QString markName() {
  return u"/client-mark"_s;
}

ShareLock::Tools lockTools(const RewriteTools &tools) {
  return {tools.files, tools.clock, tools.identifiers, tools.desktop};
}

} // namespace

FavouritesRewrite::FavouritesRewrite(RewriteTools tools, ShareFolders folders, QString tempFileLocation,
                                     QString backupFolder)
    : m_tools(tools), m_folders(std::move(folders)), m_tempFileLocation(std::move(tempFileLocation)),
      m_backupFolder(std::move(backupFolder)) {}

QString productKey(const Session &session) {
  const QString hardware = session.hardwareAddress();
  const QString key = hardware.isEmpty() ? session.connectedAddress() : hardware;
  // "_" in front keeps "", "." and ".." from meaning something else.
  return u'_' + cleanedName(key.toLower()).left(kLongestKey);
}

QString FavouritesRewrite::backupFolderOfProduct() const {
  return m_backupFolder + u'/' + productKey(m_tools.session);
}

FavouritesBackup FavouritesRewrite::backup(FavouritesKind kind) const {
  return {m_tools.files, backupFolderOfProduct(), favouritesFileName(kind), headerSize(kind)};
}

QByteArray FavouritesRewrite::ownMark() {
  const QString path = m_backupFolder + markName();
  try {
    if (const QByteArray mark = m_tools.files.read(path); !mark.isEmpty()) {
      return mark;
    }
  } catch (const Failure &failure) {
    if (failure.kind() != FailureKind::Absent) {
      throw;
    }
  }
  const QByteArray mark = m_tools.identifiers.generateUUID().toLatin1();
  makePrivateFolders(m_tools.files, m_backupFolder);
  m_tools.files.writeAtomically(path, mark);
  return mark;
}

FavouritesRewrite::Turn FavouritesRewrite::begin(FavouritesKind kind, std::stop_token stop) {
  requireShare();
  return Turn(*this, kind, stop);
}

// Absent means something only on a share that is mounted and has its System folder.
void FavouritesRewrite::requireShare() {
  QString root = m_folders.share();
  while (root.endsWith(u'/')) {
    root.chop(1);
  }
  const auto volume = m_tools.files.volume(root);
  if (!volume || volume->mountRoot != root || !volume->answers || !isFolder(m_tools.files, m_folders.system())) {
    throw Failure(u"the share does not answer"_s, FailureKind::Unknown);
  }
}

void FavouritesRewrite::recoverAtConnect(std::stop_token stop) {
  for (const FavouritesKind kind : {FavouritesKind::Music, FavouritesKind::Photos}) {
    try {
      if (backup(kind).hasMarker()) {
        static_cast<void>(begin(kind, stop).look());
      }
    } catch (const std::exception &e) {
      logException(m_tools.desktop, u"recoverAtConnect"_s, e);
    }
  }
}

FavouritesRewrite::Turn::Turn(FavouritesRewrite &owner, FavouritesKind kind, std::stop_token stop)
    : m_owner(owner), m_turn(owner.m_turnMutex), m_name(favouritesFileName(kind)),
      m_path(owner.m_folders.system() + m_name), m_backup(owner.backup(kind)),
      m_lock(lockTools(owner.m_tools), owner.m_folders.system() + kShareLockName.toString(), owner.ownMark(), stop) {}

std::optional<FileAttributes> FavouritesRewrite::Turn::current() {
  auto found = m_owner.m_tools.files.attributes(m_path, Links::Follow);
  if (!found) {
    m_owner.requireShare();
    // A second opinion: this answer decides whether a fresh file is made.
    if (m_owner.m_tools.files.list(m_owner.m_folders.system()).contains(m_name)) {
      throw Failure(u"it cannot be told whether %1 is there"_s.arg(m_name), FailureKind::Unknown);
    }
  } else if (found->kind != FileKind::File) {
    throw Failure(m_name + u" is no file"_s, FailureKind::Unknown);
  }
  return found;
}

SeenFile FavouritesRewrite::Turn::look() {
  recover();
  SeenFile seen;
  seen.attributes = current(); // before the bytes: a change in between is noticed at the delete
  if (seen.attributes) {
    seen.bytes = m_owner.m_tools.files.read(m_path);
  }
  return seen;
}

// A marker stands: this client died, or lost the share, between the preparation and the end of a rewrite.
void FavouritesRewrite::Turn::recover() {
  if (!m_backup.hasMarker()) {
    return;
  }
  const auto next = m_backup.interrupted();
  if (!next) {
    m_backup.finish(); // it had not come to the delete yet
    return;
  }
  if (!current()) {
    write(*next);
    m_owner.m_tools.desktop.log(u"%1 was missing after an interrupted rewrite; it was written anew."_s.arg(m_name));
  } else if (m_owner.m_tools.files.read(m_path) != *next) {
    m_backup.keepPrevious(*next);
    m_owner.m_tools.desktop.log(
        u"%1 was changed after an interrupted rewrite; what was to be written is kept in the backup."_s.arg(m_name));
  }
  m_backup.finish();
}

bool FavouritesRewrite::Turn::unchanged(const SeenFile &seen) {
  const auto now = current();
  if (!now || !seen.attributes) {
    return now.has_value() == seen.attributes.has_value();
  }
  return now->size == seen.attributes->size && now->modifiedSeconds == seen.attributes->modifiedSeconds &&
         now->modifiedNanoseconds == seen.attributes->modifiedNanoseconds;
}

bool FavouritesRewrite::Turn::replace(const SeenFile &seen, const QByteArray &newBytes) {
  m_owner.m_tools.files.writeAtomically(m_owner.m_tempFileLocation + m_name, newBytes);
  m_backup.prepare(newBytes, seen.bytes);
  try {
    m_lock.requireHeld();
    if (!unchanged(seen)) {
      finishBackup();
      return false;
    }
  } catch (const std::exception &) {
    finishBackup(); // nothing was deleted yet
    throw;
  }
  if (seen.attributes) {
    deleteOld();
  }
  try {
    write(newBytes);
  } catch (const std::exception &e) {
    if (putBack(seen)) {
      finishBackup();
    }
    throw Failure(u"%1 could not be written: %2"_s.arg(m_name, reasonOf(e)));
  }
  finishBackup();
  return true;
}

void FavouritesRewrite::Turn::deleteOld() {
  try {
    m_owner.m_tools.files.removeFile(m_path);
  } catch (const std::exception &e) {
    // When it cannot be told whether the file still stands, the marker stays for the next connection.
    if (surelyStands()) {
      finishBackup();
    }
    throw Failure(u"%1 could not be deleted: %2"_s.arg(m_name, reasonOf(e)));
  }
}

// A look at the file itself may be answered from what the system remembers of it; the list comes from the server.
bool FavouritesRewrite::Turn::surelyStands() {
  try {
    m_owner.requireShare();
    return m_owner.m_tools.files.list(m_owner.m_folders.system()).contains(m_name);
  } catch (const Failure &) {
    return false;
  }
}

void FavouritesRewrite::Turn::write(const QByteArray &bytes) {
  m_owner.m_tools.files.writeAtomically(m_path, bytes);
  if (m_owner.m_tools.files.read(m_path) != bytes) {
    throw Failure(u"the server holds other bytes than were written"_s, FailureKind::Damaged);
  }
}

// True when the share is again as it was seen.
bool FavouritesRewrite::Turn::putBack(const SeenFile &seen) {
  try {
    if (seen.attributes) {
      write(seen.bytes);
    } else if (current()) {
      m_owner.m_tools.files.removeFile(m_path);
    }
    return true;
  } catch (const std::exception &e) {
    logException(m_owner.m_tools.desktop, u"putBackFavourites"_s, e);
    return false;
  }
}

// A marker that stays behind is understood at the next look; it is no reason to call the rewrite failed.
void FavouritesRewrite::Turn::finishBackup() {
  try {
    m_backup.finish();
  } catch (const std::exception &e) {
    logException(m_owner.m_tools.desktop, u"finishFavouritesBackup"_s, e);
  }
}

} // namespace sonorel
