#include "favourites/ColourChunks.h"

#include "favourites/Compression.h"
#include "favourites/FieldWriter.h"
#include "favourites/ServerNames.h"
#include "favourites/StoredFile.h"
#include "link/ByteReader.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

QByteArray getRGYBChunk(QByteArrayView bytes, qsizetype offset, quint32 &size) {
  const auto chunk = chunkAt(bytes, offset);
  if (!chunk) {
    throw Failure(u"no chunk at byte %1 of %2"_s.arg(offset).arg(bytes.size()), FailureKind::Damaged);
  }
  size = chunk->compressedSize;
  return chunk->content.value_or(QByteArray());
}

QByteArray createDetailListForRGYB(QList<QByteArray> &chunkArrayRGYB, int index,
                                   const std::vector<FavouriteTitle> &songs, FavouritesKind kind, bool utf8) {
  const QByteArray stored = chunkArrayRGYB.value(index);
  const quint32 count = ByteReader(stored).u32() + static_cast<quint32>(songs.size());
  ByteWriter list(stored.size());
  list.bytes(stored);
  list.patchU32(0, count);
  for (const FavouriteTitle &title : songs) {
    const bool photos = kind == FavouritesKind::Photos;
    writeTitleRecord(title, photos ? serverPhotoPath(title.songPath) : serverMusicPathOnKey(title), list, utf8);
  }
  const QByteArray content = list.take();
  if (index < chunkArrayRGYB.size()) {
    chunkArrayRGYB[index] = content;
  } else {
    chunkArrayRGYB.append(content);
  }
  QByteArray chunk;
  Compression::compressData(content, chunk);
  return chunk;
}

} // namespace sonorel
