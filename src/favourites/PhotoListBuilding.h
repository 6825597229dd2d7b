// Turns the records of dropped pictures into the albums of the photo favourites: one list for each album in the order
// of the drop, separated by lists with an empty name. Pure over its inputs; any thread. Linear in the records.
#pragma once

#include "core/state/PlaylistInfo.h"
#include "favourites/FavouritesModel.h"
#include "platform/Identifiers.h"

#include <QList>
#include <QStringList>

#include <vector>

namespace sonorel {

struct PhotoAlbum {
  QString name;
  std::vector<FavouriteTitle> titles; // of its transferred pictures
};

// The names of `getAllPlaylistName` for pictures: the albums, each but one that the very first record opens behind an
// empty name. An album that comes again behind an end-of-album marker is an album of its own.
[[nodiscard]] QStringList photoListNames(const QList<PlaylistInfo> &records);
// One new list for each of those names, without titles. A separator has the number of the album behind it.
[[nodiscard]] std::vector<NewList> makePlaylistDataUsingArrays(const QList<PlaylistInfo> &records, qint64 firstId,
                                                               Identifiers &identifiers);
// The albums with their titles, one for each name that is not empty. An album without transferred pictures stays.
[[nodiscard]] std::vector<PhotoAlbum> makePlaylistDetailDataForPhotoUsingArrays(const QList<PlaylistInfo> &records,
                                                                                const PlayerTraits &player,
                                                                                Identifiers &identifiers);
// Both together: what goes into the file.
[[nodiscard]] std::vector<NewList> photoLists(const QList<PlaylistInfo> &records, qint64 firstId,
                                              const PlayerTraits &player, Identifiers &identifiers);

} // namespace sonorel
