#include "FuzzTargets.h"

#include "favourites/ChunkWriter.h"
#include "favourites/FavouritesFile.h"
#include "favourites/FavouritesReport.h"
#include "favourites/LimitsFile.h"
#include "favourites/ListContent.h"
#include "favourites/MainDictionaryFile.h"
#include "favourites/PhotoFavouritesFile.h"
#include "platform/Failure.h"
#include "platform/linux/LibplistPropertyLists.h"

#include <array>
#include <cstdio>
#include <cstdlib>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::fuzz {

namespace {

void require(bool property, const char *what) {
  if (!property) {
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
  }
}

bool within(QByteArrayView part, QByteArrayView whole) {
  return part.isEmpty() || (part.begin() >= whole.begin() && part.end() <= whole.end());
}

// The first rewrite may still change something (separators, a prefix in the middle of a path); no further one does.
void requireStable(const DecodedFavourites &read, const PlayerTraits &player) {
  const QString guid = u"00000000-0000-0000-0000-0000000000AA"_s;
  const DecodedFavourites once = decodeMusicFavourites(encodeMusicFavourites(read.lists, player, guid), player);
  require(once.list1Readable && once.lists.size() == read.lists.size(), "a file that was written can be read");
  const QByteArray second = encodeMusicFavourites(once.lists, player, guid);
  const DecodedFavourites twice = decodeMusicFavourites(second, player);
  require(encodeMusicFavourites(twice.lists, player, guid) == second, "a later rewrite changes nothing");
}

// Each content is a 16-bit length and its bytes; the last one may be short.
QByteArray packed(QByteArrayView bytes, qsizetype headerSize) {
  std::vector<QByteArray> contents;
  for (qsizetype at = 0; at + 2 <= bytes.size();) {
    const qsizetype length = static_cast<quint8>(bytes.at(at)) + 256 * static_cast<quint8>(bytes.at(at + 1));
    const QByteArrayView content = bytes.sliced(at + 2).first(qMin(length, bytes.size() - at - 2));
    contents.push_back(content.toByteArray());
    at += 2 + content.size();
  }
  return assembledFile(QByteArray(headerSize, 'h'),
                       compressedChunks(contents.size(), 0, [&](std::size_t i) { return contents.at(i); }));
}

std::vector<NewList> droppedAlbums(const PlayerTraits &player) {
  FavouriteTitle title{u"Rome\\1.jpg"_s, QByteArray(kCheckSumSize, '\0'), QByteArray(kGuidSize, 't'), std::nullopt};
  if (!player.isVaultbox1()) {
    title.itemType = kItemTypeTitle.toString();
  }
  const auto album = [&](const QString &name, std::vector<FavouriteTitle> titles) {
    return NewList{name, u"77"_s, u"6"_s, QByteArray(kGuidSize, 'a'), std::move(titles)};
  };
  return {album(u"Red"_s, {title}), album(QString(), {}), album(u"Rome"_s, {title})};
}

// What was there stays there, and the dropped album can be read behind it.
void requireExtended(QByteArrayView bytes, const PlayerTraits &player) {
  const QString guid = u"00000000-0000-0000-0000-0000000000AA"_s;
  const QByteArray kept = extendedPhotoFavourites(bytes, {}, player, guid);
  require(extendedPhotoFavourites(kept, {}, player, guid) == kept, "a later rewrite changes nothing");
  const DecodedFavourites before = decodeFavourites(kept, FavouritesKind::Photos, player);
  const DecodedFavourites after = decodeFavourites(
      extendedPhotoFavourites(bytes, droppedAlbums(player), player, guid), FavouritesKind::Photos, player);
  const std::size_t added = after.lists.size() - before.lists.size();
  require(added == 2 || added == 3, "an album goes onto its colour's list or becomes a list");
  for (std::size_t i = 0; i < before.lists.size(); ++i) {
    require(added == 2 ? before.lists.at(i).guid == after.lists.at(i).guid : before.lists.at(i) == after.lists.at(i),
            "a stored list stays as it was");
  }
  const FavouriteList &last = after.lists.back();
  require(last.nameAsRead == u"Rome"_s && last.songs.size() == 1, "the dropped album stands behind the others");
}

} // namespace

