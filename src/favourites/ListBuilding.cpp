#include "favourites/ListBuilding.h"

#include "core/state/ShareLayout.h"
#include "favourites/PhotoListBuilding.h"

#include <QSet>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

// Builds the title entries of one drop; the album of each file is looked up once.
class TitleBuilder {
public:
  TitleBuilder(const AlbumLookup &album, const PlayerTraits &player, Identifiers &identifiers, FavouritesKind kind)
      : m_album(album), m_player(player), m_identifiers(identifiers), m_kind(kind) {}

  FavouriteTitle title(const QString &path, const QString &itemType) {
    return newTitle(path, itemType, m_player, m_identifiers);
  }

  QString albumOf(const PlaylistInfo &record) {
    const auto known = m_albums.constFind(record.sourceSongPath);
    if (known != m_albums.constEnd()) {
      return *known;
    }
    return *m_albums.insert(record.sourceSongPath, albumNameOf(m_album(record.sourceSongPath)));
  }

  std::vector<FavouriteTitle> songs(const QList<const PlaylistInfo *> &records) {
    std::vector<FavouriteTitle> titles;
    titles.reserve(static_cast<size_t>(records.size()));
    for (const PlaylistInfo *record : records) {
      const QString &place = record->destinationSongName;
      const QString path = m_kind == FavouritesKind::Photos ? place.section(u'/', -1) : cleanedName(place);
      titles.push_back(title(path, kItemTypeTitle.toString()));
    }
    return titles;
  }

  // Each album once, in the order of its last song.
  std::vector<FavouriteTitle> albums(const QList<const PlaylistInfo *> &records) {
    QStringList backwards;
    QSet<QString> seen;
    for (auto record = records.crbegin(); record != records.crend(); ++record) {
      const QString album = albumOf(**record);
      if (!seen.contains(album)) {
        seen.insert(album);
        backwards.append(album);
      }
    }
    std::vector<FavouriteTitle> titles;
    for (auto album = backwards.crbegin(); album != backwards.crend(); ++album) {
      titles.push_back(title(*album, kItemTypeAlbum.toString()));
    }
    return titles;
  }

private:
  const AlbumLookup &m_album;
  const PlayerTraits &m_player;
  Identifiers &m_identifiers;
  FavouritesKind m_kind;
  QHash<QString, QString> m_albums; // by source path
};

// Loose songs by album in the order of first appearance; albums with one song are left out of the favourites.
void gatherLooseSongs(PlaylistDetails &details, const QList<const PlaylistInfo *> &songs, TitleBuilder &builder,
                      const PlayerTraits &player) {
  QStringList order;
  QHash<QString, QList<const PlaylistInfo *>> byAlbum;
  for (const PlaylistInfo *song : songs) {
    const QString album = builder.albumOf(*song);
    if (!byAlbum.contains(album)) {
      order.append(album);
    }
    byAlbum[album].append(song);
  }
  if (player.isVaultbox1()) {
    return;
  }
  details.records.removeIf([](const PlaylistInfo &record) { return record.playlistName == kNoPlaylist; });
  for (const QString &album : order) {
    if (byAlbum[album].size() < 2) {
      continue;
    }
    const QString name = u"@~"_s + album + u"@~"_s;
    details.titles.insert(name, builder.songs(byAlbum[album]));
    PlaylistInfo added;
    added.playlistName = name;
    details.records.append(added);
  }
}

} // namespace

QString albumNameOf(const QString &albumAttribute) {
  // Tags of several values are joined by NUL in some formats; the first counts.
  QString name = albumAttribute.left(albumAttribute.indexOf(QChar(u'\0')));
  return name.isEmpty() ? u"Unknown"_s : name.replace(u'_', u' ');
}

FavouriteTitle newTitle(const QString &path, const QString &itemType, const PlayerTraits &player,
                        Identifiers &identifiers) {
  FavouriteTitle built;
  built.songPath = path;
  built.checkSum = QByteArray(kCheckSumSize, '\0');
  built.guid = identifiers.generateUUIDBytes();
  if (!player.isVaultbox1()) {
    built.itemType = itemType;
  }
  return built;
}

QStringList getAllPlaylistName(const QList<PlaylistInfo> &records, FavouritesKind kind) {
  if (kind == FavouritesKind::Photos) {
    return photoListNames(records);
  }
  QStringList names;
  QSet<QString> seen;
  for (const PlaylistInfo &record : records) {
    if (!seen.contains(record.playlistName)) {
      seen.insert(record.playlistName);
      names.append(record.playlistName);
    }
  }
  return names;
}

PlaylistDetails makePlaylistDetailData(const QList<PlaylistInfo> &records, const AlbumLookup &album,
                                       const PlayerTraits &player, Identifiers &identifiers, FavouritesKind kind) {
  QHash<QString, QList<const PlaylistInfo *>> transferred;
  for (const PlaylistInfo &record : records) {
    if (record.songTransferFlag == u"Y") {
      transferred[record.playlistName].append(&record);
    }
  }
  PlaylistDetails details;
  details.records = records;
  TitleBuilder builder(album, player, identifiers, kind);
  for (const QString &name : getAllPlaylistName(records, kind)) {
    if (name == kNoPlaylist) {
      gatherLooseSongs(details, transferred.value(name), builder, player);
    } else if (isColourMarker(name) && kind == FavouritesKind::Photos) {
      continue;
    } else if (isColourMarker(name)) {
      details.titles.insert(colourNameOfMarker(name), builder.albums(transferred.value(name)));
    } else {
      details.titles.insert(name, builder.songs(transferred.value(name)));
    }
  }
  return details;
}

std::vector<NewList> makePlaylistDataArrays(const QList<PlaylistInfo> &records, qint64 firstId,
                                            Identifiers &identifiers) {
  std::vector<NewList> lists;
  qint64 next = firstId;
  for (const QString &name : getAllPlaylistName(records)) {
    NewList list;
    list.name = colourNameOfMarker(name);
    list.playlistId = QString::number(next++);
    list.guid = identifiers.generateUUIDBytes();
    lists.push_back(std::move(list));
  }
  return lists;
}

} // namespace sonorel
