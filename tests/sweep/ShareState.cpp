#include "ShareState.h"

#include "favourites/FavouritesFile.h"
#include "favourites/MainDictionaryFile.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QStringList kMessages{u"System/ClientConnected.orv"_s, u"System/ClientAlive.orv"_s,
                            u"System/ClientDisconnected.orv"_s, u"System/NetMusicFileCollection.orv"_s,
                            u"System/PhotoFileCollection.orv"_s};
const QStringList kOldTitles{u"red.mp3"_s,  u"green.mp3"_s,    u"yellow.mp3"_s,
                             u"blue.mp3"_s, u"Old\\one.mp3"_s, u"Old\\two.mp3"_s};

QByteArray textOf(const FavouriteLists &lists) {
  QStringList lines;
  for (const FavouriteList &list : lists) {
    QString line = list.playlistName + u':';
    for (const FavouriteTitle &title : list.songs) {
      QString path = title.songPath;
      path.replace(u"@@@@@"_s, u"\\"_s);
      line += u' ' + path + u'(' + title.itemType.value_or(u"-"_s) + u')';
    }
    lines.append(line);
  }
  lines.sort();
  return lines.join(u'\n').toUtf8();
}

// A photo file keeps every album that was ever written: one dropped twice stands there twice, and one whose transfer
// was broken off has fewer pictures the first time. All albums of a name are taken together. Reading frames a name by
// its number, and numbers start anew after a connection that was broken off: the frames go.
QByteArray photoText(const QByteArray &bytes, const QString &product) {
  const DecodedFavourites decoded = decodeFavourites(bytes, FavouritesKind::Photos, {product, false});
  QMap<QString, QStringList> albums;
  for (const FavouriteList &list : decoded.lists) {
    for (const FavouriteTitle &title : list.songs) {
      albums[QString(list.playlistName).remove(kFrame.toString())].append(title.songPath);
    }
  }
  QStringList lines = decoded.oddities;
  for (auto album = albums.begin(); album != albums.end(); ++album) {
    album->sort();
    album->removeDuplicates();
    lines.append(album.key() + u": "_s + album->join(u' '));
  }
  return lines.join(u'\n').toUtf8();
}

QStringList photoTitlesOf(const DecodedFavourites &decoded) {
  QStringList titles;
  for (const FavouriteList &list : decoded.lists) {
    for (const FavouriteTitle &title : list.songs) {
      titles.append(QString(list.playlistName).remove(kFrame.toString()) + u": "_s + title.songPath);
    }
  }
  return titles;
}

bool isTemporary(const QString &path) {
  return path.section(u'/', -1).startsWith(u".sonorel-"_s);
}

} // namespace

QByteArray favouritesText(const World &world) {
  const auto bytes = world.files.stored(kMusicFavouritesPath.toString());
  if (!bytes) {
    return "(absent)";
  }
  const DecodedFavourites decoded = decodeMusicFavourites(*bytes, {world.product, false});
  return textOf(decoded.lists) + decoded.oddities.join(u'\n').toUtf8();
}

QMap<QString, QByteArray> shareState(World &world) {
  QMap<QString, QByteArray> state;
  const auto tree = world.files.tree(kMountPoint.toString());
  for (auto file = tree.begin(); file != tree.end(); ++file) {
    if (isTemporary(file.key()) || kMessages.contains(file.key())) {
      continue;
    }
    if (file.key() == u"System/NetMusicFavorites.orv"_s) {
      state.insert(file.key(), favouritesText(world));
    } else if (file.key() == u"System/PhotoFavorites.orv"_s) {
      state.insert(file.key(), photoText(*file, world.product));
    } else if (file.key() == u"System/SonorelCFLContents.xml"_s) {
      state.insert(file.key(), textOf(listsOfDictionary(world.lists.decode(*file).toMap())));
    } else {
      state.insert(file.key(), *file);
    }
  }
  return state;
}

std::string difference(const QMap<QString, QByteArray> &expected, const QMap<QString, QByteArray> &actual) {
  std::string text;
  const auto shown = [](const QByteArray &bytes) {
    return bytes.size() > 2000 ? std::to_string(bytes.size()) + " bytes of " + bytes.left(3).toStdString()
                               : bytes.toStdString();
  };
  for (auto file = expected.begin(); file != expected.end(); ++file) {
    if (!actual.contains(file.key())) {
      text += "missing: " + file.key().toStdString() + '\n';
    } else if (actual.value(file.key()) != *file) {
      text += "different: " + file.key().toStdString() + "\n--- expected\n" + shown(*file) + "\n--- actual\n" +
              shown(actual.value(file.key())) + '\n';
    }
  }
  for (auto file = actual.begin(); file != actual.end(); ++file) {
    if (!expected.contains(file.key())) {
      text += "too much: " + file.key().toStdString() + '\n';
    }
  }
  return text;
}

