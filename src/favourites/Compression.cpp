#include "favourites/Compression.h"

#include "link/ByteWriter.h"

#include <zlib.h>

namespace sonorel {

namespace {

// Deflate makes at most 1032 bytes of one.
constexpr quint64 kLargestRatio = 1032;
constexpr quint64 kRatioSlack = 1024;

const Bytef *zlibBytes(QByteArrayView data) {
  return reinterpret_cast<const Bytef *>(data.data());
}

} // namespace

std::optional<QByteArray> Compression::DMCompress(QByteArrayView data) {
  if (data.isNull()) {
    return std::nullopt;
  }
  auto length = compressBound(static_cast<uLong>(data.size()));
  QByteArray stream(static_cast<qsizetype>(length), Qt::Uninitialized);
  if (compress(reinterpret_cast<Bytef *>(stream.data()), &length, zlibBytes(data), static_cast<uLong>(data.size())) !=
      Z_OK) {
    return std::nullopt;
  }
  stream.truncate(static_cast<qsizetype>(length));
  return stream;
}

std::optional<QByteArray> Compression::DMDecompress(QByteArrayView data, quint32 uncompressedSize,
                                                    qsizetype *streamSize) {
  const quint64 possible = kLargestRatio * static_cast<quint64>(data.size()) + kRatioSlack;
  if (uncompressedSize > possible || uncompressedSize > kContentLimit) {
    return std::nullopt;
  }
  // zlib wants a place to write to even when nothing comes out.
  QByteArray content(qMax<qsizetype>(uncompressedSize, 1), Qt::Uninitialized);
  uLongf length = uncompressedSize;
  auto consumed = static_cast<uLong>(data.size());
  if (uncompress2(reinterpret_cast<Bytef *>(content.data()), &length, zlibBytes(data), &consumed) != Z_OK) {
    return std::nullopt;
  }
  if (streamSize != nullptr) {
    *streamSize = static_cast<qsizetype>(consumed);
  }
  content.truncate(static_cast<qsizetype>(length));
  return content;
}

void Compression::compressData(QByteArrayView source, QByteArray &destination) {
  const QByteArray stream = DMCompress(source).value_or(QByteArray());
  ByteWriter chunk(stream.size() + 8);
  chunk.u32(static_cast<quint32>(source.size()));
  chunk.u32(static_cast<quint32>(stream.size()));
  chunk.bytes(stream);
  destination.append(chunk.take());
}

void Compression::decompresssData(QByteArrayView source, quint32 uncompressedSize, QByteArray &destination) {
  if (const auto content = DMDecompress(source, uncompressedSize)) {
    destination.append(*content);
  }
}

} // namespace sonorel
