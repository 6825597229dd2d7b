// A favourites file taken apart: header block, body length, chunks with their decompressed contents. Nothing in it is
// trusted; what departs from the format is named, and every chunk that can be found by its lengths is there. Pure.
#pragma once

#include "favourites/FavouritesFormat.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QStringList>

#include <optional>
#include <vector>

namespace sonorel {

struct StoredChunk {
  qsizetype offset = 0;
  quint32 uncompressedSize = 0; // as the chunk's head says
  quint32 compressedSize = 0;
  qsizetype streamSize = 0;          // what of the compressed bytes was needed
  std::optional<QByteArray> content; // none: it cannot be decompressed
};

struct StoredFile {
  // Contents of one file, all together; behind it a chunk counts as damaged.
  static constexpr quint64 kContentsLimit = 256ULL * 1024 * 1024;

  QString guid; // of the header, as it stands there
  std::optional<quint32> bodyLength;
  std::vector<StoredChunk> chunks; // in file order; List1 first
  QStringList oddities;
};

// The chunk whose head stands at the offset; none when its lengths pass the end of the file.
[[nodiscard]] std::optional<StoredChunk> chunkAt(QByteArrayView bytes, qsizetype offset);
[[nodiscard]] StoredFile storedFile(QByteArrayView bytes, FavouritesKind kind);
// By the command in the header; music when it cannot be told.
[[nodiscard]] FavouritesKind kindOfFile(QByteArrayView bytes);

} // namespace sonorel
