// Random favourites files as anybody may have written them: what is read is written back byte for byte.
#include "favourites/FavouritesFile.h"

#include "HandMade.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

class RandomFile {
public:
  RandomFile(unsigned seed, bool utf8, bool vaultbox) : m_random(seed), m_utf8(utf8), m_vaultbox(vaultbox) {}

  std::vector<QByteArray> contents() {
    const QByteArray version = m_utf8 ? "1.3" : "1.2";
    std::vector<QByteArray> records;
    std::vector<QByteArray> lists;
    for (int i = below(8); i > 0; --i) {
      records.push_back(listRecord(text(), id(), oneOf({"6", "1", "4", "", "x"}), bytes(oneOf({16, 16, 0, 5}))));
      std::vector<QByteArray> songs;
      for (int k = below(5); k > 0; --k) {
        songs.push_back(song());
      }
      lists.push_back(titles(songs, version));
    }
    lists.insert(lists.begin(), albums(records, version));
    return lists;
  }

private:
  int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
  template <typename T> T oneOf(std::initializer_list<T> values) {
    return values.begin()[below(static_cast<int>(values.size()))];
  }
  QByteArray oneOf(std::initializer_list<const char *> values) {
    return values.begin()[below(static_cast<int>(values.size()))];
  }
  QByteArray id() { return below(3) == 0 ? text() : QByteArray::number(below(9)); }

  QByteArray bytes(int count) {
    QByteArray made;
    for (int i = 0; i < count; ++i) {
      made.append(static_cast<char>(below(256)));
    }
    return made;
  }

  // No NUL character; "@~" and letters of every range.
  QByteArray text() {
    QByteArray made;
    for (int i = below(12); i > 0; --i) {
      if (m_utf8) {
        made += oneOf({"a", "@~", "\xC3\xB6", "o\xCC\x88", "\xE6\x9D\xB1", "\xF0\x9F\x8E\xB5", " ", "~@"});
      } else {
        made.append(static_cast<char>(1 + below(255)));
      }
    }
    return made;
  }

  QByteArray song() {
    const bool album = !m_vaultbox && below(4) == 0;
    QByteArray path =
        album ? text()
              : QByteArray(oneOf({"E:\\vb-share\\Music\\Mac\\a", "D:\\", "E:\\vb-share\\Music\\Other\\"})) + text();
    path.replace("@@@@@", "@");
    const QByteArray checkSum = bytes(oneOf({36, 36, 0, 7}));
    const QByteArray titleGuid = bytes(oneOf({16, 16, 1}));
    if (m_vaultbox) {
      return titleOfVaultbox1(path, checkSum, titleGuid);
    }
    return titleRecord(path, checkSum, titleGuid, album ? "2" : oneOf({"1", "1", "3", "", "x"}));
  }

  std::mt19937 m_random;
  bool m_utf8;
  bool m_vaultbox;
};

} // namespace

TEST(RandomRoundTrip, WhatIsReadIsWrittenBackByteForByte) {
  for (unsigned seed = 1; seed <= 900; ++seed) {
    const bool utf8 = seed % 3 == 0;
    const bool vaultbox = seed % 3 == 1;
    const std::vector<QByteArray> contents = RandomFile(seed, utf8, vaultbox).contents();
    const PlayerTraits player{vaultbox ? u"Vaultbox 1"_s : u"Auracore 5"_s, utf8};
    const DecodedFavourites read = decodeMusicFavourites(wholeFile(musicHeader(), contents), player);
    EXPECT_TRUE(read.oddities.isEmpty()) << "seed " << seed << ": " << read.oddities.join(u"; "_s).toStdString();
    EXPECT_TRUE(read.fitsModel) << "seed " << seed;
    const QByteArray written = encodeMusicFavourites(read.lists, player, u"00000000-0000-0000-0000-0000000000AA"_s);
    ASSERT_EQ(contentsOf(written), contents) << "seed " << seed;
  }
}
