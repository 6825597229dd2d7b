#include "favourites/ColourChunks.h"

#include "HandMade.h"
#include "platform/Failure.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

TEST(GetRGYBChunk, FindsTheChunkAndGivesItsCompressedLength) {
  const QByteArray list1 = albums(keyRecords());
  const QByteArray red = titles({titleRecord("a", zeros36(), guid('a'), "1")});
  const QByteArray file = wholeFile(photoHeader(), {list1, red, titles({})});
  const auto list1Size = static_cast<qsizetype>(chunk(list1).size());
  quint32 size = 0;
  EXPECT_EQ(getRGYBChunk(file, 73 + list1Size, size), red);
  EXPECT_EQ(size, static_cast<quint32>(chunk(red).size() - 8));
  EXPECT_EQ(getRGYBChunk(file, 73 + list1Size + 8 + size, size), titles({}));
}

TEST(GetRGYBChunk, BehindTheEndIsAFailureAndADamagedStreamIsEmpty) {
  QByteArray file = wholeFile(photoHeader(), {albums({})});
  quint32 size = 0;
  EXPECT_THROW(static_cast<void>(getRGYBChunk(file, file.size(), size)), Failure);
  EXPECT_THROW(static_cast<void>(getRGYBChunk(file, -1, size)), Failure);
  EXPECT_THROW(static_cast<void>(getRGYBChunk(file.chopped(1), 73, size)), Failure);
  file[file.size() - 1] = static_cast<char>(file.back() ^ 1);
  EXPECT_EQ(getRGYBChunk(file, 73, size), QByteArray());
}

TEST(CreateDetailListForRGYB, AppendsPhotoTitlesAndRaisesTheCount) {
  QList<QByteArray> lists{titles({}), titles({titleRecord("old", zeros36(), guid('o'), "1")})};
  const QByteArray made = createDetailListForRGYB(lists, 1, {{u"Rome@@@@@a.jpg"_s, zeros36(), guid('n'), u"1"_s}},
                                                  FavouritesKind::Photos, false);
  const QByteArray expected =
      titles({titleRecord("old", zeros36(), guid('o'), "1"),
              titleRecord("E:\\vb-share\\Photo\\Mac\\Rome@@@@@a.jpg", zeros36(), guid('n'), "1")});
  EXPECT_EQ(lists, (QList<QByteArray>{titles({}), expected}));
  EXPECT_EQ(made, chunk(expected));
}

TEST(CreateDetailListForRGYB, MusicTitlesKeepTheirMarksAndAlbumsTheirNames) {
  QList<QByteArray> lists{titles({})};
  static_cast<void>(createDetailListForRGYB(
      lists, 0, {{u"a@@@@@b"_s, zeros36(), guid('1'), u"1"_s}, {u"Blue Train"_s, zeros36(), guid('2'), u"2"_s}},
      FavouritesKind::Music, false));
  EXPECT_EQ(lists.at(0), titles({titleRecord("E:\\vb-share\\Music\\Mac\\a@@@@@b", zeros36(), guid('1'), "1"),
                                 titleRecord("Blue Train", zeros36(), guid('2'), "2")}));
}

TEST(CreateDetailListForRGYB, AListThatIsNotThereHasNoCountToRaise) {
  QList<QByteArray> lists;
  EXPECT_THROW(static_cast<void>(createDetailListForRGYB(lists, 0, {}, FavouritesKind::Music, false)), Failure);
}
