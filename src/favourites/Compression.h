// The zlib chunks of the favourites files. Lengths from a file are not trusted: what cannot come out of that many
// compressed bytes is refused before anything is allocated. Stateless; any thread.
#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace sonorel {

class Compression {
public:
  // No list of a player comes near it.
  static constexpr quint32 kContentLimit = 128U * 1024 * 1024;

  // The zlib stream at the default level; nothing for a null input or a zlib error.
  [[nodiscard]] static std::optional<QByteArray> DMCompress(QByteArrayView data);
  // Exactly the decompressed length, which may be below uncompressedSize; nothing on any zlib error. Bytes after the
  // stream do not matter; streamSize, when given, gets the bytes before them.
  [[nodiscard]] static std::optional<QByteArray> DMDecompress(QByteArrayView data, quint32 uncompressedSize,
                                                              qsizetype *streamSize = nullptr);
  // Appends one chunk: the two lengths and the stream. A compression that failed gives a compressed length of 0 and
  // no bytes.
  static void compressData(QByteArrayView source, QByteArray &destination);
  // Appends the decompressed bytes; nothing on failure.
  static void decompresssData(QByteArrayView source, quint32 uncompressedSize, QByteArray &destination);
};

} // namespace sonorel