void listContent(QByteArrayView bytes) {
  const ListItems items = listItems(bytes);
  require(items.fields.size() <= static_cast<std::size_t>(bytes.size()) / 5, "every field takes five bytes");
  for (const QByteArrayView field : items.fields) {
    require(within(field, bytes), "a field lies within the content");
  }
  const StoredList list = storedList(bytes, kTitleFields);
  require(list.count == items.count, "both walks read one count");
  for (const StoredRecord &record : list.records) {
    require(within(record.lead, bytes), "a leading field lies within the content");
    for (const QByteArrayView field : record.fields) {
      require(within(field, bytes), "a field of a record lies within the content");
    }
  }
}

void favouritesFile(QByteArrayView bytes) {
  const FavouritesReport report = favouritesReport(bytes);
  require(!textOf(report).isEmpty() && !jsonOf(report).isEmpty(), "every file has a report");
  const std::array players{PlayerTraits{u"Auralis 5"_s, true}, PlayerTraits{u"Auralis 5"_s, false},
                           PlayerTraits{u"Vaultbox 1"_s, false}};
  for (const PlayerTraits &player : players) {
    const DecodedFavourites read = decodeMusicFavourites(bytes, player);
    require(read.list1Readable || read.lists.empty(), "an unreadable list of lists holds nothing");
  }
  const PlayerTraits &player = players.at(static_cast<std::size_t>(bytes.size()) % players.size()); // it is slow
  requireStable(decodeMusicFavourites(bytes, player), player);
  try {
    static_cast<void>(isNetMusicFavEmpty(bytes, FavouritesKind::Music));
  } catch (const Failure &failure) {
    require(failure.kind() == FailureKind::Damaged, "only damage is no answer");
  }
}

void favouritesContents(QByteArrayView bytes) {
  favouritesFile(packed(bytes, kMusicHeaderSize));
}

void photoFile(QByteArrayView bytes) {
  const std::array players{PlayerTraits{u"Auralis 5"_s, true}, PlayerTraits{u"Auracore 5"_s, false},
                           PlayerTraits{u"Vaultbox 1"_s, false}};
  try {
    requireExtended(bytes, players.at(static_cast<std::size_t>(bytes.size()) % players.size()));
  } catch (const Failure &failure) {
    require(failure.kind() == FailureKind::Damaged, "only damage is refused");
  }
}

void photoContents(QByteArrayView bytes) {
  photoFile(packed(bytes, kPhotoHeaderSize));
}

void limitsFile(QByteArrayView bytes) {
  const QByteArray file = bytes.toByteArray();
  try {
    const KeyLimits limits = readLimits(file);
    const QByteArray edited = editedLimits(file, enablesText(limits), limitsText(limits));
    static_cast<void>(readLimits(edited));
  } catch (const Failure &failure) {
    require(failure.kind() == FailureKind::Damaged, "only damage is refused");
  }
}

void propertyList(QByteArrayView bytes) {
  LibplistPropertyLists lists;
  try {
    const QVariant value = lists.decode(bytes.toByteArray());
    const QByteArray xml = lists.encodeXml(value);
    require(lists.encodeXml(lists.decode(xml)) == xml, "what was written is read as it was");
  } catch (const Failure &) {
    return; // refused, or holds what an XML list cannot
  }
}

void mainDictionary(QByteArrayView bytes) {
  LibplistPropertyLists lists;
  try {
    const FavouriteLists read = listsOfDictionary(lists.decode(bytes.toByteArray()).toMap());
    require(listsOfDictionary(dictionaryOf(read)) == read, "a dictionary comes back as it was");
  } catch (const Failure &) {
    return;
  }
}

} // namespace sonorel::fuzz
