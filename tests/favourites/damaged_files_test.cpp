// Whole favourites files cut at every length and with every byte flipped: nothing crashes, and what was not hit
// stays.
#include "favourites/FavouritesFile.h"

#include "HandMade.h"
#include "favourites/FavouritesReport.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const PlayerTraits kAuralis{u"Auralis 5"_s, false};

QByteArray twoLists() {
  return wholeFile(musicHeader(),
                   {albums({listRecord("A", "5", "6", guid('1')), listRecord("B", "6", "6", guid('2'))}),
                    titles({titleRecord("E:\\vb-share\\Music\\Mac\\a.mp3", zeros36(), guid('3'), "1")}),
                    titles({titleRecord("E:\\vb-share\\Music\\Mac\\b.mp3", zeros36(), guid('4'), "1")})});
}

qsizetype chunkEnd(const QByteArray &file, qsizetype start) {
  return start + 8 + static_cast<quint8>(file.at(start + 4)) + 256 * static_cast<quint8>(file.at(start + 5));
}

} // namespace

TEST(DamagedFavourites, CutAtEveryLengthTheyKeepTheChunksBeforeTheCut) {
  const QByteArray whole = twoLists();
  const qsizetype list1 = chunkEnd(whole, 76);
  const qsizetype first = chunkEnd(whole, list1);
  ASSERT_EQ(chunkEnd(whole, first), whole.size());
  for (qsizetype length = 0; length < whole.size(); ++length) {
    const DecodedFavourites read = decodeMusicFavourites(whole.left(length), kAuralis);
    EXPECT_EQ(read.list1Readable, length >= list1) << "cut at " << length;
    EXPECT_FALSE(read.oddities.isEmpty()) << "cut at " << length;
    EXPECT_TRUE(read.fitsModel) << "cut at " << length;
    if (length >= list1) {
      ASSERT_EQ(read.lists.size(), 2U);
      EXPECT_EQ(read.lists[0].songs.size(), length >= first ? 1U : 0U) << "cut at " << length;
      EXPECT_TRUE(read.lists[1].songs.empty()) << "cut at " << length;
    }
  }
}

TEST(DamagedFavourites, WithAnyByteFlippedTheOtherChunksAreReadAsTheyWere) {
  const QByteArray whole = twoLists();
  const DecodedFavourites right = decodeMusicFavourites(whole, kAuralis);
  const qsizetype list1 = chunkEnd(whole, 76);
  const qsizetype first = chunkEnd(whole, list1);
  for (qsizetype at = 0; at < whole.size(); ++at) {
    for (const char bits : {'\x01', '\x10', '\x80', '\xFF'}) {
      QByteArray flipped = whole;
      flipped[at] = static_cast<char>(flipped.at(at) ^ bits);
      const DecodedFavourites read = decodeMusicFavourites(flipped, kAuralis);
      if (at < 76) {
        EXPECT_EQ(read.lists, right.lists) << "byte " << at;
      } else if (at >= list1 + 8 && at < first) { // in the stream of the first list of titles
        ASSERT_EQ(read.lists.size(), 2U) << "byte " << at;
        EXPECT_EQ(read.lists[1], right.lists[1]) << "byte " << at;
      } else if (at >= first) {
        ASSERT_EQ(read.lists.size(), 2U) << "byte " << at;
        EXPECT_EQ(read.lists[0], right.lists[0]) << "byte " << at;
      }
      if (read.lists != right.lists) {
        EXPECT_FALSE(read.oddities.isEmpty()) << "byte " << at;
      }
    }
  }
}

TEST(DamagedFavourites, LengthsOfFourGigabytesCostNothing) {
  const QByteArray huge = le32(0xFFFFFFFF);
  const QByteArray list1 = chunk(albums({listRecord("A", "5", "6", guid('1'))}));
  const QByteArray stream = list1.mid(8);
  EXPECT_FALSE(decodeMusicFavourites(musicHeader() + huge + huge + huge + stream, kAuralis).list1Readable);
  EXPECT_FALSE(decodeMusicFavourites(musicHeader() + huge + huge + list1.mid(4), kAuralis).list1Readable);
  EXPECT_EQ(decodeMusicFavourites(musicHeader() + huge + list1 + huge + huge + stream, kAuralis).lists.size(), 1U);
}

// 1 KiB of zeros for each byte of the file, thousands of times: the sum of what may come out is bounded.
TEST(DamagedFavourites, ManyChunksOfNothingAreGivenUp) {
  const QByteArray bomb = chunk(QByteArray(100 * 1024 * 1024, '\0'));
  QByteArray body = chunk(albums({listRecord("A", "5", "6", guid('1'))}));
  for (int i = 0; i < 8; ++i) {
    body += bomb;
  }
  const DecodedFavourites read =
      decodeMusicFavourites(musicHeader() + le32(static_cast<quint32>(body.size())) + body, kAuralis);
  EXPECT_EQ(read.lists.size(), 1U);
  EXPECT_TRUE(read.oddities.contains(u"there are 1 lists and 3 lists of titles"_s))
      << read.oddities.join(u"; "_s).toStdString();
}

TEST(DamagedFavourites, TheReportTellsWhatIsWrong) {
  EXPECT_FALSE(textOf(favouritesReport(twoLists())).contains(u"the chunk at byte "_s));
  EXPECT_TRUE(textOf(favouritesReport(twoLists().chopped(3))).contains(u"What departs from the format:\n"_s));
  EXPECT_TRUE(textOf(favouritesReport(twoLists().chopped(3))).contains(u"  - the chunk at byte "_s));
  EXPECT_FALSE(favouritesReport(QByteArray()).file.list1Readable);
  EXPECT_FALSE(favouritesReport("not a favourites file, but long enough to hold a header block and more than that")
                   .file.list1Readable);
}
