// A whole favourites file as a value: lists in, bytes out, and back. Pure; any thread. Reading costs as little
// as can be of a damaged file: a broken chunk costs its own titles, and everything that departs from the format is
// named. Names and texts that were read are written back as they were. See docs/formats/favourites.md.
#pragma once

#include "favourites/FavouritesFormat.h"
#include "favourites/FavouritesModel.h"

#include <QByteArrayView>
#include <QStringList>

namespace sonorel {

struct DecodedFavourites {
  FavouriteLists lists;
  QStringList oddities;      // what departs from the format, for the log; in file order
  bool list1Readable = true; // false: there is no list to be had from this file
  bool fitsModel = true;     // false: its records have not the fields of this product's files; leave it alone
};

// The lists in their order, PlaylistIDs as they stand; guidText is 36 characters without braces. The bytes of one
// chunk depend on its own list only; chunks are compressed in parallel when there is enough to compress.
[[nodiscard]] QByteArray encodeMusicFavourites(const FavouriteLists &lists, const PlayerTraits &player,
                                               const QString &guidText);
// `parsedValuesInDict`: the lists of a stored file with their titles.
[[nodiscard]] DecodedFavourites decodeFavourites(QByteArrayView bytes, FavouritesKind kind,
                                                 const PlayerTraits &player);
[[nodiscard]] inline DecodedFavourites decodeMusicFavourites(QByteArrayView bytes, const PlayerTraits &player) {
  return decodeFavourites(bytes, FavouritesKind::Music, player);
}

// `isNetMusicFavEmpty`: the file holds no playlist. Throws Failure (Damaged) when the file is too short or its first
// chunk cannot be read.
[[nodiscard]] bool isNetMusicFavEmpty(QByteArrayView bytes, FavouritesKind kind);

} // namespace sonorel
