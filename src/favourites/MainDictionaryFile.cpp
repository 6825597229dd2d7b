#include "favourites/MainDictionaryFile.h"

#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

QString textOf(const QVariantMap &map, const QString &key) {
  const QVariant value = map.value(key);
  if (value.typeId() == QMetaType::LongLong) {
    return value.toString(); // a number where somebody edited the file by hand
  }
  return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

QByteArray dataOf(const QVariantMap &map, const QString &key) {
  const QVariant value = map.value(key);
  return value.typeId() == QMetaType::QByteArray ? value.toByteArray() : QByteArray();
}

QVariantMap songOf(const FavouriteTitle &title) {
  QVariantMap song{{u"SongPath"_s, title.songPath}, {u"CheckSum"_s, title.checkSum}, {u"GUID"_s, title.guid}};
  if (title.itemType) {
    song.insert(u"ItemType"_s, *title.itemType);
  }
  return song;
}

QVariantMap entryOf(const FavouriteList &list) {
  QVariantMap entry{{u"Playlist"_s, QVariantMap{{u"PlaylistID"_s, list.playlistId},
                                                {u"PlaylistName"_s, list.playlistName},
                                                {u"LocationID"_s, list.locationId},
                                                {u"GUID"_s, list.guid}}}};
  if (!list.songs.empty()) {
    QVariantList songs;
    songs.reserve(static_cast<qsizetype>(list.songs.size()));
    for (const FavouriteTitle &title : list.songs) {
      songs.append(songOf(title));
    }
    entry.insert(u"Songs"_s, songs);
  }
  return entry;
}

FavouriteTitle titleOf(const QVariantMap &song) {
  FavouriteTitle title;
  title.songPath = textOf(song, u"SongPath"_s);
  title.checkSum = dataOf(song, u"CheckSum"_s);
  title.guid = dataOf(song, u"GUID"_s);
  if (song.value(u"ItemType"_s).typeId() == QMetaType::QString) {
    title.itemType = song.value(u"ItemType"_s).toString();
  }
  return title;
}

} // namespace

QVariantMap dictionaryOf(const FavouriteLists &lists) {
  QVariantMap dictionary;
  for (std::size_t i = 0; i < lists.size(); ++i) {
    dictionary.insert(QString::number(i), entryOf(lists.at(i)));
  }
  return dictionary;
}

FavouriteLists listsOfDictionary(const QVariantMap &dictionary) {
  FavouriteLists lists;
  while (true) {
    const auto entry = dictionary.constFind(QString::number(lists.size()));
    if (entry == dictionary.constEnd() || entry->typeId() != QMetaType::QVariantMap) {
      return lists;
    }
    const QVariantMap values = entry->toMap();
    const QVariantMap playlist = values.value(u"Playlist"_s).toMap();
    FavouriteList list;
    list.playlistName = textOf(playlist, u"PlaylistName"_s);
    list.playlistId = textOf(playlist, u"PlaylistID"_s);
    list.locationId = textOf(playlist, u"LocationID"_s);
    list.guid = dataOf(playlist, u"GUID"_s);
    if (values.value(u"Songs"_s).typeId() == QMetaType::QVariantList) {
      const QVariantList songs = values.value(u"Songs"_s).toList();
      list.songs.reserve(static_cast<std::size_t>(songs.size()));
      for (const QVariant &song : songs) {
        list.songs.push_back(titleOf(song.toMap()));
      }
    }
    lists.push_back(std::move(list));
  }
}

MainDictionaryFile::MainDictionaryFile(FileSystem &files, PropertyLists &lists, QString path)
    : m_files(files), m_lists(lists), m_path(std::move(path)) {}

FavouriteLists MainDictionaryFile::load() {
  const QVariant dictionary = m_lists.decode(m_files.read(m_path));
  if (dictionary.typeId() != QMetaType::QVariantMap) {
    throw Failure(u"the main dictionary is no dictionary"_s, FailureKind::Damaged);
  }
  return listsOfDictionary(dictionary.toMap());
}

void MainDictionaryFile::save(const FavouriteLists &lists) {
  m_files.writeAtomically(m_path, m_lists.encodeXml(dictionaryOf(lists)));
}

} // namespace sonorel
