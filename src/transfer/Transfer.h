// Puts one item onto the share: classifies it, and for a sound file forms the destination, settles on a copy that is
// there already or copies, and marks the playlist records of the file. Pictures and bookmarks have classes of their
// own behind it. Worker thread; blocks on the share. Failures are thrown to the driver. Read next: TrackNames.h for
// the names, TransferDriver.h for the caller.
#pragma once

#include "core/state/FileTypes.h"
#include "core/state/ShareLayout.h"
#include "transfer/BookmarkTransfer.h"
#include "transfer/PictureTransfer.h"
#include "transfer/ServerFiles.h"
#include "transfer/TransferTools.h"

#include <QString>

#include <functional>
#include <stop_token>

namespace sonorel {

// What stands beside a track once it is placed: album artwork. Mode 1 embeds before the copy, mode 2 places a
// picture; none by default. See TrackArtwork.
struct TransferArtwork {
  std::function<void(const QString &track, const std::stop_token &stop)> embed = [](const QString &,
                                                                                    const std::stop_token &) {};
  std::function<void(const QString &track, const QString &changedFileName, bool useFolderHierarchy,
                     const std::stop_token &stop)>
      standAlone = [](const QString &, const QString &, bool, const std::stop_token &) {};
};

class Transfer {
public:
  // What the tools refer to must outlive the object.
  Transfer(const TransferTools &tools, ShareFolders folders, TransferArtwork artwork = {});
  Transfer(const Transfer &) = delete;
  Transfer &operator=(const Transfer &) = delete;

  // The token that ends pauses and copies of the running transfer.
  void setStopToken(std::stop_token stop) { m_server.setStopToken(std::move(stop)); }

  // --- classification: the four flags; at most one is set ---
  bool isValidFile(const QString &extension);
  [[nodiscard]] static bool isValidSoundFile(const QString &extension);
  [[nodiscard]] bool isSoundFileType() const { return m_isSoundFile; }
  // Set by no extension: films go the way of pictures.
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
  [[nodiscard]] bool isFileAlreadyExistsOnVaultbox1(const QString &sourcePath, const QString &serverPath) {
    return m_server.isFileAlreadyExistsOnVaultbox1(sourcePath, serverPath);
  }

  // --- pictures, films and bookmarks; see PictureTransfer and BookmarkTransfer ---
  [[nodiscard]] bool transferVideoFile(const QString &path) { return m_pictures.transferVideoFile(path); }
  [[nodiscard]] bool transferPhotoOrVideoFile(const QString &path) {
    return m_pictures.transferPhotoOrVideoFile(path);
  }
  [[nodiscard]] bool isPictureOnTheServer(const QString &path);
  [[nodiscard]] bool transferBookmark(const QString &path) { return m_bookmarks.transferBookmark(path); }
  [[nodiscard]] bool writeBookmark(const QString &fileName, const QString &text) {
    return m_bookmarks.writeBookmark(fileName, text);
  }
  // A local file into the server's system folder, in place of one of that name.
  void transferMetaDataFile(const QString &path);

  // Marks the records of the source as transferred, with the place where it stands.
  void playlistInfoUpdate(const QString &sourcePath, bool photos);

private:
  struct Track; // one sound file on its way

  [[nodiscard]] bool settleOn(const Track &track, const QString &file, bool useFolderHierarchy);
  void takeBack(const QString &file);
  [[nodiscard]] bool copyTo(const Track &track, const QString &file);
  [[nodiscard]] bool placeInHierarchy(const Track &track);
  [[nodiscard]] bool copyIntoHierarchy(const Track &track, const QString &folder, const QString &newFile);
  void artworkAction(const Track &track, const QString &file, bool useFolderHierarchy);
  void record(const Track &track, const QString &file);

  TransferTools m_tools;
  const ShareFolders m_folders;
  TransferArtwork m_artwork;
  ServerFiles m_server;
  PictureTransfer m_pictures;
  BookmarkTransfer m_bookmarks;
  bool m_isSoundFile = false;
  bool m_isVideoFile = false;
  bool m_isPhotoOrVideoFile = false;
  bool m_isBookmarkFile = false;
  bool m_isInvalidFileType = false;
  bool m_settledOnIdenticalFile = false;
  bool m_isNonAsciiFileTransferred = false;
  QString m_nonAsciiFileName; // the candidate under the source's own name or its parenthesised form
  QString m_asciiFileName;    // the candidate under the new-style name
};

} // namespace sonorel
