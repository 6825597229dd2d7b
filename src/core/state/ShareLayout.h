// The server share as everybody sees it: the fixed literals, the configured folder values and the nine characters
// that a name on the share never holds. Folder paths are plain concatenations; every value carries its own
// separators. Any thread.
#pragma once

#include "platform/DropNotifications.h"
#include "platform/ShareNames.h"

#include <QString>
#include <QStringView>

namespace sonorel {

class Settings;

inline constexpr QStringView kMountPoint = u"/Volumes/VB-SHARE$";
inline constexpr QStringView kBookmarkFolderLiteral = u"/Volumes/VB-SHARE$/Favorites/Mac/";
inline constexpr QStringView kMusicFavouritesPath = u"/Volumes/VB-SHARE$/System/NetMusicFavorites.orv";
inline constexpr QStringView kPhotoFavouritesPath = u"/Volumes/VB-SHARE$/System/PhotoFavorites.orv";
inline constexpr QStringView kColourCopyPath = u"/Volumes/VB-SHARE$/System/SonorelCFLContents.xml";
inline constexpr QStringView kAddressFilePath = u"/Volumes/VB-SHARE$/System/MacIPAdress.orv";

inline constexpr QStringView kServerMusicPrefix = u"E:\\vb-share\\Music\\Mac\\";
inline constexpr QStringView kServerPhotoPrefix = u"E:\\vb-share\\Photo\\Mac\\";

inline constexpr QStringView kInvalidChars = u"/\\:*?\"<>|"; // getInvalidChars
inline constexpr quint32 kFolderMode = 0777;
inline constexpr quint32 kDefaultFolderMode = 0755; // where nothing is said about the mode

// Playlist names that are markers.
inline constexpr QStringView kNoPlaylist = u"N0PL@YL!ST";
inline constexpr QStringView kFrame = u"@~";
inline constexpr QStringView kSeparatorMark = u"@@@@@";

// The folder values of the client property file, read once at start-up.
struct ShareFolders {
  QString volume;       // "Volume", "/Volumes/"
  QString sharedFolder; // "Shared Folder", "VB-SHARE$"
  QString systemFolder; // "SystemFolder", "/System/"
  QString musicFolder;
  QString photoFolder;
  QString videoFolder;
  QString favoriteFolder;
  QString macFolder; // "MacFolder", "Mac/"

  [[nodiscard]] QString share() const { return volume + sharedFolder; }
  [[nodiscard]] QString system() const { return share() + systemFolder; }
  [[nodiscard]] QString music() const { return share() + musicFolder + macFolder; }
  [[nodiscard]] QString photo() const { return share() + photoFolder + macFolder; }
  [[nodiscard]] QString video() const { return share() + videoFolder + macFolder; }
  [[nodiscard]] QString bookmarks() const { return share() + favoriteFolder + macFolder; }
};

[[nodiscard]] ShareFolders shareFoldersOf(const Settings &settings);

// "@!!!Red!!!@" to "Red", and so on; any other name unchanged.
[[nodiscard]] QString colourNameOfMarker(const QString &playlistName);
[[nodiscard]] bool isColourMarker(const QString &playlistName);
// "Red" to "@!!!Red!!!@", and so on; any other name unchanged.
[[nodiscard]] QString colourMarker(const QString &name);
// 0 Red, 1 Green, 2 Yellow, 3 Blue; -1 for any other name.
[[nodiscard]] int colourIndex(QStringView name);
[[nodiscard]] QString colourName(int index);
// Every character of the set is replaced, one at a time.
[[nodiscard]] QString stringWithSubstitute(const QString &text, QStringView forCharactersFromSet, QChar replaceWith);
// Every character of kInvalidChars becomes "_".
[[nodiscard]] QString cleanedName(const QString &name);

} // namespace sonorel
