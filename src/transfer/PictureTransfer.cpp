#include "transfer/PictureTransfer.h"

#include "core/state/PathNames.h"
#include "platform/Failure.h"

#include <QScopeGuard>

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

// The folder that the picture lies in, cleaned; nothing for a path without one.
QString albumFolder(const QString &path) {
  const QStringList components = path.split(u'/');
  return components.size() >= 3 ? cleanedName(components[components.size() - 2]) : QString();
}

QString serverName(const QString &path) {
  return cleanedName(lastPathComponent(path));
}

} // namespace

PictureTransfer::PictureTransfer(const TransferTools &tools, ServerFiles &server, ShareFolders folders)
    : m_tools(tools), m_server(server), m_folders(std::move(folders)) {}

bool PictureTransfer::transferVideoFile(const QString &path) {
  m_settledOnIdenticalFile = false;
  const QString file = m_folders.video() + serverName(path);
  const bool isThere = m_server.exists(file);
  if (isThere && isSettledOn(path, file)) {
    return false;
  }
  if (!m_server.canRead(path) || (isThere && isFolder(m_tools.files, file))) {
    return false; // a folder would take the copy inside
  }
  if (!isThere) {
    m_server.createTree(m_folders.video(), kFolderMode);
  }
  if (!(isThere ? copyOver(path, file) : copyNew(path, file))) {
    return false;
  }
  m_tools.desktop.log(u"task successful in volume smbfs"_s);
  return true;
}

bool PictureTransfer::transferPhotoOrVideoFile(const QString &path) {
  m_settledOnIdenticalFile = false;
  const QString photo = m_folders.photo();
  m_server.createTree(photo, kFolderMode);
  const QString flat = photo + serverName(path);
  const QString album = albumFolder(path);
  const bool isFlat = m_server.exists(flat);
  if (album.isEmpty() || isFlat) {
    m_isOlderFilePresentInMacFolder = true;
    const auto reset = qScopeGuard([this] { m_isOlderFilePresentInMacFolder = false; });
    return settleOrCopy(path, flat, isFlat);
  }
  m_server.createFolderIfMissing(photo + album, kFolderMode);
  const QString file = photo + album + u'/' + serverName(path);
  return settleOrCopy(path, file, m_server.exists(file));
}

bool PictureTransfer::settleOrCopy(const QString &source, const QString &file, bool isThere) {
  if (isThere && isSettledOn(source, file)) {
    return false;
  }
  // Nothing is removed for what cannot be copied, and a pipe or a device would keep the copy busy for ever.
  if (!m_server.canRead(source) || m_server.stop().stop_requested()) {
    return false;
  }
  return isThere ? replace(source, file) : copyNew(source, file);
}

bool PictureTransfer::replace(const QString &source, const QString &file) {
  const bool removed = m_server.removeOld(file);
  // What cannot be removed is copied over all the same, but a folder would take the copy inside.
  if (!removed && isFolder(m_tools.files, file)) {
    return false;
  }
  if (!removed) {
    return copyOver(source, file);
  }
  // Nothing stands there any more: no album may show it, whichever source it was.
  auto lost = qScopeGuard([this, &file, name = lastPathComponent(file)] {
    const QList<PlaylistInfo> records = m_tools.board.records(true);
    for (const PlaylistInfo &one : records) {
      if (one.songTransferFlag == u"Y" && one.destinationSongName.endsWith(name, Qt::CaseInsensitive) &&
          m_server.wentWith(file, serverCandidates(one.destinationSongName).constFirst())) {
        m_tools.board.updateRecords(true, one.sourceSongPath,
                                    [](PlaylistInfo &taken) { taken.songTransferFlag = u"N"_s; });
      }
    }
  });
  const bool copied = m_server.copyInPlaceOfRemoved(source, file);
  if (copied) {
    lost.dismiss();
    record(source);
  }
  return copied;
}

bool PictureTransfer::copyOver(const QString &source, const QString &file) {
  const bool copied = m_server.copy(source, file);
  if (copied) {
    record(source);
  }
  return copied;
}

bool PictureTransfer::copyNew(const QString &source, const QString &file) {
  if (m_server.copy(source, file)) {
    record(source);
    return true;
  }
  m_server.removeRemains(file);
  return false;
}

bool PictureTransfer::isSettledOn(const QString &source, const QString &file) {
  m_settledOnIdenticalFile = m_server.isFileAlreadyExistsOnVaultbox1(source, file);
  if (m_settledOnIdenticalFile) {
    record(source);
  }
  return m_settledOnIdenticalFile;
}

QStringList PictureTransfer::serverCandidates(const QString &path) const {
  const QString album = albumFolder(path);
  const QString flat = m_folders.photo() + serverName(path);
  return album.isEmpty() ? QStringList{flat} : QStringList{m_folders.photo() + album + u'/' + serverName(path), flat};
}

void PictureTransfer::record(const QString &source) {
  if (m_tools.board.hasRecords(true)) {
    playlistInfoUpdate(source);
  }
}

void PictureTransfer::playlistInfoUpdate(const QString &path) {
  const QString name = serverName(path);
  m_tools.board.updateRecords(true, path, [&](PlaylistInfo &record) {
    record.songTransferFlag = u"Y"_s;
    const qsizetype slash = record.destinationSongName.lastIndexOf(u'/');
    record.destinationSongName =
        m_isOlderFilePresentInMacFolder ? name : record.destinationSongName.left(slash + 1) + name;
  });
}

} // namespace sonorel
