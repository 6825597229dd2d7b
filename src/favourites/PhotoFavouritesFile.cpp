#include "favourites/PhotoFavouritesFile.h"

#include "core/state/ShareLayout.h"
#include "favourites/ChunkWriter.h"
#include "favourites/ColourChunks.h"
#include "favourites/Compression.h"
#include "favourites/FavouritesFormat.h"
#include "favourites/FieldWriter.h"
#include "favourites/ListContent.h"
#include "favourites/ServerNames.h"
#include "link/ByteReader.h"
#include "link/MessageRecord.h"
#include "platform/Failure.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

// What a title takes besides its path.
constexpr qsizetype kTitleOverhead = 128;

QByteArray headerOf(const QString &guidText) {
  return messageRecord(u'{' + guidText + u'}', kPhotoFavouritesCommand.toString(), kMessageKind.toString());
}

void writeAlbum(const NewList &album, ByteWriter &content, bool utf8) {
  FavouriteList list;
  list.playlistId = album.playlistId;
  list.locationId = album.locationId;
  list.guid = album.guid;
  writeListRecord(list, album.name, content, utf8);
}

qsizetype expectedSize(const NewList &album) {
  qsizetype size = kTitleOverhead;
  for (const FavouriteTitle &title : album.titles) {
    size += title.songPath.size() + kTitleOverhead;
  }
  return size;
}

// Photo files carry the earlier tags, whatever the player takes.
QByteArray titlesContent(const NewList &album, bool utf8) {
  ByteWriter content(expectedSize(album));
  writeListHead(static_cast<quint32>(album.titles.size()), kTitlesTag, content);
  for (const FavouriteTitle &title : album.titles) {
    writeTitleRecord(title, serverPhotoPath(title.songPath), content, utf8);
  }
  return content.take();
}

QByteArray oneChunk(const QByteArray &content) {
  QByteArray chunk;
  Compression::compressData(content, chunk);
  return chunk;
}

QByteArray emptyTitlesChunk() {
  return oneChunk(titlesContent(NewList(), false));
}

std::vector<QByteArray> titlesChunks(const std::vector<const NewList *> &albums, bool utf8) {
  qsizetype size = 0;
  for (const NewList *album : albums) {
    size += expectedSize(*album);
  }
  return compressedChunks(albums.size(), size, [&](std::size_t i) { return titlesContent(*albums.at(i), utf8); });
}

// The chunks as they stand in the file, heads included; what follows the first one that passes the end is no chunk.
std::vector<QByteArray> storedChunks(QByteArrayView bytes) {
  std::vector<QByteArray> chunks;
  qsizetype offset = firstChunkOffset(FavouritesKind::Photos);
  while (offset + kChunkHeadSize <= bytes.size()) {
    ByteReader reader(bytes);
    reader.seek(offset + kChunkHeadSize / 2);
    const qsizetype size = kChunkHeadSize + static_cast<qsizetype>(reader.u32());
    if (size > bytes.size() - offset) {
      break;
    }
    chunks.push_back(bytes.sliced(offset, size).toByteArray());
    offset += size;
  }
  return chunks;
}

qsizetype endOf(const StoredRecord &record, QByteArrayView content) {
  ByteReader reader(content);
  reader.seek(record.lead.end() - content.begin());
  static_cast<void>(reader.u32()); // the field count
  for (quint32 i = 0; i < record.fieldCount; ++i) {
    static_cast<void>(reader.u8());
    static_cast<void>(reader.view(reader.u32()));
  }
  return reader.position();
}

// Up to the last record that is whole: one that lacks fields would take those of what follows it.
StoredList wholeRecords(QByteArrayView content, quint32 expectedFields) {
  StoredList list = storedList(content, expectedFields);
  while (!list.records.empty() && list.records.back().lacksFields(expectedFields)) {
    list.records.pop_back();
  }
  return list;
}

// The content with a count that is true, and without what cannot be read, so that further records can follow it. A
// sound content stays byte for byte.
QByteArray readyToGrow(const QByteArray &content, QStringView tag, quint32 expectedFields) {
  const StoredList list = wholeRecords(content, expectedFields);
  const QByteArray ownTag = tag.toLatin1();
  ByteWriter ready(content.size() + kTitleOverhead);
  ready.u32(static_cast<quint32>(list.records.size()) + 1);
  writeDataToStream(list.tag.value_or(ownTag), kFurtherField, ready);
  if (!list.records.empty()) {
    const QByteArrayView view(content);
    constexpr qsizetype kFieldHead = sizeof(quint8) + sizeof(quint32);
    const qsizetype begin = list.records.front().lead.begin() - view.begin() - kFieldHead;
    ready.bytes(view.sliced(begin, endOf(list.records.back(), view) - begin));
  }
  return ready.take();
}

