#include "favourites/FavouritesReport.h"

#include "core/state/ShareLayout.h"
#include "favourites/ColourKeys.h"
#include "favourites/ListContent.h"
#include "favourites/ServerNames.h"
#include "favourites/StoredFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

QString counted(std::size_t count, const QString &one) {
  return QString::number(count) + u' ' + one + (count == 1 ? QString() : u"s"_s);
}

bool isAlbum(const FavouriteTitle &title) {
  return title.itemType == kItemTypeAlbum;
}

// The first four lists, when they are what they should be: a music file knows them by their numbers, a photo file,
// which need not have any, by their names.
bool isColourKey(const FavouritesReport &report, std::size_t index) {
  if (!report.hasItemTypes || index >= kColourKeys) {
    return false;
  }
  const FavouriteLists &lists = report.file.lists;
  if (report.kind == FavouritesKind::Music) {
    return lists.at(index).playlistId == QString::number(index + 1);
  }
  for (int i = 0; i < kColourKeys; ++i) {
    if (std::ssize(lists) <= i || lists.at(static_cast<std::size_t>(i)).nameAsRead != colourName(i)) {
      return false;
    }
  }
  return true;
}

bool isSeparator(const FavouritesReport &report, const FavouriteList &list) {
  return report.kind == FavouritesKind::Photos && list.nameAsRead.value_or(QString()).isEmpty();
}

QString titleNoun(const FavouritesReport &report) {
  return report.kind == FavouritesKind::Photos ? u"picture"_s : u"title"_s;
}

// "5 lists, 3 titles", or "2 albums, 1 separator, 7 pictures".
QString summaryOf(const FavouritesReport &report) {
  std::size_t titles = 0;
  std::size_t separators = 0;
  for (const FavouriteList &list : report.file.lists) {
    titles += list.songs.size();
    separators += isSeparator(report, list) ? 1 : 0;
  }
  const std::size_t lists = report.file.lists.size() - separators;
  return counted(lists, report.kind == FavouritesKind::Photos ? u"album"_s : u"list"_s) + u", "_s +
         (separators == 0 ? QString() : counted(separators, u"separator"_s) + u", "_s) +
         counted(titles, titleNoun(report));
}

QString encodingOf(const FavouritesReport &report) {
  if (report.kind == FavouritesKind::Photos) { // its tag does not tell
    return u"UTF-8 or Windows-1252"_s;
  }
  return report.albumsTag == kAlbumsTagUtf8 ? u"UTF-8"_s : u"Windows-1252"_s;
}

QString contentOf(const FavouritesReport &report, const FavouriteList &list) {
  const auto albums = static_cast<std::size_t>(std::count_if(list.songs.begin(), list.songs.end(), isAlbum));
  const std::size_t titles = list.songs.size() - albums;
  if (list.songs.empty()) {
    return u"empty"_s;
  }
  if (albums == 0) {
    return counted(titles, titleNoun(report));
  }
  return counted(albums, u"album"_s) + (titles == 0 ? QString() : u", "_s + counted(titles, titleNoun(report)));
}

void appendList(const FavouritesReport &report, std::size_t index, QString &text) {
  const FavouriteList &list = report.file.lists.at(index);
  if (isSeparator(report, list)) {
    text += u"\n%1(separator%2)\n"_s.arg(list.playlistId.leftJustified(7),
                                         list.songs.empty() ? QString() : u", "_s + contentOf(report, list));
  } else {
    text +=
        u"\n%1%2 (%3%4)\n"_s.arg(list.playlistId.leftJustified(7), list.nameAsRead.value_or(QString()),
                                 isColourKey(report, index) ? u"colour key, "_s : QString(), contentOf(report, list));
  }
  if (list.locationId != kOwnLocationId) {
    text += u"       location \"%1\"\n"_s.arg(list.locationId);
  }
  for (const FavouriteTitle &title : list.songs) {
    const bool usual = !title.itemType || title.itemType == kItemTypeTitle || isAlbum(title);
    text += u"       "_s + (isAlbum(title) ? u"[album] "_s : QString()) + title.songPath +
            (usual ? QString() : u"  (item type \"%1\")"_s.arg(*title.itemType)) + u'\n';
  }
}

