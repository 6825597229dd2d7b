// Rows 4 and 5: a favourites file of 1,000 lists and 100,000 titles, against zlib alone; 100 lists merged into it, on
// the embedded product, against reading and writing the client's record and encoding the file.
#include "bench/RealClient.h"
#include "favourites/FavouritesFile.h"
#include "favourites/StoredFile.h"

#include <algorithm>
#include <zlib.h>

namespace sonorel::bench {

namespace {

constexpr int kLists = 1'000;
constexpr int kTitlesOfAList = 100;
constexpr int kMergedLists = 100;
constexpr int kRuns = 5; // the machine's noise only adds
constexpr double kEncodeBound = 1.3;
constexpr double kDecodeBound = 3;
constexpr double kMergeBound = 2;

const QString kServerFile = QStringLiteral("/Volumes/VB-SHARE$/System/NetMusicFavorites.orv");

double bestOf(const std::function<double()> &ratio) {
  double best = ratio();
  for (int run = 1; run < kRuns; ++run) {
    best = std::min(best, ratio());
  }
  return best;
}

FavouriteTitle titleNamed(int number, Identifiers &identifiers) {
  const int artist = number / 1'000;
  const int album = number / 12;
  FavouriteTitle title;
  title.songPath = QStringLiteral("Artist %1\\Album %2\\Artist %1-Album %2-Track with a name %3.mp3")
                       .arg(artist)
                       .arg(album)
                       .arg(number);
  title.checkSum = QByteArray(kCheckSumSize, '\0');
  title.guid = identifiers.generateUUIDBytes();
  title.itemType = kItemTypeTitle.toString();
  return title;
}

FavouriteLists manyLists(Identifiers &identifiers) {
  const ColourGuids guids{identifiers.generateUUIDBytes(), identifiers.generateUUIDBytes(),
                          identifiers.generateUUIDBytes(), identifiers.generateUUIDBytes()};
  FavouriteLists lists;
  createCFLEntriesIfMissing(lists, guids);
  for (int i = 0; i < kLists; ++i) {
    FavouriteList list;
    list.playlistName = QStringLiteral("@~Playlist %1@~").arg(i);
    list.playlistId = QString::number(i + 5);
    list.locationId = kOwnLocationId.toString();
    list.guid = identifiers.generateUUIDBytes();
    for (int title = 0; title < kTitlesOfAList; ++title) {
      list.songs.push_back(titleNamed(i * kTitlesOfAList + title, identifiers));
    }
    lists.push_back(std::move(list));
  }
  return lists;
}

double secondsOfCompress(const std::vector<StoredChunk> &chunks) {
  return secondsOf([&] {
    for (const StoredChunk &chunk : chunks) {
      uLongf size = compressBound(static_cast<uLong>(chunk.content->size()));
      QByteArray stream(static_cast<qsizetype>(size), Qt::Uninitialized);
      compress(reinterpret_cast<Bytef *>(stream.data()), &size,
               reinterpret_cast<const Bytef *>(chunk.content->constData()),
               static_cast<uLong>(chunk.content->size()));
    }
  });
}

double secondsOfUncompress(const QByteArray &file, const std::vector<StoredChunk> &chunks) {
  return secondsOf([&] {
    for (const StoredChunk &chunk : chunks) {
      uLongf size = chunk.uncompressedSize;
      QByteArray content(static_cast<qsizetype>(size), Qt::Uninitialized);
      uncompress(reinterpret_cast<Bytef *>(content.data()), &size,
                 reinterpret_cast<const Bytef *>(file.constData() + chunk.offset + kChunkHeadSize),
                 chunk.compressedSize);
    }
  });
}

std::vector<NewList> newLists(Identifiers &identifiers) {
  std::vector<NewList> lists;
  for (int i = 0; i < kMergedLists; ++i) {
    NewList list;
    // Half of them are there already and are replaced.
    list.name = QStringLiteral("@~Playlist %1@~").arg(i % 2 == 0 ? i : kLists + i);
    list.guid = identifiers.generateUUIDBytes();
    for (int title = 0; title < kTitlesOfAList; ++title) {
      list.titles.push_back(titleNamed(i * kTitlesOfAList + title, identifiers));
    }
    lists.push_back(std::move(list));
  }
  return lists;
}

} // namespace

bool favouritesOf100000Titles() {
  QtIdentifiers identifiers;
  const FavouriteLists lists = manyLists(identifiers);
  const PlayerTraits player{QStringLiteral("Auracore 5"), false};
  const QByteArray file = encodeMusicFavourites(lists, player, identifiers.generateUUID());
  const std::vector<StoredChunk> chunks = storedFile(file, FavouritesKind::Music).chunks;
  if (decodeMusicFavourites(file, player).lists.size() != lists.size()) {
    throw Failure(QStringLiteral("the file does not come back"));
  }
  const double encode = bestOf([&] {
    const double ours = secondsOf(
        [&] { (void)encodeMusicFavourites(lists, player, QStringLiteral("00000000-0000-0000-0000-0000000000AA")); });
    return ours / secondsOfCompress(chunks);
  });
  const double decode = bestOf([&] {
    const double ours = secondsOf([&] { (void)decodeMusicFavourites(file, player); });
    return ours / secondsOfUncompress(file, chunks);
  });
  const bool encodes =
      report(4, "encode 1,000 lists of 100,000 titles, against zlib's compress", encode, kEncodeBound, "x");
  const bool decodes =
      report(4, "decode 1,000 lists of 100,000 titles, against zlib's uncompress", decode, kDecodeBound, "x");
  return encodes && decodes;
}

bool mergeInto100000Titles() {
  const double best = bestOf([] {
    const Folder folder;
    RealClient client(folder.path());
    const PlayerTraits player = playerOf(client.session);
    const FavouriteLists lists = manyLists(client.identifiers);
    client.files.write(kServerFile, encodeMusicFavourites(lists, player, client.identifiers.generateUUID()));
    client.dictionaryFile.save(lists);
    const double parts = secondsOf([&] {
      const FavouriteLists record = client.dictionaryFile.load();
      client.dictionaryFile.save(record);
      (void)encodeMusicFavourites(record, player, client.identifiers.generateUUID());
    });
    const std::vector<NewList> added = newLists(client.identifiers);
    bool merged = false;
    const double whole = secondsOf([&] { merged = client.merge.addPlaylistToDictionary(added, {}); });
    const auto found = decodeMusicFavourites(client.files.read(kServerFile), player).lists.size();
    if (!merged || found != lists.size() + kMergedLists / 2) {
      throw Failure(QStringLiteral("the merge failed: ") + client.desktop.lines.join(QLatin1Char('\n')));
    }
    return whole / parts;
  });
  return report(5, "100 lists into 100,000 titles, against record read + written, encode", best, kMergeBound, "x");
}

} // namespace sonorel::bench
