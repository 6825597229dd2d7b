// The bytes of "PhotoFavorites.orv": a new file of the given albums, or a stored file with the albums behind what is
// there. The photo file is never read into a dictionary: stored chunks go into the new file as they stand, whatever
// they hold. Pure; any thread. See docs/formats/photo-favourites.md.
#pragma once

#include "favourites/FavouritesModel.h"

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

namespace sonorel {

// guidText is 36 characters without braces.
[[nodiscard]] QByteArray newPhotoFavourites(const std::vector<NewList> &lists, const PlayerTraits &player,
                                            const QString &guidText);
// Albums named after a colour go onto that colour's list when the stored file has the four colour lists in front, the
// others become lists behind the stored ones. With nothing to add every stored byte behind the header stays. Throws
// Failure (Damaged) when the stored list of lists cannot be read.
[[nodiscard]] QByteArray extendedPhotoFavourites(QByteArrayView stored, const std::vector<NewList> &lists,
                                                 const PlayerTraits &player, const QString &guidText);

} // namespace sonorel