QStringList unusualColourKeys(const FavouritesReport &report) {
  QStringList found;
  const FavouriteLists &lists = report.file.lists;
  for (std::size_t i = 0; i < kColourKeys; ++i) {
    if (i >= lists.size() || !isColourKey(report, i)) {
      return {u"the colour keys are not the first four lists"_s};
    }
    const QString key = colourName(static_cast<int>(i));
    if (lists.at(i).nameAsRead != key) {
      found << u"the colour key %1 is named \"%2\""_s.arg(key, lists.at(i).nameAsRead.value_or(QString()));
    }
  }
  return found;
}

// What a reader takes as it is, although no client of ours writes it.
QStringList unusual(const FavouritesReport &report) {
  QStringList found;
  QSet<QString> ids;
  const FavouriteLists &lists = report.file.lists;
  for (const FavouriteList &list : lists) {
    const QString name = list.nameAsRead.value_or(QString());
    // Photo files repeat the number of an album in the separator before it.
    if (ids.contains(list.playlistId) && report.kind == FavouritesKind::Music) {
      found << u"the PlaylistID \"%1\" stands more than once"_s.arg(list.playlistId);
    }
    ids.insert(list.playlistId);
    const auto isOdd = [](const FavouriteTitle &title) {
      return title.guid.size() != kGuidSize || title.checkSum.size() != kCheckSumSize;
    };
    if (list.guid.size() != kGuidSize || std::any_of(list.songs.begin(), list.songs.end(), isOdd)) {
      found << u"a GUID or a CheckSum of \"%1\" has an odd length"_s.arg(name);
    }
  }
  if (report.kind == FavouritesKind::Music && report.hasItemTypes && report.file.list1Readable) {
    found += unusualColourKeys(report);
  }
  return found;
}

// A title that no player finds, because no drive stands in front, or an album with the server's folder in front.
bool isOutOfPlace(const FavouriteTitle &title, const StoredRecord &record, FavouritesKind kind) {
  const QString stored = QString::fromLatin1(record.lead);
  return isAlbum(title) ? stored.startsWith(serverPrefix(kind)) : !beginsWithDrive(stored);
}

// What no longer shows in what was read; paths are told of once for each list.
QStringList unusualBytes(const FavouritesReport &report, const StoredFile &stored) {
  QStringList found;
  for (std::size_t i = 0; i < stored.chunks.size(); ++i) {
    const StoredChunk &chunk = stored.chunks.at(i);
    if (!chunk.content) {
      continue; // told by the reader
    }
    if (chunk.content->size() != chunk.uncompressedSize) {
      found << u"the chunk at byte %1 has the length %2, but %3 bytes of content"_s.arg(chunk.offset)
                   .arg(chunk.uncompressedSize)
                   .arg(chunk.content->size());
    }
    if (chunk.streamSize != chunk.compressedSize) {
      found << u"the chunk at byte %1 has %2 bytes behind its stream"_s.arg(chunk.offset)
                   .arg(chunk.compressedSize - chunk.streamSize);
    }
    if (i == 0 || i > report.file.lists.size()) {
      continue;
    }
    const FavouriteList &list = report.file.lists.at(i - 1);
    const StoredList bytes = storedList(*chunk.content, report.hasItemTypes ? kTitleFields : kTitleFieldsOfVaultbox1);
    bool albumTold = false;
    bool titleTold = false;
    for (std::size_t k = 0; k < list.songs.size(); ++k) {
      const FavouriteTitle &title = list.songs.at(k);
      bool &told = isAlbum(title) ? albumTold : titleTold;
      if (told || !isOutOfPlace(title, bytes.records.at(k), report.kind)) {
        continue;
      }
      told = true;
      const QString name = list.nameAsRead.value_or(QString());
      found << (isAlbum(title) ? u"an album of \"%1\" has the server's folder in front"_s.arg(name)
                               : u"a %1 of \"%2\" lacks the server's folder"_s.arg(titleNoun(report), name));
    }
  }
  return found;
}

