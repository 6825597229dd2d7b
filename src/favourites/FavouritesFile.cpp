#include "favourites/FavouritesFile.h"

#include "favourites/ChunkWriter.h"
#include "favourites/Compression.h"
#include "favourites/FieldWriter.h"
#include "favourites/ServerNames.h"
#include "favourites/StoredFile.h"
#include "link/ByteReader.h"
#include "link/MessageRecord.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr quint32 kCountOfEmptyList = 1; // the version tag alone

// What a title takes besides its path and its item type.
constexpr qsizetype kTitleOverhead = 128;

QByteArray list1Content(const FavouriteLists &lists, const PlayerTraits &player) {
  ByteWriter content;
  writeListHead(static_cast<quint32>(lists.size()), albumsTag(player.utf8), content);
  for (const FavouriteList &list : lists) {
    writeListRecord(list, nameInFile(list, player), content, player.utf8);
  }
  return content.take();
}

qsizetype expectedSize(const FavouriteList &list) {
  qsizetype size = kTitleOverhead;
  for (const FavouriteTitle &title : list.songs) {
    size += title.songPath.size() + kTitleOverhead;
  }
  return size;
}

QByteArray list2Content(const FavouriteList &list, const PlayerTraits &player) {
  ByteWriter content(expectedSize(list));
  writeListHead(static_cast<quint32>(list.songs.size()), titlesTag(player.utf8), content);
  for (const FavouriteTitle &title : list.songs) {
    if (player.isVaultbox1() && title.itemType) {
      FavouriteTitle bare = title;
      bare.itemType.reset();
      writeTitleRecord(bare, serverMusicPath(bare), content, player.utf8);
    } else {
      writeTitleRecord(title, serverMusicPath(title), content, player.utf8);
    }
  }
  return content.take();
}

} // namespace

QByteArray encodeMusicFavourites(const FavouriteLists &lists, const PlayerTraits &player, const QString &guidText) {
  qsizetype size = 0;
  for (const FavouriteList &list : lists) {
    size += expectedSize(list);
  }
  const auto content = [&](std::size_t chunk) {
    return chunk == 0 ? list1Content(lists, player) : list2Content(lists.at(chunk - 1), player);
  };
  return assembledFile(
      messageRecord(u'{' + guidText + u'}', kMusicFavouritesCommand.toString(), kMessageKind.toString()),
      compressedChunks(lists.size() + 1, size, content));
}

bool isNetMusicFavEmpty(QByteArrayView bytes, FavouritesKind kind) {
  if (bytes.isEmpty() || bytes.size() == headerSize(kind)) {
    return true;
  }
  const auto chunk = chunkAt(bytes, firstChunkOffset(kind));
  if (!chunk || !chunk->content) {
    throw Failure(u"the first chunk of %1 cannot be read"_s.arg(favouritesFileName(kind)), FailureKind::Damaged);
  }
  return ByteReader(*chunk->content).u32() == kCountOfEmptyList;
}

} // namespace sonorel
