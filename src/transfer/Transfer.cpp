#include "transfer/Transfer.h"

#include "core/state/PathNames.h"
#include "platform/Failure.h"
#include "transfer/TrackNames.h"

#include <QScopeGuard>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr std::chrono::milliseconds kPauseAfterRemoval{2000};

QString relativeTo(const QString &literal, const QString &path) {
  const QStringList pieces = path.split(literal);
  if (pieces.size() < 2) {
    throw Failure(u"the path "_s + path + u" is not below "_s + literal);
  }
  return pieces[1];
}

// As a record names the place of a file.
QString placeOf(const QString &file) {
  return relativeTo(kMusicFolderLiteral.toString(), file).replace(u"/"_s, kSeparatorMark.toString());
}

// Where the file of a record stands that was placed.
QString pathOf(const PlaylistInfo &record) {
  return kMusicFolderLiteral.toString() +
         QString(record.destinationSongName).replace(kSeparatorMark.toString(), u"/"_s);
}

} // namespace

struct Transfer::Track {
  QString source;
  QString newName;       // from the tags
  QString ownName;       // as the source is called
  QString parenthesised; // the source's name in parentheses
  QString olderName;     // from the tags, by the earlier scheme
  int artworkMode = 0;
  bool useArtistFolder = false;
};

Transfer::Transfer(const TransferTools &tools, ShareFolders folders, TransferArtwork artwork)
    : m_tools(tools), m_folders(std::move(folders)), m_artwork(std::move(artwork)),
      m_server(tools.files, tools.processes, tools.desktop, m_folders.share()),
      m_pictures(tools, m_server, m_folders), m_bookmarks(tools, m_server, m_folders.bookmarks()) {}

bool Transfer::isValidFile(const QString &extension) {
  const FileType type = fileTypeOf(extension);
  m_isSoundFile = type == FileType::Sound;
  m_isVideoFile = false;
  m_isPhotoOrVideoFile = type == FileType::PhotoOrVideo;
  m_isBookmarkFile = type == FileType::Bookmark;
  m_isInvalidFileType = m_isInvalidFileType || type == FileType::Invalid;
  return type != FileType::Invalid;
}

bool Transfer::isValidSoundFile(const QString &extension) {
  return fileTypeOf(extension) == FileType::Sound;
}

bool Transfer::transferSoundFile(const QString &sourcePath, const QString &changedSongFileNameFromAppCtrl,
                                 int radioBtnVal, int flag) {
  m_settledOnIdenticalFile = false;
  const QString music = m_folders.music();
  (void)relativeTo(kMusicFolderLiteral.toString(), music); // the limits are counted behind the literal

  Track track;
  track.source = sourcePath;
  track.artworkMode = radioBtnVal;
  track.useArtistFolder = flag == 1;
  track.newName = cleanedName(changedSongFileNameFromAppCtrl);
  track.ownName = lastPathComponent(sourcePath);
  track.parenthesised = withExtension(u'(' + nameWithoutExtension(sourcePath) + u')', pathExtension(sourcePath));
  track.olderName = cleanedName(changeSongFileNameOlderWay(sourcePath, m_tools.metadata.tags(sourcePath)));

  m_server.createTree(music, kFolderMode);
  m_asciiFileName = music + withinNameLimit(track.newName);
  m_nonAsciiFileName = music + track.ownName;
  if (m_server.exists(m_asciiFileName)) {
    return settleOn(track, m_asciiFileName, false);
  }
  if (m_server.exists(m_nonAsciiFileName)) {
    return settleOn(track, m_nonAsciiFileName, false);
  }
  const QString flatParenthesised = music + withinNameLimit(track.parenthesised);
  if (m_server.exists(flatParenthesised)) {
    m_nonAsciiFileName = flatParenthesised;
    return settleOn(track, flatParenthesised, false);
  }
  const QString flatOlder = music + withinNameLimit(track.olderName);
  if (m_server.exists(flatOlder)) {
    m_asciiFileName = flatOlder;
    return settleOn(track, flatOlder, false);
  }
  return placeInHierarchy(track);
}

bool Transfer::placeInHierarchy(const Track &track) {
  const QString music = m_folders.music();
  const QString hierarchy = hierarchyFolder(track.source, track.useArtistFolder);

  const QString older = shortenedRelativeName(hierarchy + track.olderName);
  m_server.createFoldersOf(music, older);
  m_asciiFileName = music + older;
  if (m_server.exists(m_asciiFileName)) {
    return settleOn(track, m_asciiFileName, true);
  }

  const QString newer = shortenedRelativeName(hierarchy + track.newName);
  m_server.createFoldersOf(music, newer);
  const QString folder = music + newer.left(newer.lastIndexOf(u'/') + 1);
  const QString newFile = music + newer;
  const QString ownFile = folder + track.ownName;
  m_asciiFileName = newFile;
  m_nonAsciiFileName = ownFile;
  const bool ownExists = m_server.exists(ownFile);
  if (!ownExists && !m_server.exists(newFile)) {
    const QString relativeParenthesised = withinNameLimit(folder.mid(music.size()) + track.parenthesised);
    if (m_server.exists(music + relativeParenthesised)) {
      m_nonAsciiFileName = music + relativeParenthesised;
      return settleOn(track, m_nonAsciiFileName, true);
    }
    return copyIntoHierarchy(track, folder, newFile);
  }
  return settleOn(track, ownExists ? ownFile : newFile, true);
}

