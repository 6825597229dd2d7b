// Favourites bytes put together by hand, without the code under test: fields, records, chunks, whole files.
#pragma once

#include <QByteArray>

#include <zlib.h>

#include <vector>

namespace sonorel::test {

inline QByteArray le32(quint32 value) {
  QByteArray bytes(4, '\0');
  for (int i = 0; i < 4; ++i) {
    bytes[i] = static_cast<char>(value >> (8 * i) & 0xFF);
  }
  return bytes;
}

inline QByteArray field(char kind, const QByteArray &content) {
  return QByteArray(1, kind) + le32(static_cast<quint32>(content.size())) + content;
}

inline QByteArray guid(char filler) {
  return QByteArray(16, filler);
}
inline QByteArray zeros36() {
  return QByteArray(36, '\0');
}

inline QByteArray listRecord(const QByteArray &name, const QByteArray &id, const QByteArray &location,
                             const QByteArray &guidBytes) {
  return field('L', name) + le32(3) + field('N', id) + field('N', location) + field('N', guidBytes);
}

inline QByteArray titleRecord(const QByteArray &path, const QByteArray &checkSum, const QByteArray &guidBytes,
                              const QByteArray &itemType) {
  return field('L', path) + le32(3) + field('N', checkSum) + field('N', guidBytes) + field('N', itemType);
}

inline QByteArray titleOfVaultbox1(const QByteArray &path, const QByteArray &checkSum, const QByteArray &guidBytes) {
  return field('L', path) + le32(2) + field('N', checkSum) + field('N', guidBytes);
}

inline QByteArray content(const QByteArray &tag, const std::vector<QByteArray> &records) {
  QByteArray bytes = le32(static_cast<quint32>(records.size() + 1)) + field('N', tag);
  for (const QByteArray &record : records) {
    bytes += record;
  }
  return bytes;
}

inline QByteArray albums(const std::vector<QByteArray> &records, const QByteArray &version = "1.2") {
  return content("FavoriteAlbums-" + version, records);
}

inline QByteArray titles(const std::vector<QByteArray> &records, const QByteArray &version = "1.2") {
  return content("FavoriteTitles-" + version, records);
}

inline QByteArray chunk(const QByteArray &plain) {
  uLongf size = compressBound(static_cast<uLong>(plain.size()));
  QByteArray stream(static_cast<qsizetype>(size), '\0');
  compress(reinterpret_cast<Bytef *>(stream.data()), &size, reinterpret_cast<const Bytef *>(plain.constData()),
           static_cast<uLong>(plain.size()));
  stream.truncate(static_cast<qsizetype>(size));
  return le32(static_cast<quint32>(plain.size())) + le32(static_cast<quint32>(stream.size())) + stream;
}

inline QByteArray musicHeader(const QByteArray &guidText = "00000000-0000-0000-0000-0000000000AA") {
  return le32(3) + le32(38) + '{' + guidText + '}' + le32(17) + "NetMusicFavorites" + le32(1) + "1";
}

inline QByteArray photoHeader(const QByteArray &guidText = "00000000-0000-0000-0000-0000000000AA") {
  return le32(3) + le32(38) + '{' + guidText + '}' + le32(14) + "PhotoFavorites" + le32(1) + "1";
}

inline QByteArray wholeFile(const QByteArray &header, const std::vector<QByteArray> &contents) {
  QByteArray body;
  for (const QByteArray &plain : contents) {
    body += chunk(plain);
  }
  return header + le32(static_cast<quint32>(body.size())) + body;
}

// What stands in a whole file, decompressed, in file order; stops at what makes no sense. The first chunk of a music
// file begins at 76, of a photo file at 73.
inline std::vector<QByteArray> contentsOf(const QByteArray &file, qsizetype firstChunk = 76) {
  const auto number = [&](qsizetype at) {
    quint32 value = 0;
    for (int i = 3; i >= 0; --i) {
      value = value << 8 | static_cast<quint8>(file.at(at + i));
    }
    return value;
  };
  std::vector<QByteArray> found;
  for (qsizetype at = firstChunk; at + 8 <= file.size();) {
    uLongf size = number(at);
    const quint32 stored = number(at + 4);
    QByteArray plain(static_cast<qsizetype>(size), '\0');
    if (at + 8 + stored > file.size() ||
        uncompress(reinterpret_cast<Bytef *>(plain.data()), &size,
                   reinterpret_cast<const Bytef *>(file.constData() + at + 8), stored) != Z_OK) {
      break;
    }
    found.push_back(plain.left(static_cast<qsizetype>(size)));
    at += 8 + stored;
  }
  return found;
}

// A title that this client writes into a photo file; the path below the picture folder.
inline QByteArray picture(const QByteArray &path, const QByteArray &guidBytes) {
  return titleRecord("E:\\vb-share\\Photo\\Mac\\" + path, zeros36(), guidBytes, "1");
}

// The bytes that FakeIdentifiers gives, counted from 1.
inline QByteArray countedGuid(int number) {
  return QByteArray(15, '\0') + static_cast<char>(number);
}

// The four empty keys as a new dictionary gives them; filler of the GUIDs: 'r', 'g', 'y', 'b'.
inline std::vector<QByteArray> keyRecords() {
  return {listRecord("Red", "1", "6", guid('r')), listRecord("Green", "2", "6", guid('g')),
          listRecord("Yellow", "3", "6", guid('y')), listRecord("Blue", "4", "6", guid('b'))};
}

} // namespace sonorel::test
