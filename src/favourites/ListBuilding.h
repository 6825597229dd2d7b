// Turns the records of a music drop into favourites lists (pictures: PhotoListBuilding.h): playlists in the order of
// the drop, albums on colour keys, loose songs gathered by album. Pure over its inputs; any thread. Linear in the
// records.
#pragma once

#include "core/state/PlaylistInfo.h"
#include "favourites/FavouritesFormat.h"
#include "favourites/FavouritesModel.h"
#include "platform/Identifiers.h"

#include <QHash>
#include <QList>
#include <QStringList>

#include <functional>
#include <vector>

namespace sonorel {

// The album attribute of a dropped file; empty when it has none. Asked once for each file.
using AlbumLookup = std::function<QString(const QString &sourceSongPath)>;

struct PlaylistDetails {
  QHash<QString, std::vector<FavouriteTitle>> titles; // by list name, colour keys by their bare names
  QList<PlaylistInfo> records; // as list building leaves them: loose songs replaced by their album lists
};

// The distinct playlist names in first-seen order; for pictures see photoListNames.
[[nodiscard]] QStringList getAllPlaylistName(const QList<PlaylistInfo> &records,
                                             FavouritesKind kind = FavouritesKind::Music);
// The titles of every list; only records that are transferred take part. Pictures stand by their file names and not
// on colour keys.
[[nodiscard]] PlaylistDetails makePlaylistDetailData(const QList<PlaylistInfo> &records, const AlbumLookup &album,
                                                     const PlayerTraits &player, Identifiers &identifiers,
                                                     FavouritesKind kind = FavouritesKind::Music);
// A title that was not there before: an empty CheckSum, a GUID of its own, an item type unless for "Vaultbox 1".
[[nodiscard]] FavouriteTitle newTitle(const QString &path, const QString &itemType, const PlayerTraits &player,
                                      Identifiers &identifiers);
// One new list for each name, numbered from firstId on, without titles.
[[nodiscard]] std::vector<NewList> makePlaylistDataArrays(const QList<PlaylistInfo> &records, qint64 firstId,
                                                          Identifiers &identifiers);

// The album's name as it appears on a colour key and in list names: "_" as a blank, "Unknown" without an album.
[[nodiscard]] QString albumNameOf(const QString &albumAttribute);

} // namespace sonorel