QMap<QString, QByteArray> localState(const World &world) {
  auto state = world.files.tree(kMusic.toString());
  for (auto file = state.begin(); file != state.end(); ++file) {
    *file += ' ' + QByteArray::number(world.files.modified(kMusic.toString() + file.key()));
  }
  return state;
}

FavouritesWatch::FavouritesWatch(World &world) : m_world(world), m_photos(photoTitles(world)) {}

bool FavouritesWatch::holdsAllLists(const QByteArray &bytes) const {
  const DecodedFavourites decoded = decodeMusicFavourites(bytes, {m_world.product, false});
  QStringList titles;
  for (const FavouriteList &list : decoded.lists) {
    for (const FavouriteTitle &title : list.songs) {
      titles.append(title.songPath);
    }
  }
  return decoded.oddities.isEmpty() && decoded.lists.size() >= 5 && titles.contains(u"Old\\one.mp3"_s) &&
         titles.contains(u"Old\\two.mp3"_s) && titles.contains(u"blue.mp3"_s);
}

bool FavouritesWatch::holdsAllPhotos(const QByteArray &bytes) const {
  const DecodedFavourites decoded = decodeFavourites(bytes, FavouritesKind::Photos, {m_world.product, false});
  const QStringList titles = photoTitlesOf(decoded);
  return decoded.oddities.isEmpty() && std::all_of(m_photos.begin(), m_photos.end(), [&titles](const QString &photo) {
           return titles.contains(photo);
         });
}

bool FavouritesWatch::isComplete(const QByteArray &bytes, Kind kind) {
  const auto known = m_known.constFind(bytes);
  if (known != m_known.constEnd()) {
    return *known;
  }
  bool complete = false;
  try {
    complete = (this->*kind)(bytes);
  } catch (const std::exception &) {
    complete = false;
  }
  m_known.insert(bytes, complete);
  return complete;
}

std::string FavouritesWatch::check() {
  std::string wrong = checkFile(kMusicFavouritesPath.toString(), &FavouritesWatch::holdsAllLists);
  if (wrong.empty() && !m_photos.isEmpty()) {
    wrong = checkFile(kPhotoFavouritesPath.toString(), &FavouritesWatch::holdsAllPhotos);
  }
  return wrong;
}

std::string FavouritesWatch::checkFile(const QString &path, Kind kind) {
  const QString name = path.section(u'/', -1);
  const auto server = m_world.files.stored(path);
  if (server && isComplete(*server, kind)) {
    return {};
  }
  const auto backup = m_world.files.tree(kBackup.toString());
  for (auto file = backup.begin(); file != backup.end(); ++file) {
    const QString found = file.key().section(u'/', -1);
    if ((found == name + u".next"_s || found == name + u".previous"_s) && isComplete(*file, kind)) {
      return {};
    }
  }
  return "no complete " + name.toStdString() + ": the server's is " +
         (server ? std::to_string(server->size()) + " bytes" : "absent") + ", the backup holds " +
         QStringList(backup.keys()).join(u' ').toStdString();
}

QStringList photoTitles(const World &world) {
  const auto bytes = world.files.stored(kPhotoFavouritesPath.toString());
  try {
    return bytes ? photoTitlesOf(decodeFavourites(*bytes, FavouritesKind::Photos, {world.product, false}))
                 : QStringList();
  } catch (const Failure &) {
    return {}; // half written by a client that died
  }
}

QStringList photosWithoutFile(World &world) {
  QStringList missing;
  for (const QString &photo : photoTitles(world)) {
    const QString picture = photo.section(u": "_s, 1).replace(u'\\', u'/');
    const auto bytes = world.files.stored(kMountPoint.toString() + u"/Photo/Mac/"_s + picture);
    if (!bytes || bytes->size() != kPictureSize) {
      missing.append(photo);
    }
  }
  return missing;
}

QStringList leftArtwork(World &world) {
  QStringList left;
  for (const QString &path : world.files.tree(kMountPoint.toString()).keys()) {
    if (path.endsWith(kArtworkTemporary)) {
      left.append(path);
    }
  }
  return left;
}

QStringList titlesWithoutFile(World &world) {
  QStringList missing;
  const auto bytes = world.files.stored(kMusicFavouritesPath.toString());
  if (!bytes) {
    return missing;
  }
  const auto tree = world.files.tree(kMountPoint.toString() + u"/Music/Mac"_s);
  const auto stands = [&](const FavouriteTitle &title) {
    QString path = title.songPath;
    path.replace(u'\\', u'/');
    for (auto file = tree.begin(); file != tree.end(); ++file) {
      const bool named = title.itemType == u"2"_s ? file.key().section(u'/', -2, -2) == path : file.key() == path;
      if (named && file->size() == kTrackSize) {
        return true;
      }
    }
    return false;
  };
  for (const FavouriteList &list : decodeMusicFavourites(*bytes, {world.product, false}).lists) {
    for (const FavouriteTitle &title : list.songs) {
      if (!kOldTitles.contains(title.songPath) && !stands(title)) {
        missing.append(title.songPath);
      }
    }
  }
  return missing;
}

} // namespace sonorel::test