class Extension {
public:
  Extension(QByteArrayView stored, const PlayerTraits &player) : m_player(player), m_chunks(storedChunks(stored)) {
    quint32 size = 0;
    const QByteArray content = getRGYBChunk(stored, firstChunkOffset(FavouritesKind::Photos), size);
    const StoredList list1 = wholeRecords(content, kList1Fields);
    if (!list1.count || (list1.records.empty() && list1.damagedAt)) {
      throw Failure(u"the list of lists cannot be read"_s, FailureKind::Damaged);
    }
    m_lists = list1.records.size();
    m_list1 = readyToGrow(content, kAlbumsTag, kList1Fields);
    m_list1IsSound = m_list1 == content;
    m_hasColourLists = !player.isVaultbox1() && hasColourLists(list1);
    // The new lists of titles must come where the new albums stand.
    m_chunks.resize(m_lists + 1, emptyTitlesChunk());
  }

  void add(const std::vector<NewList> &lists) {
    ByteWriter list1(m_list1.size() + kTitleOverhead * static_cast<qsizetype>(lists.size()));
    list1.bytes(m_list1);
    std::vector<const NewList *> others;
    for (const NewList &list : lists) {
      const int colour = m_hasColourLists ? colourIndex(list.name) : -1;
      if (colour >= 0) {
        addToColour(colour, list);
      } else {
        writeAlbum(list, list1, m_player.utf8);
        others.push_back(&list);
      }
    }
    if (!others.empty() || !m_list1IsSound) {
      list1.patchU32(0, static_cast<quint32>(m_lists + others.size()) + 1);
      m_chunks.front() = oneChunk(list1.take());
    }
    std::vector<QByteArray> added = titlesChunks(others, m_player.utf8);
    std::move(added.begin(), added.end(), std::back_inserter(m_chunks));
  }

  [[nodiscard]] const std::vector<QByteArray> &chunks() const { return m_chunks; }

private:
  static bool hasColourLists(const StoredList &list1) {
    if (list1.records.size() < kColourKeys) {
      return false;
    }
    for (int i = 0; i < kColourKeys; ++i) {
      if (list1.records.at(static_cast<std::size_t>(i)).lead != QByteArrayView(colourName(i).toLatin1())) {
        return false;
      }
    }
    return true;
  }

  void addToColour(int colour, const NewList &list) {
    if (m_chunkArrayRGYB.isEmpty()) {
      fetchColourLists();
    }
    m_chunks.at(static_cast<std::size_t>(colour) + 1) =
        createDetailListForRGYB(m_chunkArrayRGYB, colour, list.titles, FavouritesKind::Photos, m_player.utf8);
  }

  void fetchColourLists() {
    for (int i = 0; i < kColourKeys; ++i) {
      quint32 size = 0;
      m_chunkArrayRGYB.append(
          readyToGrow(getRGYBChunk(m_chunks.at(static_cast<std::size_t>(i) + 1), 0, size), kTitlesTag, kTitleFields));
    }
  }

  PlayerTraits m_player;
  std::vector<QByteArray> m_chunks; // of the new file
  std::size_t m_lists = 0;          // stored ones
  QByteArray m_list1;
  bool m_list1IsSound = true;
  bool m_hasColourLists = false;
  QList<QByteArray> m_chunkArrayRGYB; // fetched with the first album for a colour
};

} // namespace

QByteArray newPhotoFavourites(const std::vector<NewList> &lists, const PlayerTraits &player,
                              const QString &guidText) {
  ByteWriter list1;
  writeListHead(static_cast<quint32>(lists.size()), kAlbumsTag, list1);
  std::vector<const NewList *> albums;
  for (const NewList &list : lists) {
    writeAlbum(list, list1, player.utf8);
    albums.push_back(&list);
  }
  std::vector<QByteArray> chunks = titlesChunks(albums, player.utf8);
  chunks.insert(chunks.begin(), oneChunk(list1.take()));
  return assembledFile(headerOf(guidText), chunks);
}

QByteArray extendedPhotoFavourites(QByteArrayView stored, const std::vector<NewList> &lists,
                                   const PlayerTraits &player, const QString &guidText) {
  Extension extension(stored, player);
  extension.add(lists);
  return assembledFile(headerOf(guidText), extension.chunks());
}

} // namespace sonorel
