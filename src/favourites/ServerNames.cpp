#include "favourites/ServerNames.h"

#include "core/state/ShareLayout.h"
#include "favourites/ColourKeys.h"

#include <QStringList>

namespace sonorel {

namespace {

bool staysAsItIs(const FavouriteTitle &title) {
  return title.itemType == kItemTypeAlbum || beginsWithDrive(title.songPath);
}

} // namespace

QString nameInDictionary(const QString &storedName, const QString &playlistId, const PlayerTraits &player) {
  if (isColourKeyId(playlistId) && !player.isVaultbox1()) {
    return storedName;
  }
  return kFrame.toString() + storedName + kFrame.toString();
}

QString nameInFile(const FavouriteList &list, const PlayerTraits &player) {
  if (list.nameAsRead) {
    return *list.nameAsRead;
  }
  // The exception goes by the location and not by the PlaylistID: keys made here have the location "6" and no frame.
  if (isColourKeyId(list.locationId) && !player.isVaultbox1()) {
    return list.playlistName;
  }
  const QStringList parts = list.playlistName.split(kFrame.toString(), Qt::KeepEmptyParts);
  return parts.size() > 1 ? parts.at(1) : list.playlistName;
}

QStringView serverPrefix(FavouritesKind kind) {
  return kind == FavouritesKind::Photos ? kServerPhotoPrefix : kServerMusicPrefix;
}

bool beginsWithDrive(const QString &path) {
  if (path.size() < 3 || path.at(1) != u':' || path.at(2) != u'\\') {
    return false;
  }
  const char16_t drive = path.at(0).toUpper().unicode();
  return drive >= u'A' && drive <= u'Z';
}

QString storedPathOf(const QString &serverPath, FavouritesKind kind) {
  const QStringView prefix = serverPrefix(kind);
  const qsizetype found = serverPath.lastIndexOf(prefix);
  return found < 0 ? serverPath : serverPath.mid(found + prefix.size());
}

QString serverMusicPath(const FavouriteTitle &title) {
  if (staysAsItIs(title)) {
    return title.songPath;
  }
  QString path = title.songPath;
  if (path.contains(kSeparatorMark)) {
    path.replace(kSeparatorMark.toString(), QStringLiteral("\\"));
  }
  return kServerMusicPrefix.toString() + path;
}

QString serverMusicPathOnKey(const FavouriteTitle &title) {
  return staysAsItIs(title) ? title.songPath : kServerMusicPrefix.toString() + title.songPath;
}

QString serverPhotoPath(const QString &storedPath) {
  return kServerPhotoPrefix.toString() + storedPath;
}

} // namespace sonorel
