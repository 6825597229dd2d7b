#include "transfer/Transfer.h"

#include "platform/Failure.h"
#include "transfer/PathNames.h"
#include "transfer/TrackNames.h"

#include <QScopeGuard>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr std::chrono::milliseconds kPauseAfterRemoval{2000};
constexpr std::chrono::milliseconds kLastCopyDeadline{1500};

QString relativeTo(const QString &literal, const QString &path) {
  const QStringList pieces = path.split(literal);
  if (pieces.size() < 2) {
    throw Failure(u"the path "_s + path + u" is not below "_s + literal);
  }
  return pieces[1];
}

} // namespace

struct Transfer::Track {
  QString source;
  QString newName;       // N
  QString ownName;       // S
  QString parenthesised; // P
  QString olderName;     // O
  int artworkMode = 0;
  bool useArtistFolder = false;
};

Transfer::Transfer(const TransferTools &tools, ShareFolders folders, TransferArtwork artwork)
    : m_tools(tools), m_folders(std::move(folders)), m_artwork(std::move(artwork)) {}

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

bool Transfer::exists(const QString &path) {
  const Presence presence = m_tools.files.presence(path);
  if (presence == Presence::Unknown) {
    throw Failure(u"the share does not answer for "_s + path, FailureKind::Unknown);
  }
  return presence == Presence::Present;
}

void Transfer::createFolderIfMissing(const QString &path) {
  if (isFolder(m_tools.files, path)) {
    return;
  }
  try {
    m_tools.files.createFolder(path, kFolderMode);
  } catch (const Failure &failure) {
    // The copy that follows fails by itself; a share that is gone must not be tried further.
    if (failure.kind() == FailureKind::Unknown) {
      throw;
    }
    m_tools.desktop.log(u"The folder %1 could not be created: %2"_s.arg(path, failure.reason()));
  }
}

// A product that was never filled has not even the folder above it.
void Transfer::createMusicFolder() {
  const QString music = m_folders.music();
  if (!isFolder(m_tools.files, music.chopped(music.endsWith(u'/') ? 1 : 0))) {
    const QString below = m_folders.share() + u'/';
    createFoldersOf(below, music.mid(below.size()));
  }
}

void Transfer::createFoldersOf(const QString &base, const QString &relativeName) {
  for (qsizetype slash = relativeName.indexOf(u'/'); slash >= 0; slash = relativeName.indexOf(u'/', slash + 1)) {
    createFolderIfMissing(base + relativeName.left(slash));
  }
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

  createMusicFolder();
  m_asciiFileName = music + withinNameLimit(track.newName);
  m_nonAsciiFileName = music + track.ownName;
  if (exists(m_asciiFileName)) {
    return settleOn(track, m_asciiFileName, false);
  }
  if (exists(m_nonAsciiFileName)) {
    return settleOn(track, m_nonAsciiFileName, false);
  }
  const QString flatParenthesised = music + withinNameLimit(track.parenthesised);
  if (exists(flatParenthesised)) {
    m_nonAsciiFileName = flatParenthesised;
    return settleOn(track, flatParenthesised, false);
  }
  const QString flatOlder = music + withinNameLimit(track.olderName);
  if (exists(flatOlder)) {
    m_asciiFileName = flatOlder;
    return settleOn(track, flatOlder, false);
  }
  return placeInHierarchy(track);
}