bool Transfer::copyIntoHierarchy(const Track &track, const QString &folder, const QString &newFile) {
  if (track.artworkMode == 1) {
    artworkAction(track, newFile, true);
  }
  for (const QString &file : {newFile, folder + track.ownName}) {
    if (copyTo(track, file)) {
      if (track.artworkMode == 2) {
        artworkAction(track, file, true);
      }
      return true;
    }
    m_server.removeRemains(file);
    if (m_server.stop().stop_requested()) {
      break;
    }
  }
  return false;
}

bool Transfer::settleOn(const Track &track, const QString &file, bool useFolderHierarchy) {
  if (m_server.isFileAlreadyExistsOnVaultbox1(track.source, file)) {
    m_settledOnIdenticalFile = true;
    artworkAction(track, file, useFolderHierarchy);
    record(track, file);
    return false;
  }
  if (m_server.stop().stop_requested()) {
    return false; // the new copy could not follow
  }
  if (!m_server.canRead(track.source)) {
    return false; // the older one stays
  }
  const bool removed = m_server.removeOld(file);
  // What cannot be removed is copied over all the same, but a folder would take the copy inside.
  if (!removed && isFolder(m_tools.files, file)) {
    return false;
  }
  auto lost = qScopeGuard([this, &file] { takeBack(file); });
  if (!removed) {
    lost.dismiss();
  }
  if (m_tools.clock.sleep(kPauseAfterRemoval, m_server.stop())) {
    artworkAction(track, file, useFolderHierarchy);
  }
  const bool copied = removed ? m_server.copyInPlaceOfRemoved(track.source, file) : m_server.copy(track.source, file);
  if (copied) {
    lost.dismiss();
    record(track, file);
  }
  return copied;
}

// Nothing stands there any more: no list may show it, whichever source it was.
void Transfer::takeBack(const QString &file) {
  const QString place = placeOf(file);
  const QList<PlaylistInfo> records = m_tools.board.records(false);
  for (const PlaylistInfo &record : records) {
    if (record.songTransferFlag == u"Y" &&
        (record.destinationSongName == place || m_server.wentWith(file, pathOf(record)))) {
      m_tools.board.updateRecords(false, record.sourceSongPath,
                                  [](PlaylistInfo &lost) { lost.songTransferFlag = u"N"_s; });
    }
  }
}

bool Transfer::copyTo(const Track &track, const QString &file) {
  if (!m_server.copy(track.source, file)) {
    return false;
  }
  record(track, file);
  return true;
}

void Transfer::artworkAction(const Track &track, const QString &file, bool useFolderHierarchy) {
  if (track.artworkMode == 1) {
    m_artwork.embed(track.source, m_server.stop());
  } else if (track.artworkMode == 2 && track.useArtistFolder) {
    m_artwork.standAlone(track.source, lastPathComponent(file), useFolderHierarchy, m_server.stop());
  }
}

void Transfer::record(const Track &track, const QString &file) {
  if (!m_tools.board.hasRecords(false)) {
    return;
  }
  m_isNonAsciiFileTransferred = file != m_asciiFileName;
  if (m_isNonAsciiFileTransferred) {
    m_nonAsciiFileName = file;
  }
  const auto reset = qScopeGuard([this] { m_isNonAsciiFileTransferred = false; });
  playlistInfoUpdate(track.source, false);
}

bool Transfer::isPictureOnTheServer(const QString &path) {
  if (m_pictures.settledOnIdenticalFile()) {
    return true;
  }
  const QStringList candidates = m_pictures.serverCandidates(path);
  return std::any_of(candidates.begin(), candidates.end(),
                     [&](const QString &file) { return isFileAlreadyExistsOnVaultbox1(path, file); });
}

void Transfer::transferMetaDataFile(const QString &path) {
  const QString system = m_folders.system();
  const QString file = system + lastPathComponent(path);
  if (m_server.exists(file)) {
    (void)m_server.removeOld(file);
  }
  m_server.createTree(system, kDefaultFolderMode);
  m_tools.files.copy(path, file);
  m_server.removeCompanion(file);
}

void Transfer::playlistInfoUpdate(const QString &sourcePath, bool photos) {
  if (photos) {
    m_pictures.playlistInfoUpdate(sourcePath);
    return;
  }
  const QString place = placeOf(m_isNonAsciiFileTransferred ? m_nonAsciiFileName : m_asciiFileName);
  m_tools.board.updateRecords(false, sourcePath, [&place](PlaylistInfo &record) {
    record.songTransferFlag = u"Y"_s;
    record.destinationSongName = place;
  });
}

} // namespace sonorel