QJsonObject jsonOf(const FavouriteTitle &title) {
  QJsonObject object{{u"path"_s, title.songPath},
                     {u"checkSum"_s, QString::fromLatin1(title.checkSum.toHex())},
                     {u"guid"_s, QString::fromLatin1(title.guid.toHex())}};
  if (title.itemType) {
    object.insert(u"itemType"_s, *title.itemType);
  }
  return object;
}

} // namespace

FavouritesReport favouritesReport(QByteArrayView bytes) {
  FavouritesReport report;
  report.kind = kindOfFile(bytes);
  StoredFile stored = storedFile(bytes, report.kind);
  report.guid = stored.guid;
  bool first = true;
  for (const StoredChunk &chunk : stored.chunks) {
    const StoredList list =
        storedList(chunk.content.value_or(QByteArray()), first ? kList1Fields : kTitleFieldsOfVaultbox1);
    if (std::exchange(first, false)) {
      report.albumsTag = QString::fromLatin1(list.tag.value_or(QByteArrayView()));
    } else if (list.records.size() > 1 || (list.records.size() == 1 && !list.damagedAt)) { // one alone may be cut
      report.hasItemTypes = list.records.front().fieldCount != kTitleFieldsOfVaultbox1;
      break;
    }
  }
  const PlayerTraits player{report.hasItemTypes ? kAuralis5.toString() : kVaultbox1.toString(),
                            report.kind == FavouritesKind::Photos || report.albumsTag == kAlbumsTagUtf8};
  report.file = decodeFavourites(bytes, report.kind, player);
  report.file.oddities += unusual(report) + unusualBytes(report, stored);
  return report;
}

QString textOf(const FavouritesReport &report) {
  QString text = u"%1 favourites: %2\n"_s.arg(report.kind == FavouritesKind::Photos ? u"Photo"_s : u"Music"_s,
                                              summaryOf(report));
  text += u"Version \"%1\", texts in %2%3, written as %4\n"_s.arg(
      report.albumsTag, encodingOf(report), report.hasItemTypes ? QString() : u", titles without item type"_s,
      report.guid);
  for (std::size_t i = 0; i < report.file.lists.size(); ++i) {
    appendList(report, i, text);
  }
  if (!report.file.oddities.isEmpty()) {
    text += u"\nWhat departs from the format:\n"_s;
    for (const QString &oddity : report.file.oddities) {
      text += u"  - "_s + oddity + u'\n';
    }
  }
  return text;
}

QByteArray jsonOf(const FavouritesReport &report) {
  QJsonArray lists;
  for (std::size_t i = 0; i < report.file.lists.size(); ++i) {
    const FavouriteList &list = report.file.lists.at(i);
    QJsonArray titles;
    for (const FavouriteTitle &title : list.songs) {
      titles.append(jsonOf(title));
    }
    QJsonObject object{{u"name"_s, list.nameAsRead.value_or(QString())},
                       {u"playlistId"_s, list.playlistId},
                       {u"locationId"_s, list.locationId},
                       {u"guid"_s, QString::fromLatin1(list.guid.toHex())},
                       {u"colourKey"_s, isColourKey(report, i)},
                       {u"titles"_s, titles}};
    if (report.kind == FavouritesKind::Photos) {
      object.insert(u"separator"_s, isSeparator(report, list));
    }
    lists.append(object);
  }
  return QJsonDocument(QJsonObject{{u"kind"_s, favouritesCommand(report.kind).toString()},
                                   {u"guid"_s, report.guid},
                                   {u"version"_s, report.albumsTag},
                                   {u"readable"_s, report.file.list1Readable},
                                   {u"lists"_s, lists},
                                   {u"departures"_s, QJsonArray::fromStringList(report.file.oddities)}})
      .toJson(QJsonDocument::Indented);
}

} // namespace sonorel
