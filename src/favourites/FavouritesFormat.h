// The favourites files "NetMusicFavorites.orv" and "PhotoFavorites.orv": every constant of their bytes, shared by
// writer and readers. All integers are 32 bits, little-endian. The layout is told in docs/formats/favourites.md.
#pragma once

#include <QString>
#include <QStringView>

namespace sonorel {

enum class FavouritesKind { Music, Photos };

// A tagged field: kind, int32 length, content.
inline constexpr quint8 kLeadingField = 'L'; // first field of a record; the record's field count follows it
inline constexpr quint8 kFurtherField = 'N';

inline constexpr quint32 kList1Fields = 3;            // PlaylistID, LocationID, GUID
inline constexpr quint32 kTitleFields = 3;            // CheckSum, GUID, ItemType
inline constexpr quint32 kTitleFieldsOfVaultbox1 = 2; // CheckSum, GUID

inline constexpr QStringView kAlbumsTagUtf8 = u"FavoriteAlbums-1.3";
inline constexpr QStringView kTitlesTagUtf8 = u"FavoriteTitles-1.3";
inline constexpr QStringView kAlbumsTag = u"FavoriteAlbums-1.2";
inline constexpr QStringView kTitlesTag = u"FavoriteTitles-1.2";

inline constexpr QStringView kMusicFavouritesCommand = u"NetMusicFavorites";
inline constexpr QStringView kPhotoFavouritesCommand = u"PhotoFavorites";
inline constexpr QStringView kFavouritesExtension = u".orv";

// A file is the header block, the int32 body length and the chunks; a chunk is u, c and c bytes.
inline constexpr qsizetype kMusicHeaderSize = 72;
inline constexpr qsizetype kPhotoHeaderSize = 69;
inline constexpr qsizetype kBodyLengthSize = 4;
inline constexpr qsizetype kChunkHeadSize = 8;

inline constexpr qsizetype kCheckSumSize = 36;
inline constexpr qsizetype kGuidSize = 16;

inline constexpr QStringView kItemTypeTitle = u"1";
inline constexpr QStringView kItemTypeAlbum = u"2";
inline constexpr QStringView kOwnLocationId = u"6";

inline constexpr int kColourKeys = 4;

[[nodiscard]] constexpr qsizetype headerSize(FavouritesKind kind) {
  return kind == FavouritesKind::Photos ? kPhotoHeaderSize : kMusicHeaderSize;
}
[[nodiscard]] constexpr qsizetype firstChunkOffset(FavouritesKind kind) {
  return headerSize(kind) + kBodyLengthSize;
}
[[nodiscard]] constexpr QStringView favouritesCommand(FavouritesKind kind) {
  return kind == FavouritesKind::Photos ? kPhotoFavouritesCommand : kMusicFavouritesCommand;
}
// "NetMusicFavorites.orv" or "PhotoFavorites.orv".
[[nodiscard]] inline QString favouritesFileName(FavouritesKind kind) {
  return favouritesCommand(kind).toString() + kFavouritesExtension.toString();
}
[[nodiscard]] constexpr QStringView albumsTag(bool utf8) {
  return utf8 ? kAlbumsTagUtf8 : kAlbumsTag;
}
[[nodiscard]] constexpr QStringView titlesTag(bool utf8) {
  return utf8 ? kTitlesTagUtf8 : kTitlesTag;
}

} // namespace sonorel
