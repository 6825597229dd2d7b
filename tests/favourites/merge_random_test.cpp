// Seeded random sequences of drops, connections and what other clients and the player do to the share, compared after
// every step with the plain model.
#include "HandMade.h"
#include "MergeWorkbench.h"
#include "PlainFavourites.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QStringList kNames{u"P"_s,           u"Q"_s,           u"@~P@~"_s,         u"@~Old@~"_s,
                         u"Red"_s,         u"N0PL@YL!ST"_s,  u"N0PL@YL!ST"_s,    u"\u6771\u4EAC"_s,
                         u"@!!!Red!!!@"_s, u"@!!!Red!!!@"_s, u"@!!!Green!!!@"_s, u"@!!!Yellow!!!@"_s,
                         u"@!!!Blue!!!@"_s};
const QStringList kAlbums{u""_s,
                          u"Gold"_s,
                          u"GOLD"_s,
                          u"Blue_Train"_s,
                          u"Old"_s,
                          u"P"_s,
                          u"Bj\u00F6rk"_s,
                          u"\u6771\u4EAC"_s,
                          u"\u5927\u962A"_s,
                          u"1"_s,
                          u"2"_s,
                          u"3"_s,
                          u"4"_s,
                          u"5"_s,
                          u"6"_s,
                          u"7"_s,
                          u"8"_s,
                          u"9"_s};

class RandomMerge {
public:
  RandomMerge(unsigned seed, const QString &product, bool utf8)
      : m_random(seed), m_vaultbox(product == u"Vaultbox 1"), m_utf8(utf8), m_model(product, utf8),
        m_client(prepared(product), product) {
    m_client.session.setAU5UTF8Compliant(utf8 ? u"YES"_s : u"NO"_s);
    const char fillers[] = {'r', 'g', 'y', 'b'};
    for (int i = 0; i < 4; ++i) {
      m_guids.insert(-1 - i, guid(fillers[i]));
    }
  }

  void step() {
    m_last = below(10);
    switch (m_last) {
    case 0:
      ASSERT_TRUE(m_client.dictionary.validateOrvFile());
      m_model.connect();
      break;
    case 1:
    case 2:
      foreignEdit();
      break;
    case 3:
      m_client.limits.enableCFLLimits();
      m_model.enableLimits();
      break;
    case 4:
      if (below(4) == 0) {
        m_files.erase(kColourCopyPath.toString());
        m_model.copy.reset();
      }
      break;
    case 5:
      putLimits();
      break;
    default:
      drop();
    }
  }

  void compare() {
    ASSERT_EQ(m_files.exists(kServerFile), m_model.file.has_value());
    if (!m_model.file) {
      return;
    }
    ASSERT_EQ(shownByServer(), shownByModel());
    ASSERT_EQ(files().exists(kColourCopyPath.toString()), m_model.copy.has_value());
    if (m_model.limitsFile) {
      ASSERT_EQ(m_files.bytes(kLimitsPath), limitsBytes());
    }
    if (m_last == 0 || m_last > 5) {
      ASSERT_EQ(m_client.settings.text(u"PlaylistID"_s), QString::number(m_model.nextId));
    }
  }

  int lastStep() const { return m_last; }

private:
  FakeFileSystem &files() { return m_files; }
  FakeFileSystem &prepared(const QString &product) {
    mountShare(m_files, product);
    return m_files;
  }
  int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
  QString oneOf(const QStringList &values) { return values[below(static_cast<int>(values.size()))]; }

  void drop() {
    QList<PlainSong> songs;
    for (int lists = 1 + below(3); lists > 0; --lists) {
      const QString name = oneOf(kNames);
      for (int i = below(6); i >= 0; --i) {
        songs.append({name, u"A@@@@@B@@@@@%1.mp3"_s.arg(m_songs++), oneOf(kAlbums), below(6) != 0});
      }
    }
    for (const PlainSong &song : std::as_const(songs)) {
      m_client.track(song.playlist, song.path, song.album);
      m_client.records.last().songTransferFlag = song.transferred ? u"Y"_s : u"N"_s;
    }
    ASSERT_TRUE(m_client.send());
    m_model.drop(songs);
  }

  void foreignEdit() {
    QList<PlainList> lists = m_model.file.value_or(QList<PlainList>());
    const int size = static_cast<int>(lists.size());
    switch (below(4)) {
    case 0:
      if (size > 0) {
        lists.removeAt(below(size));
      }
      break;
    case 1:
      if (size > 1) {
        lists.swapItemsAt(below(size), below(size));
      }
      break;
    case 2:
      if (size > 0 && !m_vaultbox) {
        lists[below(size)].titles.append({u"foreign"_s, oneOf({u"1"_s, u"2"_s, u"3"_s}), m_model.nextSerial++});
      }
      break;
    default:
      lists.append({oneOf({u"P"_s, u"Old"_s, u"Red"_s, u"A@~B"_s, u""_s}),
                    QString::number(1 + below(12)),
                    m_model.nextSerial++,
                    {{u"x\\y.mp3"_s, m_vaultbox ? QString() : u"1"_s, m_model.nextSerial++}}});
    }
    if (lists.isEmpty()) {
      return;
    }
    m_model.file = lists;
    putFile(lists);
  }

