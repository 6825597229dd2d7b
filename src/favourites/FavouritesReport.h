// A favourites file as a person wants to read it, or as JSON: its lists, numbers, titles and everything in it that
// departs from the format. What product wrote it is told by its own tags and records. Pure.
#pragma once

#include "favourites/FavouritesFile.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace sonorel {

struct FavouritesReport {
  FavouritesKind kind = FavouritesKind::Music;
  QString guid;             // of the header
  QString albumsTag;        // empty when the list of lists cannot be read
  bool hasItemTypes = true; // titles have three fields
  DecodedFavourites file;
};

[[nodiscard]] FavouritesReport favouritesReport(QByteArrayView bytes);
[[nodiscard]] QString textOf(const FavouritesReport &report);
[[nodiscard]] QByteArray jsonOf(const FavouritesReport &report);

} // namespace sonorel
