// The favourites objects of a client with the merge on top, and records of a finished transfer to send.
#pragma once

#include "FavouritesWorkbench.h"
#include "favourites/PlaylistMetaData.h"

#include <QHash>

namespace sonorel::test {

inline const QString kLimitsPath = QStringLiteral("/Volumes/VB-SHARE$/System/OrvSpecialFavouriteLimits.orv");

struct MergeWorkbench : FavouritesWorkbench {
  bool quitAsked = false;
  bool connected = true;
  QHash<QString, QString> albums; // album attribute by source path
  TransferBoard board;
  ColourLimits limits{{files, clock, desktop, [this] { return rewrite.backupFolderOfProduct(); }},
                      standardFolders(),
                      [this] { quitAsked = true; }};
  FavouritesMerge merge{
      {files, propertyLists, clock, desktop, settings, session, dictionary, dictionaryFile, rewrite, limits}};
  PhotoFavourites photoFavourites{desktop, identifiers, session, rewrite};
  PlaylistMetaData metaData{board,
                            merge,
                            photoFavourites,
                            settings,
                            session,
                            identifiers,
                            desktop,
                            {files, propertyLists, desktop, folder + QStringLiteral("Backup")},
                            {[this] { return connected; }, [this](const QString &path) { return albums.value(path); },
                             [] { return std::stop_token(); }}};

  explicit MergeWorkbench(FakeFileSystem &fake, const QString &product = QStringLiteral("Auralis 5"),
                          const QString &client = QStringLiteral("/Client"), int identifiersUsed = 0)
      : FavouritesWorkbench(fake, product, client, identifiersUsed) {}

  // A transferred track of a playlist.
  void track(const QString &playlist, const QString &destination, const QString &album = {}) {
    const QString source = QStringLiteral("/music/") + destination;
    albums.insert(source, album);
    records.append({playlist, source, {}, destination, QStringLiteral("Y")});
  }
  // They stand on the board, and the transfer ends without sending them.
  void breakOff() {
    board.replaceRecords(false, std::exchange(records, {}));
    board.replaceRecords(true, std::exchange(pictures, {}));
  }
  bool send() {
    board.replaceRecords(false, std::exchange(records, {}));
    return metaData.sendMetaDataForPlaylist(false);
  }
  // A transferred picture of an album, and the end of an album.
  void pictureOf(const QString &album, const QString &path) {
    pictures.append({album, path, {}, path, QStringLiteral("Y")});
  }
  void endAlbum() { pictures.append(PlaylistInfo()); }
  bool sendPictures() {
    board.replaceRecords(true, std::exchange(pictures, {}));
    return metaData.sendMetaDataForPlaylist(true);
  }
  // "ID name: path, path" for each list of the server's photo file.
  [[nodiscard]] QStringList shownPhotos() {
    QStringList lines;
    for (const FavouriteList &list :
         decodeFavourites(files.bytes(kServerPhotoFile), FavouritesKind::Photos, playerOf(session)).lists) {
      QStringList paths;
      for (const FavouriteTitle &title : list.songs) {
        paths.append(title.songPath);
      }
      lines.append(list.playlistId + QLatin1Char(' ') + list.nameAsRead.value_or(QString()) + QStringLiteral(": ") +
                   paths.join(QStringLiteral(", ")));
    }
    return lines;
  }
  // What the server's file holds.
  [[nodiscard]] FavouriteLists server() {
    return decodeMusicFavourites(files.bytes(kServerFile), playerOf(session)).lists;
  }
  // "ID name: path/type, path/type" for each list.
  [[nodiscard]] QStringList shown() {
    QStringList lines;
    for (const FavouriteList &list : server()) {
      QStringList titles;
      for (const FavouriteTitle &title : list.songs) {
        titles.append(title.songPath + QLatin1Char('/') + title.itemType.value_or(QStringLiteral("-")));
      }
      lines.append(list.playlistId + QLatin1Char(' ') + list.playlistName + QStringLiteral(": ") +
                   titles.join(QStringLiteral(", ")));
    }
    return lines;
  }

  QList<PlaylistInfo> records;
  QList<PlaylistInfo> pictures;
};

} // namespace sonorel::test
