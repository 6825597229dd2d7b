#include "favourites/StoredFile.h"

#include "favourites/Compression.h"
#include "link/ByteReader.h"
#include "link/MessageRecord.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qsizetype kGuidOffset = 8;
constexpr qsizetype kCommandOffset = 50;

void readHeader(QByteArrayView bytes, FavouritesKind kind, StoredFile &file) {
  const qsizetype size = headerSize(kind);
  if (bytes.size() < size) {
    file.oddities << u"the file ends within its header block, at byte %1"_s.arg(bytes.size());
    return;
  }
  file.guid = QString::fromLatin1(bytes.sliced(kGuidOffset, kRecordGuidLength));
  // Everything but the GUID is fixed.
  const QByteArray expected =
      messageRecord(QString(kRecordGuidLength, u'?'), favouritesCommand(kind).toString(), kMessageKind.toString());
  QByteArray found = bytes.first(size).toByteArray();
  found.replace(kGuidOffset, kRecordGuidLength, QByteArray(kRecordGuidLength, '?'));
  if (found != expected) {
    file.oddities << u"the header block is not that of a \"%1\" file"_s.arg(favouritesCommand(kind));
  }
  if (bytes.size() >= size + kBodyLengthSize) {
    ByteReader reader(bytes);
    reader.seek(size);
    file.bodyLength = reader.u32();
    const auto real = static_cast<quint64>(bytes.size() - size - kBodyLengthSize);
    if (*file.bodyLength != real) {
      file.oddities << u"the body length is %1, but %2 bytes follow"_s.arg(*file.bodyLength).arg(real);
    }
  }
}

} // namespace

std::optional<StoredChunk> chunkAt(QByteArrayView bytes, qsizetype offset) {
  try {
    StoredChunk chunk;
    chunk.offset = offset;
    ByteReader reader(bytes);
    reader.seek(offset);
    chunk.uncompressedSize = reader.u32();
    chunk.compressedSize = reader.u32();
    const QByteArrayView stream = reader.view(chunk.compressedSize);
    chunk.streamSize = stream.size();
    chunk.content = chunk.uncompressedSize == 0
                        ? QByteArray()
                        : Compression::DMDecompress(stream, chunk.uncompressedSize, &chunk.streamSize);
    return chunk;
  } catch (const Failure &) {
    return std::nullopt;
  }
}

StoredFile storedFile(QByteArrayView bytes, FavouritesKind kind) {
  StoredFile file;
  readHeader(bytes, kind, file);
  quint64 contents = 0;
  for (qsizetype offset = firstChunkOffset(kind); offset < bytes.size();) {
    auto chunk = contents <= StoredFile::kContentsLimit ? chunkAt(bytes, offset) : std::nullopt;
    if (!chunk) {
      file.oddities << u"the chunk at byte %1 cannot be read: its lengths pass what is there"_s.arg(offset);
      break;
    }
    if (!chunk->content) {
      file.oddities << u"the chunk at byte %1 cannot be decompressed"_s.arg(offset);
    } else {
      contents += static_cast<quint64>(chunk->content->size());
    }
    offset += kChunkHeadSize + chunk->compressedSize;
    file.chunks.push_back(std::move(*chunk));
  }
  return file;
}

FavouritesKind kindOfFile(QByteArrayView bytes) {
  const QByteArray photos = kPhotoFavouritesCommand.toLatin1();
  const bool isPhotos = bytes.size() >= kCommandOffset + photos.size() &&
                        bytes.sliced(kCommandOffset, photos.size()) == QByteArrayView(photos);
  return isPhotos ? FavouritesKind::Photos : FavouritesKind::Music;
}

} // namespace sonorel
