#include "favourites/FavouritesFile.h"

#include "favourites/ListContent.h"
#include "favourites/ServerNames.h"
#include "favourites/StoredFile.h"
#include "link/TextEncoding.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

// What nearly every title holds; sharing it saves two allocations for each of 100,000.
struct Shared {
  QByteArray noCheckSum = QByteArray(kCheckSumSize, '\0');
  QString title = kItemTypeTitle.toString();
};

// Most texts: the same in both encodings, and without a NUL.
bool isPlain(QByteArrayView bytes) {
  // Without a way out in the middle, so that the compiler takes many bytes at a time.
  unsigned char highBits = 0;
  unsigned char nuls = 0;
  for (const char byte : bytes) {
    highBits |= static_cast<unsigned char>(byte) & 0x80;
    nuls |= byte == 0;
  }
  return highBits == 0 && nuls == 0;
}

class Decoder {
public:
  Decoder(QByteArrayView bytes, FavouritesKind kind, const PlayerTraits &player)
      : m_kind(kind), m_file(storedFile(bytes, kind)), m_player(player),
        m_tagUtf8(player.utf8 && kind == FavouritesKind::Music), // photo files never carry the later tags
        m_titleFields(player.isVaultbox1() ? kTitleFieldsOfVaultbox1 : kTitleFields),
        m_prefix(serverPrefix(kind).toLatin1()) {
    m_result.oddities = m_file.oddities;
  }

  DecodedFavourites decode() {
    readList1();
    if (m_result.list1Readable) {
      readTitles();
    }
    return std::move(m_result);
  }

private:
  void note(const QString &oddity) { m_result.oddities << oddity; }

  // A NUL character would put a file that is written again out of step.
  QString text(QByteArrayView bytes) {
    if (isPlain(bytes)) {
      return QString::fromLatin1(bytes);
    }
    QString decoded = decodeText(bytes, m_player.utf8);
    if (const qsizetype end = decoded.indexOf(u'\0'); end >= 0) {
      decoded.truncate(end);
      note(u"the text \"%1\" holds a NUL character and is cut there"_s.arg(decoded));
    }
    return decoded;
  }

  QString path(QByteArrayView bytes);

  void readList1();
  void addList(const StoredRecord &record);
  void readTitles();
  void readTitlesOf(FavouriteList &list, const QByteArray &content);
  void addTitle(FavouriteList &list, const StoredRecord &record);
  [[nodiscard]] std::size_t wantedTitles(const FavouriteList &list, const StoredList &stored);

  FavouritesKind m_kind;
  StoredFile m_file;
  PlayerTraits m_player;
  bool m_tagUtf8;
  quint32 m_titleFields;
  QByteArray m_prefix; // of the server's paths
  Shared m_shared;
  DecodedFavourites m_result;
};

// The server's folder is taken off before a text is made of it: 100,000 titles begin with it.
QString Decoder::path(QByteArrayView bytes) {
  if (!isPlain(bytes)) {
    return storedPathOf(text(bytes), m_kind);
  }
  const QByteArrayView rest = bytes.startsWith(m_prefix) ? bytes.sliced(m_prefix.size()) : bytes;
  if (!rest.contains(':')) { // nor a second prefix
    return QString::fromLatin1(rest);
  }
  return storedPathOf(QString::fromLatin1(bytes), m_kind);
}

void Decoder::readList1() {
  const bool there = !m_file.chunks.empty() && m_file.chunks.front().content;
  const StoredList stored = there ? storedList(*m_file.chunks.front().content, kList1Fields) : StoredList();
  if (!stored.count || (stored.records.empty() && stored.damagedAt)) {
    note(u"the list of lists cannot be read"_s);
    m_result.list1Readable = false;
    return;
  }
  if (stored.damagedAt) {
    note(u"the list of lists ends or is damaged at byte %1"_s.arg(*stored.damagedAt));
  }
  if (!stored.tag || QString::fromLatin1(*stored.tag) != albumsTag(m_tagUtf8)) {
    note(u"the list of lists has the version tag \"%1\""_s.arg(
        QString::fromLatin1(stored.tag.value_or(QByteArrayView()))));
  }
  if (*stored.count != stored.records.size() + 1) {
    note(u"the list of lists has the item count %1 and %2 records"_s.arg(*stored.count).arg(stored.records.size()));
  }
  for (const StoredRecord &record : stored.records) {
    addList(record);
  }
}