  void putFile(const QList<PlainList> &lists) {
    const QByteArray version = m_utf8 ? "1.3" : "1.2";
    std::vector<QByteArray> records;
    std::vector<QByteArray> contents;
    for (const PlainList &list : lists) {
      records.push_back(listRecord(bytesOf(list.name), list.id.toLatin1(), "6", guidOf(list.serial)));
      std::vector<QByteArray> songs;
      for (const PlainTitle &title : list.titles) {
        const QByteArray path = (title.type == u"2" ? "" : "E:\\vb-share\\Music\\Mac\\") + bytesOf(title.path);
        songs.push_back(m_vaultbox ? titleOfVaultbox1(path, zeros36(), guidOf(title.serial))
                                   : titleRecord(path, zeros36(), guidOf(title.serial), title.type.toLatin1()));
      }
      contents.push_back(titles(songs, version));
    }
    contents.insert(contents.begin(), albums(records, version));
    m_files.put(kServerFile, wholeFile(musicHeader(), contents), ++m_time);
  }

  QByteArray bytesOf(const QString &text) const { return m_utf8 ? text.toUtf8() : text.toLatin1(); }

  // The GUID of a serial: the client's when it was seen, else one of somebody else.
  QByteArray guidOf(int serial) {
    if (!m_guids.contains(serial)) {
      m_guids.insert(serial, "foreign " + QByteArray::number(serial).rightJustified(8, '0'));
    }
    return m_guids.value(serial);
  }

  void putLimits() {
    if (below(4) == 0) {
      m_files.erase(kLimitsPath);
      m_model.limitsFile.reset();
      return;
    }
    std::array<PlainLimit, 4> limits;
    for (PlainLimit &key : limits) {
      key = {below(2), below(3) == 0 ? 9 : below(130)};
    }
    m_model.limitsFile = limits;
    m_files.put(kLimitsPath, limitsBytes());
  }
  QByteArray limitsBytes() const {
    const auto &keys = *m_model.limitsFile;
    const std::array<std::pair<const char *, size_t>, 4> order{
        {{"GREEN", 1}, {"YELLOW", 2}, {"RED", 0}, {"BLUE", 3}}};
    QByteArray bytes;
    for (const auto &[name, index] : order) {
      bytes += QByteArray(name) + "_ENABLED=" + QByteArray::number(keys[index].enable) + "\r\n";
    }
    for (const auto &[name, index] : order) {
      bytes += QByteArray(name) + "_LIMIT=" + QByteArray::number(keys[index].limit) + "\r\n";
    }
    return bytes;
  }

  QStringList shownByModel() {
    QStringList lines;
    for (const PlainList &list : std::as_const(*m_model.file)) {
      lines.append(list.id + u' ' + list.name + u" #%1:"_s.arg(list.serial));
      for (const PlainTitle &title : list.titles) {
        lines.append(u"  %1/%2 #%3"_s.arg(title.path, title.type).arg(title.serial));
      }
    }
    return lines;
  }
  // GUIDs that were never seen get the serial that the model has at the same place.
  QStringList shownByServer() {
    QStringList lines;
    const FavouriteLists lists = m_client.server();
    for (size_t i = 0; i < lists.size(); ++i) {
      const PlainList expected = m_model.file->value(static_cast<qsizetype>(i));
      const FavouriteList &list = lists[i];
      lines.append(list.playlistId + u' ' + *list.nameAsRead + u" #%1:"_s.arg(serialOf(list.guid, expected.serial)));
      for (size_t k = 0; k < list.songs.size(); ++k) {
        const FavouriteTitle &title = list.songs[k];
        lines.append(u"  %1/%2 #%3"_s.arg(title.songPath, title.itemType.value_or(QString()))
                         .arg(serialOf(title.guid, expected.titles.value(static_cast<qsizetype>(k)).serial)));
      }
    }
    return lines;
  }
  int serialOf(const QByteArray &guidBytes, int expected) {
    if (const int known = m_guids.key(guidBytes, 0); known != 0) {
      return known;
    }
    if (m_guids.contains(expected)) {
      return 0; // should have been the known one
    }
    m_guids.insert(expected, guidBytes);
    return expected;
  }

  std::mt19937 m_random;
  bool m_vaultbox;
  bool m_utf8;
  FakeFileSystem m_files;
  PlainFavourites m_model;
  MergeWorkbench m_client;
  QMap<int, QByteArray> m_guids; // by serial
  int m_songs = 0;
  int m_time = 1000;
  int m_last = 0;
};

void play(unsigned seed, const QString &product, bool utf8 = false) {
  RandomMerge sequence(seed, product, utf8);
  for (int step = 0; step < 40; ++step) {
    SCOPED_TRACE(testing::Message() << product.toStdString() << (utf8 ? " with UTF-8" : "") << ", seed " << seed
                                    << ", step " << step);
    ASSERT_NO_FATAL_FAILURE(sequence.step());
    SCOPED_TRACE(testing::Message() << "kind " << sequence.lastStep());
    ASSERT_NO_FATAL_FAILURE(sequence.compare());
  }
}

} // namespace

TEST(RandomMerge, EveryStepGivesWhatThePlainModelHas) {
  const unsigned seeds = std::getenv("SONOREL_LONG") != nullptr ? 300 : 12;
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    for (const QString &product : {u"Auralis 5"_s, u"Auracore 5"_s, u"Vaultbox 1"_s}) {
      ASSERT_NO_FATAL_FAILURE(play(seed, product));
    }
    ASSERT_NO_FATAL_FAILURE(play(seed, u"Auralis 5"_s, true));
  }
}

} // namespace sonorel::test
