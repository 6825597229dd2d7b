#include "transfer/DropBuilding.h"

#include "core/state/FileTypes.h"
#include "core/state/PathNames.h"
#include "core/state/ShareLayout.h"
#include "platform/DropNotifications.h"
#include "transfer/BookmarkNames.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

QueueEntry entryOf(const QString &path) {
  const bool isRadio = path.startsWith(kRadioPrefix);
  return {isRadio ? QueueEntry::Kind::Radio : QueueEntry::Kind::Path, path, {}};
}

QString pictureAlbumName(const QString &name, const QString &deviceName) {
  const QStringList pieces = name.split(kFrame.toString());
  if (deviceName == kVaultbox1 && pieces.size() >= 2) {
    return pieces[1];
  }
  return colourNameOfMarker(name);
}

void addFile(Drop &drop, const QString &name, const QString &path, const QString &deviceName) {
  drop.items.append(entryOf(path));
  if (name == kFinderName || drop.items.constLast().kind == QueueEntry::Kind::Radio) {
    return;
  }
  const FileType type = fileTypeOf(pathExtension(path));
  if (type == FileType::Sound) {
    drop.tracks.append(path);
    drop.musicRecords.append({name, path, {}, {}, u"N"_s}); // the worker names it
  } else if (type == FileType::PhotoOrVideo && name == kNoPlaylist) {
    drop.hasVideoOrPicture = true;
  } else if (type == FileType::PhotoOrVideo) {
    drop.pictureRecords.append({pictureAlbumName(name, deviceName), path, {}, path, u"N"_s});
  }
}

struct Album {
  QString name;
  QStringList paths;
};

// Those that hold something.
QList<Album> albumsOf(const QVariantList &photoData) {
  QList<Album> albums;
  for (const QVariant &value : photoData) {
    const QVariantMap album = value.toMap();
    const QStringList paths = album.value(kDraggedFilesKey.toString()).toStringList();
    if (!paths.isEmpty()) {
      albums.append({album.value(kAlbumNameKey.toString()).toString(), paths});
    }
  }
  return albums;
}

} // namespace

bool isNotTransferable(const QString &name, const QStringList &paths) {
  return name == kTvShowsName || name == kIpodGamesName || (paths.isEmpty() && name == kNoPlaylist);
}

Drop dropOf(const QString &name, const QStringList &paths, FileSystem &files, const QString &deviceName) {
  const bool isLoose = name.startsWith(kFrame) && deviceName == kAuralis5;
  const QString playlist = isLoose ? kNoPlaylist.toString() : name;
  Drop drop;
  if (!isColourMarker(playlist) && playlist != kNoPlaylist) {
    drop.purgedPlaylist = playlist;
  }
  for (const QString &path : paths) {
    if (playlist == kFinderName || files.presence(path) != Presence::Absent) {
      addFile(drop, playlist, path, deviceName);
    } else if (path.startsWith(kRadioPrefix)) {
      drop.items.append(entryOf(path));
    }
  }
  if (!drop.pictureRecords.isEmpty()) {
    drop.pictureRecords.append(PlaylistInfo()); // the end of the album
    drop.hasVideoOrPicture = true;
  }
  return drop;
}

// A marker ends each album, whatever its name; tracks stay empty.
Drop dropOfAlbums(const QVariantList &photoData, const std::function<QStringList(const QStringList &)> &imagesOf) {
  const QList<Album> albums = albumsOf(photoData);
  QStringList all;
  for (const Album &album : albums) {
    all.append(album.paths);
  }
  const QStringList images = imagesOf(all);
  Drop drop;
  qsizetype next = 0;
  for (const Album &album : albums) {
    const bool isRecorded = album.name != kFinderName && album.name != kNoPlaylist;
    for (qsizetype i = 0; i < album.paths.size(); ++i) {
      const QString &image = images.at(next++);
      drop.items.append(entryOf(image));
      if (isRecorded) {
        drop.pictureRecords.append({album.name, image, {}, image, u"N"_s});
      }
    }
    drop.pictureRecords.append(PlaylistInfo());
  }
  return drop;
}

Drop dropOfBookmarks(const QStringList &titles, const QStringList &urls) {
  Drop drop;
  for (qsizetype i = 0; i < qMin(titles.size(), urls.size()); ++i) {
    drop.items.append({QueueEntry::Kind::BookmarkPair, bookmarkFileName(titles[i]), shortcutText(urls[i])});
  }
  return drop;
}

} // namespace sonorel
