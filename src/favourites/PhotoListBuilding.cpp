#include "favourites/PhotoListBuilding.h"

#include "core/state/ShareLayout.h"
#include "favourites/FavouritesFormat.h"
#include "favourites/ListBuilding.h"

#include <QHash>

#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

struct AlbumPlace {
  std::size_t album = 0;    // counted in the order in which albums are opened
  bool opens = false;       // this record opens the album
  bool firstRecord = false; // the very first of the drop
};

// Visits every record of an album. Records with an empty name end the album before them; the next record opens one,
// whatever its name, and so does every name that comes for the first time.
void visitAlbums(const QList<PlaylistInfo> &records,
                 const std::function<void(const PlaylistInfo &, const AlbumPlace &)> &visit) {
  QHash<QString, std::size_t> latest;
  std::size_t albums = 0;
  bool afterMarker = false;
  for (qsizetype i = 0; i < records.size(); ++i) {
    const PlaylistInfo &record = records.at(i);
    if (record.playlistName.isEmpty()) {
      afterMarker = true;
      continue;
    }
    const bool opens = afterMarker || !latest.contains(record.playlistName);
    if (opens) {
      latest.insert(record.playlistName, albums++);
    }
    afterMarker = false;
    visit(record, {latest.value(record.playlistName), opens, i == 0});
  }
}

// Below the player's picture folder: the album's folder and the picture, or the picture alone.
QString pictureOnServer(const QString &destination) {
  const QStringList parts = destination.split(u'/');
  if (parts.size() < 3) {
    return parts.last();
  }
  return cleanedName(parts.at(parts.size() - 2)) + u'\\' + parts.last();
}

} // namespace

QStringList photoListNames(const QList<PlaylistInfo> &records) {
  QStringList names;
  visitAlbums(records, [&](const PlaylistInfo &record, const AlbumPlace &place) {
    if (place.opens) {
      if (!place.firstRecord) {
        names.append(QString());
      }
      names.append(record.playlistName);
    }
  });
  return names;
}

std::vector<NewList> makePlaylistDataUsingArrays(const QList<PlaylistInfo> &records, qint64 firstId,
                                                 Identifiers &identifiers) {
  std::vector<NewList> lists;
  qint64 next = firstId;
  for (const QString &name : getAllPlaylistName(records, FavouritesKind::Photos)) {
    NewList list;
    list.name = name;
    list.playlistId = QString::number(name.isEmpty() ? next : next++);
    list.guid = identifiers.generateUUIDBytes();
    lists.push_back(std::move(list));
  }
  return lists;
}

std::vector<PhotoAlbum> makePlaylistDetailDataForPhotoUsingArrays(const QList<PlaylistInfo> &records,
                                                                  const PlayerTraits &player,
                                                                  Identifiers &identifiers) {
  std::vector<PhotoAlbum> albums;
  visitAlbums(records, [&](const PlaylistInfo &record, const AlbumPlace &place) {
    if (place.opens) {
      albums.push_back({record.playlistName, {}});
    }
    if (record.songTransferFlag == u"Y") {
      albums.at(place.album)
          .titles.push_back(
              newTitle(pictureOnServer(record.destinationSongName), kItemTypeTitle.toString(), player, identifiers));
    }
  });
  return albums;
}

std::vector<NewList> photoLists(const QList<PlaylistInfo> &records, qint64 firstId, const PlayerTraits &player,
                                Identifiers &identifiers) {
  std::vector<NewList> lists = makePlaylistDataUsingArrays(records, firstId, identifiers);
  std::vector<PhotoAlbum> albums = makePlaylistDetailDataForPhotoUsingArrays(records, player, identifiers);
  auto album = albums.begin();
  for (NewList &list : lists) {
    if (!list.name.isEmpty()) {
      list.titles = std::move(album++->titles);
    }
  }
  return lists;
}

} // namespace sonorel