void Decoder::addList(const StoredRecord &record) {
  FavouriteList list;
  list.nameAsRead = text(record.lead);
  if (record.fieldCount != kList1Fields) {
    note(u"the list \"%1\" has %2 fields"_s.arg(*list.nameAsRead).arg(record.fieldCount));
    m_result.fitsModel = false;
  } else if (record.declaredFields != record.fieldCount) {
    note(u"the list \"%1\" has the field count %2"_s.arg(*list.nameAsRead).arg(record.declaredFields));
  }
  list.playlistId = text(record.fields[0]);
  list.locationId = text(record.fields[1]);
  list.guid = record.fields[2].toByteArray();
  list.playlistName = nameInDictionary(*list.nameAsRead, list.playlistId, m_player);
  m_result.lists.push_back(std::move(list));
}

void Decoder::readTitles() {
  const std::size_t chunks = m_file.chunks.size() - 1;
  if (chunks != m_result.lists.size()) {
    note(u"there are %1 lists and %2 lists of titles"_s.arg(m_result.lists.size()).arg(chunks));
  }
  for (std::size_t i = 0; i < qMin(chunks, m_result.lists.size()); ++i) {
    FavouriteList &list = m_result.lists.at(i);
    std::optional<QByteArray> &content = m_file.chunks.at(i + 1).content;
    if (content) {
      readTitlesOf(list, *content);
    } else {
      note(u"the titles of \"%1\" are lost: their chunk is damaged"_s.arg(*list.nameAsRead));
    }
    content.reset(); // decoded; a big file need not stand in memory twice
  }
}

void Decoder::readTitlesOf(FavouriteList &list, const QByteArray &content) {
  const StoredList stored = storedList(content, m_titleFields);
  if (stored.damagedAt) {
    note(u"the titles of \"%1\" end or are damaged at byte %2"_s.arg(*list.nameAsRead).arg(*stored.damagedAt));
  }
  if (stored.count && (!stored.tag || QString::fromLatin1(*stored.tag) != titlesTag(m_tagUtf8))) {
    note(u"the titles of \"%1\" have the version tag \"%2\""_s.arg(
        *list.nameAsRead, QString::fromLatin1(stored.tag.value_or(QByteArrayView()))));
  }
  const std::size_t wanted = wantedTitles(list, stored);
  list.songs.reserve(wanted);
  for (std::size_t i = 0; i < wanted; ++i) {
    addTitle(list, stored.records.at(i));
  }
}

// The item count says how many titles the player shows; what is not there cannot be read, and a count of 0, which no
// writer makes, says nothing.
std::size_t Decoder::wantedTitles(const FavouriteList &list, const StoredList &stored) {
  const std::size_t there = stored.records.size();
  if (!stored.count) {
    return 0;
  }
  if (*stored.count == there + 1) {
    return there;
  }
  note(u"the titles of \"%1\" have the item count %2 and %3 records"_s.arg(*list.nameAsRead)
           .arg(*stored.count)
           .arg(there));
  return *stored.count == 0 ? there : qMin<std::size_t>(there, *stored.count - 1);
}

void Decoder::addTitle(FavouriteList &list, const StoredRecord &record) {
  FavouriteTitle title;
  title.songPath = path(record.lead);
  if (record.fieldCount != m_titleFields) {
    if (m_result.fitsModel) {
      note(u"the titles of \"%1\" have %2 fields instead of %3: not a file of this product"_s.arg(*list.nameAsRead)
               .arg(record.fieldCount)
               .arg(m_titleFields));
    }
    m_result.fitsModel = false;
  } else if (record.declaredFields != record.fieldCount) {
    note(u"a title of \"%1\" has the field count %2"_s.arg(*list.nameAsRead).arg(record.declaredFields));
  }
  const bool usual = record.fields[0] == QByteArrayView(m_shared.noCheckSum);
  title.checkSum = usual ? m_shared.noCheckSum : record.fields[0].toByteArray();
  title.guid = record.fields[1].toByteArray();
  if (m_titleFields == kTitleFields) {
    title.itemType = record.fields[2] == "1" ? m_shared.title : text(record.fields[2]);
  }
  list.songs.push_back(std::move(title));
}

} // namespace

DecodedFavourites decodeFavourites(QByteArrayView bytes, FavouritesKind kind, const PlayerTraits &player) {
  return Decoder(bytes, kind, player).decode();
}

} // namespace sonorel
