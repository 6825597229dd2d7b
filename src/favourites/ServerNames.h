// Names and paths between the main dictionary and the server's file: the frame around list names, the server's drive
// path in front of titles. Pure.
#pragma once

#include "favourites/FavouritesFormat.h"
#include "favourites/FavouritesModel.h"

#include <QString>

namespace sonorel {

// As the main dictionary holds a name that was read: framed by "@~" on both sides, except a colour key's.
[[nodiscard]] QString nameInDictionary(const QString &storedName, const QString &playlistId,
                                       const PlayerTraits &player);
// As the file holds the name of a list: as it was read while it is unchanged, else without its frame.
[[nodiscard]] QString nameInFile(const FavouriteList &list, const PlayerTraits &player);

// "E:\vb-share\Music\Mac\" or that of pictures.
[[nodiscard]] QStringView serverPrefix(FavouritesKind kind);
// "E:\..." or that of any other drive.
[[nodiscard]] bool beginsWithDrive(const QString &path);
// Everything up to and including the last prefix of the kind ("E:\vb-share\Music\Mac\") removed.
[[nodiscard]] QString storedPathOf(const QString &serverPath, FavouritesKind kind);
// "@@@@@" as a backslash and the prefix in front. An album (ItemType "2") and a path that begins with a drive, which
// somebody else wrote, stay as they are.
[[nodiscard]] QString serverMusicPath(const FavouriteTitle &title);
// The same for titles appended to a colour key's stored list: "@@@@@" stays.
[[nodiscard]] QString serverMusicPathOnKey(const FavouriteTitle &title);
[[nodiscard]] QString serverPhotoPath(const QString &storedPath);

} // namespace sonorel
