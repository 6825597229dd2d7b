// Stored lists addressed by their place in a favourites file, and titles appended to a colour key's stored list: what
// the photo file is extended with. Pure.
#pragma once

#include "favourites/FavouritesFormat.h"
#include "favourites/FavouritesModel.h"

#include <QByteArrayView>
#include <QList>

namespace sonorel {

// The decompressed content of the chunk whose head stands at the offset; size gets its compressed length. Throws
// Failure (Damaged) when there is no such chunk; a content that cannot be decompressed is empty.
[[nodiscard]] QByteArray getRGYBChunk(QByteArrayView bytes, qsizetype offset, quint32 &size);

// Appends the titles to the uncompressed colour list at the index (0 Red to 3 Blue; behind the last one it is
// appended) and returns the list as one new chunk. Throws Failure (Damaged) when the list has no item count.
[[nodiscard]] QByteArray createDetailListForRGYB(QList<QByteArray> &chunkArrayRGYB, int index,
                                                 const std::vector<FavouriteTitle> &songs, FavouritesKind kind,
                                                 bool utf8);

} // namespace sonorel
