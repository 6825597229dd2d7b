// Puts one sound file onto the share: classifies, forms the destination, settles on a copy that is there already or
// copies, and marks the playlist records of the file. Worker thread; blocks on the share. Failures are thrown to the
// driver. Read next: TrackNames.h for the names, TransferDriver.h for the caller.
#pragma once

#include "core/state/ShareLayout.h"
#include "core/state/TransferBoard.h"
#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/Processes.h"
#include "transfer/FileTypes.h"
#include "transfer/MetadataCache.h"

#include <QString>

#include <functional>
#include <stop_token>

namespace sonorel {

// All of it must outlive the object.
struct TransferTools {
  FileSystem &files;
  Processes &processes;
  Clock &clock;
  Desktop &desktop;
  MetadataCache &metadata;
  TransferBoard &board;
  QString homePath = {}; // the user's home folder, no "/" at its end
};

// What stands beside a track once it is placed: album artwork. Mode 1 embeds before the copy, mode 2 places a
// picture; none by default.
struct TransferArtwork {
  std::function<void(const QString &track)> embed = [](const QString &) {};
  std::function<void(const QString &track, const QString &changedFileName, bool useFolderHierarchy)> standAlone =
      [](const QString &, const QString &, bool) {};
};

class Transfer {
public:
  Transfer(const TransferTools &tools, ShareFolders folders, TransferArtwork artwork = {});

  // The token that ends pauses and copies of the running transfer.
  void setStopToken(std::stop_token stop) { m_stop = std::move(stop); }

  // --- classification: the four flags; at most one is set ---
  bool isValidFile(const QString &extension);
  [[nodiscard]] static bool isValidSoundFile(const QString &extension);
  [[nodiscard]] bool isSoundFileType() const { return m_isSoundFile; }
  [[nodiscard]] bool isVideoFileType() const { return m_isVideoFile; }
  [[nodiscard]] bool isPhotoOrVideoFileType() const { return m_isPhotoOrVideoFile; }
  [[nodiscard]] bool isBookmarkFileType() const { return m_isBookmarkFile; }
  [[nodiscard]] bool isInvalidFileType() const { return m_isInvalidFileType; } // never cleared
  void setSoundFileType(bool value) { m_isSoundFile = value; }
  void setVideoFileType(bool value) { m_isVideoFile = value; }
  void setPhotoOrVideoFileType(bool value) { m_isPhotoOrVideoFile = value; }
  void setBookmarkFileType(bool value) { m_isBookmarkFile = value; }

  // True only when a copy was made now; false when an identical one was there or the copy failed.
  [[nodiscard]] bool transferSoundFile(const QString &sourcePath, const QString &changedSongFileNameFromAppCtrl,
                                       int radioBtnVal, int flag);
  // The last sound file was found on the share, identical.
  [[nodiscard]] bool settledOnIdenticalFile() const { return m_settledOnIdenticalFile; }
  // Same size, and the source 0 or 1 second newer than the copy; also when both are one file.
  [[nodiscard]] bool isFileAlreadyExistsOnVaultbox1(const QString &sourcePath, const QString &serverPath);
  // Marks the records of the source as transferred, with the place where it stands.
  void playlistInfoUpdate(const QString &sourcePath, bool photos);

private:
  struct Track; // one sound file on its way

  [[nodiscard]] bool exists(const QString &path);
  void createFolderIfMissing(const QString &path);
  void createMusicFolder();
  void createFoldersOf(const QString &base, const QString &relativeName);
  [[nodiscard]] bool settleOn(const Track &track, const QString &file, bool useFolderHierarchy);
  [[nodiscard]] bool replaceInAHurry(const Track &track, const QString &file);
  // deadline 0: none.
  [[nodiscard]] bool copyTo(const Track &track, const QString &file, const std::stop_token &stop,
                            std::chrono::milliseconds deadline = {});
  [[nodiscard]] bool placeInHierarchy(const Track &track);
  [[nodiscard]] bool copyIntoHierarchy(const Track &track, const QString &folder, const QString &newFile);
  void removeRemains(const QString &file);
  [[nodiscard]] bool removeOld(const QString &file);
  void artworkAction(const Track &track, const QString &file, bool useFolderHierarchy);
  void record(const Track &track, const QString &file);

  TransferTools m_tools;
  const ShareFolders m_folders;
  TransferArtwork m_artwork;
  std::stop_token m_stop;
  bool m_isSoundFile = false;
  bool m_isVideoFile = false;
  bool m_isPhotoOrVideoFile = false;
  bool m_isBookmarkFile = false;
  bool m_isInvalidFileType = false;
  bool m_settledOnIdenticalFile = false;
  bool m_isNonAsciiFileTransferred = false;
  bool m_isOlderFilePresentInMacFolder = false;
  QString m_nonAsciiFileName; // the candidate under the source's own name or its parenthesised form
  QString m_asciiFileName;    // the candidate under the new-style name
};

} // namespace sonorel