bool Transfer::placeInHierarchy(const Track &track) {
  const QString music = m_folders.music();
  const QString hierarchy = hierarchyFolder(track.source, track.useArtistFolder);

  const QString older = shortenedRelativeName(hierarchy + track.olderName);
  createFoldersOf(music, older);
  m_asciiFileName = music + older;
  if (exists(m_asciiFileName)) {
    return settleOn(track, m_asciiFileName, true);
  }

  const QString newer = shortenedRelativeName(hierarchy + track.newName);
  createFoldersOf(music, newer);
  const QString folder = music + newer.left(newer.lastIndexOf(u'/') + 1);
  const QString newFile = music + newer;
  const QString ownFile = folder + track.ownName;
  m_asciiFileName = newFile;
  m_nonAsciiFileName = ownFile;
  const bool ownExists = exists(ownFile);
  if (!ownExists && !exists(newFile)) {
    const QString relativeParenthesised = withinNameLimit(folder.mid(music.size()) + track.parenthesised);
    if (exists(music + relativeParenthesised)) {
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
    if (copyTo(track, file, m_stop)) {
      if (track.artworkMode == 2) {
        artworkAction(track, file, true);
      }
      return true;
    }
    removeRemains(file);
    if (m_stop.stop_requested()) {
      break;
    }
  }
  return false;
}

// Nothing stood there before the copy, so what a failed one left is half a track, which players would show.
void Transfer::removeRemains(const QString &file) {
  if (m_tools.files.presence(file) == Presence::Absent) {
    return; // a name that the share does not take leaves nothing
  }
  try {
    m_tools.files.removeFile(file);
  } catch (const Failure &failure) {
    if (failure.kind() != FailureKind::Absent) {
      m_tools.desktop.log(u"%1 could not be removed: %2"_s.arg(file, failure.reason()));
    }
  }
}

bool Transfer::settleOn(const Track &track, const QString &file, bool useFolderHierarchy) {
  if (isFileAlreadyExistsOnVaultbox1(track.source, file)) {
    m_settledOnIdenticalFile = true;
    artworkAction(track, file, useFolderHierarchy);
    record(track, file);
    return false;
  }
  if (m_stop.stop_requested()) {
    return false; // the new copy could not follow
  }
  const bool removed = removeOld(file);
  // What cannot be removed is copied over all the same, but a folder would take the copy inside.
  if (!removed && isFolder(m_tools.files, file)) {
    return false;
  }
  if (m_tools.clock.sleep(kPauseAfterRemoval, m_stop)) {
    artworkAction(track, file, useFolderHierarchy);
  }
  if (copyTo(track, file, m_stop)) {
    return true;
  }
  if (!removed) { // it is the old track that stands there
    return false;
  }
  removeRemains(file);
  return m_stop.stop_requested() && replaceInAHurry(track, file);
}

// Nothing stands on the share any more, and the program is about to end: most tracks are copied in the moment that
// is left.
bool Transfer::replaceInAHurry(const Track &track, const QString &file) {
  if (copyTo(track, file, {}, kLastCopyDeadline)) {
    return true;
  }
  removeRemains(file);
  return false;
}

bool Transfer::removeOld(const QString &file) {
  try {
    m_tools.files.removeFile(file);
  } catch (const Failure &failure) {
    if (failure.kind() == FailureKind::Unknown) {
      throw;
    }
    m_tools.desktop.log(u"%1 could not be removed: %2"_s.arg(file, failure.reason()));
    return false;
  }
  return true;
}

bool Transfer::copyTo(const Track &track, const QString &file, const std::stop_token &stop,
                      std::chrono::milliseconds deadline) {
  const ToolResult result =
      m_tools.processes.run({u"/bin/cp"_s, {u"-p"_s, track.source, file}, std::nullopt, deadline}, stop);
  if (!succeeded(result)) {
    return false;
  }
  const QString companion = file.left(file.lastIndexOf(u'/') + 1) + u"._"_s + lastPathComponent(file);
  try {
    m_tools.files.removeFile(companion);
  } catch (const Failure &) { // there is none on most platforms
    (void)companion;
  }
  record(track, file);
  return true;
}

void Transfer::artworkAction(const Track &track, const QString &file, bool useFolderHierarchy) {
  if (track.artworkMode == 1) {
    m_artwork.embed(track.source);
  } else if (track.artworkMode == 2 && track.useArtistFolder) {
    m_artwork.standAlone(track.source, lastPathComponent(file), useFolderHierarchy);
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

bool Transfer::isFileAlreadyExistsOnVaultbox1(const QString &sourcePath, const QString &serverPath) {
  if (m_tools.files.sameFile(sourcePath, serverPath)) {
    return true;
  }
  const auto source = m_tools.files.attributes(sourcePath, Links::Follow);
  const auto server = m_tools.files.attributes(serverPath, Links::Follow);
  if (!source || !server || source->size != server->size) {
    return false;
  }
  const qint64 newer = source->modifiedSeconds - server->modifiedSeconds;
  return newer == 0 || newer == 1;
}

void Transfer::playlistInfoUpdate(const QString &sourcePath, bool photos) {
  const bool nonAscii = m_isNonAsciiFileTransferred;
  QString place;
  if (!photos || nonAscii) {
    place = relativeTo(kMusicFolderLiteral.toString(), nonAscii ? m_nonAsciiFileName : m_asciiFileName);
    place.replace(u"/"_s, kSeparatorMark.toString());
  }
  const QString pictureName = cleanedName(lastPathComponent(sourcePath));
  m_tools.board.updateRecords(photos, sourcePath, [&](PlaylistInfo &record) {
    record.songTransferFlag = u"Y"_s;
    if (!photos || nonAscii) {
      record.destinationSongName = place;
    } else if (m_isOlderFilePresentInMacFolder) {
      record.destinationSongName = pictureName;
    } else {
      const qsizetype slash = record.destinationSongName.lastIndexOf(u'/');
      record.destinationSongName = record.destinationSongName.left(slash + 1) + pictureName;
    }
  });
}

} // namespace sonorel
