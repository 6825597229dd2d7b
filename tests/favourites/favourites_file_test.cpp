#include "favourites/FavouritesFile.h"

#include "HandMade.h"
#include "platform/Failure.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const PlayerTraits kAuralis{u"Auralis 5"_s, false};
const PlayerTraits kAuralisUtf8{u"Auralis 5"_s, true};
const PlayerTraits kVaultbox{u"Vaultbox 1"_s, false};
const QString kGuid = u"00000000-0000-0000-0000-0000000000AA"_s;

FavouriteList made(const QString &name, const QString &id, char filler) {
  FavouriteList list;
  list.playlistName = name;
  list.playlistId = id;
  list.locationId = u"6"_s;
  list.guid = guid(filler);
  return list;
}

FavouriteTitle title(const QString &path, char filler, const std::optional<QString> &type) {
  return {path, zeros36(), guid(filler), type};
}

// Red with one album, the other keys empty, a list that was read, a new one.
FavouriteLists exampleLists() {
  FavouriteLists lists{made(u"Red"_s, u"1"_s, '\xC1'),     made(u"Green"_s, u"2"_s, '\xC2'),
                       made(u"Yellow"_s, u"3"_s, '\xC3'),  made(u"Blue"_s, u"4"_s, '\xC4'),
                       made(u"@~Old@~"_s, u"7"_s, '\x0D'), made(u"Party"_s, u"8"_s, '\xE0')};
  lists[0].songs = {title(u"Blue Train"_s, '\x01', u"2"_s)};
  lists[4].nameAsRead = u"Old"_s;
  lists[4].songs = {title(u"ABBA\\Gold\\ABBA-Gold-Waterloo.mp3"_s, '\x02', u"1"_s)};
  lists[5].songs = {title(u"Miles Davis@@@@@Kind of Blue@@@@@Miles Davis-Kind of Blue-So What.mp3"_s, '\x03', u"1"_s),
                    title(u"Bj\u00F6rk@@@@@Debut@@@@@Bj\u00F6rk-Debut-Human Behaviour.mp3"_s, '\x04', u"1"_s)};
  return lists;
}

QByteArray cut(const QByteArray &whole, qsizetype from, qsizetype length) {
  return whole.mid(from, length);
}

} // namespace

TEST(EncodeMusicFavourites, TheHeaderBlockAndTheBodyLength) {
  const QByteArray file = encodeMusicFavourites(exampleLists(), kAuralis, kGuid);
  EXPECT_EQ(file.left(8).toHex(), "0300000026000000");
  EXPECT_EQ(cut(file, 8, 38), "{00000000-0000-0000-0000-0000000000AA}");
  EXPECT_EQ(cut(file, 46, 4).toHex(), "11000000");
  EXPECT_EQ(cut(file, 50, 17), "NetMusicFavorites");
  EXPECT_EQ(cut(file, 67, 5), QByteArray("\x01\0\0\0"
                                         "1",
                                         5));
  EXPECT_EQ(cut(file, 72, 4), le32(static_cast<quint32>(file.size() - 76)));
}

TEST(EncodeMusicFavourites, TheContentOfTheListOfLists) {
  const QByteArray list1 = contentsOf(encodeMusicFavourites(exampleLists(), kAuralis, kGuid)).at(0);
  EXPECT_EQ(list1.left(27), QByteArray("\x07\0\0\0N\x12\0\0\0FavoriteAlbums-1.2", 27));
  EXPECT_EQ(cut(list1, 27, 45), QByteArray("L\x03\0\0\0Red\x03\0\0\0N\x01\0\0\0"
                                           "1N\x01\0\0\0"
                                           "6N\x10\0\0\0",
                                           29) +
                                    QByteArray(16, '\xC1'));
  EXPECT_EQ(cut(list1, 72, 6), QByteArray("L\x05\0\0\0G", 6));
  EXPECT_EQ(cut(list1, 119, 6), QByteArray("L\x06\0\0\0Y", 6));
  EXPECT_EQ(cut(list1, 167, 6), QByteArray("L\x04\0\0\0"
                                           "B",
                                           6));
  EXPECT_EQ(cut(list1, 213, 8), QByteArray("L\x03\0\0\0Old", 8));
  EXPECT_EQ(cut(list1, 258, 10), QByteArray("L\x05\0\0\0Party", 10));
  EXPECT_EQ(list1.size(), 305);
}

TEST(EncodeMusicFavourites, TheContentsOfTheListsOfTitles) {
  const std::vector<QByteArray> contents = contentsOf(encodeMusicFavourites(exampleLists(), kAuralis, kGuid));
  ASSERT_EQ(contents.size(), 7U);
  std::vector<qsizetype> sizes;
  for (const QByteArray &content : contents) {
    sizes.push_back(content.size());
  }
  EXPECT_EQ(sizes, (std::vector<qsizetype>{305, 114, 27, 27, 27, 158, 329}));
  EXPECT_EQ(contents[1], titles({titleRecord("Blue Train", zeros36(), guid('\x01'), "2")}));
  EXPECT_EQ(contents[2], QByteArray("\x01\0\0\0N\x12\0\0\0FavoriteTitles-1.2", 27));
  EXPECT_EQ(contents[5], titles({titleRecord("E:\\vb-share\\Music\\Mac\\ABBA\\Gold\\ABBA-Gold-Waterloo.mp3",
                                             zeros36(), guid('\x02'), "1")}));
  EXPECT_EQ(
      contents[6],
      titles({titleRecord("E:\\vb-share\\Music\\Mac\\Miles Davis\\Kind of Blue\\Miles Davis-Kind of Blue-So What.mp3",
                          zeros36(), guid('\x03'), "1"),
              titleRecord("E:\\vb-share\\Music\\Mac\\Bj\xF6rk\\Debut\\Bj\xF6rk-Debut-Human Behaviour.mp3", zeros36(),
                          guid('\x04'), "1")}));
}

TEST(EncodeMusicFavourites, AFileWithoutPlaylistsIsOneChunk) {
  const QByteArray file = encodeMusicFavourites({}, kVaultbox, kGuid);
  const QByteArray list1 = chunk(albums({}));
  EXPECT_EQ(file, musicHeader() + le32(static_cast<quint32>(list1.size())) + list1);
  EXPECT_TRUE(isNetMusicFavEmpty(file, FavouritesKind::Music));
}

TEST(EncodeMusicFavourites, AUtf8PlayerGetsTheLaterTagsAndUtf8) {
  const std::vector<QByteArray> contents = contentsOf(encodeMusicFavourites(exampleLists(), kAuralisUtf8, kGuid));
  EXPECT_EQ(contents.at(2), QByteArray("\x01\0\0\0N\x12\0\0\0FavoriteTitles-1.3", 27));
  EXPECT_EQ(contents.at(0).mid(9, 18), "FavoriteAlbums-1.3");
  EXPECT_TRUE(contents.at(6).contains("Mac\\Bj\xC3\xB6rk\\Debut\\Bj\xC3\xB6rk-"));
}

TEST(EncodeMusicFavourites, Vaultbox1TitlesHaveTwoFieldsAndUnframedNames) {
  FavouriteLists lists{made(u"@~Red@~"_s, u"1"_s, 'a')};
  lists[0].songs = {title(u"x@@@@@y"_s, 'b', std::nullopt)};
  const std::vector<QByteArray> contents = contentsOf(encodeMusicFavourites(lists, kVaultbox, kGuid));
  EXPECT_EQ(contents.at(0), albums({listRecord("Red", "1", "6", guid('a'))}));
  EXPECT_EQ(contents.at(1), titles({titleOfVaultbox1("E:\\vb-share\\Music\\Mac\\x\\y", zeros36(), guid('b'))}));
}

TEST(DecodeMusicFavourites, ReadsListsAndTitles) {
  const QByteArray file = wholeFile(
      musicHeader(),
      {albums({listRecord("Red", "1", "6", guid('r')), listRecord("Party", "9", "3", guid('p'))}), titles({}),
       titles({titleRecord("E:\\vb-share\\Music\\Mac\\Artist\\Song.mp3", QByteArray(36, 'c'), guid('s'), "1")})});
  const DecodedFavourites read = decodeMusicFavourites(file, kAuralis);
  ASSERT_EQ(read.lists.size(), 2U);
  EXPECT_EQ(read.lists[0].playlistName, u"Red"_s);
  EXPECT_TRUE(read.lists[0].songs.empty());
  EXPECT_EQ(read.lists[1].playlistName, u"@~Party@~"_s);
  EXPECT_EQ(read.lists[1].nameAsRead, u"Party"_s);
  EXPECT_EQ(read.lists[1].playlistId, u"9"_s);
  EXPECT_EQ(read.lists[1].locationId, u"3"_s);
  EXPECT_EQ(read.lists[1].guid, guid('p'));
  EXPECT_EQ(read.lists[1].songs,
            (std::vector<FavouriteTitle>{{u"Artist\\Song.mp3"_s, QByteArray(36, 'c'), guid('s'), u"1"_s}}));
  EXPECT_TRUE(read.oddities.isEmpty());
  EXPECT_TRUE(read.list1Readable);
  EXPECT_TRUE(read.fitsModel);
}

// Everything that other clients and the player may have written comes back as it was.
TEST(DecodeMusicFavourites, WhatItReadsIsWrittenBackByteForByte) {
  const std::vector<QByteArray> foreign{
      albums({listRecord("A@~B", "12", "2", "shortguid"), listRecord("Red", "x7", "", guid('2')),
              listRecord("Caf\xE9 \x81\x8D\x80", "12", "9", guid('3')), listRecord("", "", "6", "")}),
      titles({titleRecord("E:\\vb-share\\Music\\Other\\a.mp3", QByteArray(36, 'k'), guid('4'), "3"),
              titleRecord("E:\\vb-share\\Music\\Mac\\\xF6\\b.mp3", "odd", "g", "1")}),
      titles({titleRecord("Blue Train", zeros36(), guid('5'), "2")}), titles({}), titles({})};
  const QByteArray file = wholeFile(musicHeader(), foreign);
  EXPECT_EQ(contentsOf(encodeMusicFavourites(decodeMusicFavourites(file, kAuralis).lists, kAuralis, kGuid)), foreign);
}

TEST(DecodeMusicFavourites, Utf8ComesBackByteForByteAndAsABomToo) {
  const std::vector<QByteArray> foreign{
      albums({listRecord("\xEF\xBB\xBFo\xCC\x88\xE6\x9D\xB1", "5", "6", guid('1'))}, "1.3"),
      titles({titleRecord("E:\\vb-share\\Music\\Mac\\\xF0\x9F\x8E\xB5.mp3", zeros36(), guid('2'), "1")}, "1.3")};
  const QByteArray file = wholeFile(musicHeader(), foreign);
  const DecodedFavourites read = decodeMusicFavourites(file, kAuralisUtf8);
  EXPECT_EQ(contentsOf(encodeMusicFavourites(read.lists, kAuralisUtf8, kGuid)), foreign);
}

TEST(DecodeMusicFavourites, TheServersFolderGoesUpToItsLastPlace) {
  const auto pathOf = [](const QByteArray &stored) {
    const QByteArray file = wholeFile(musicHeader(), {albums({listRecord("A", "7", "6", guid('a'))}),
                                                      titles({titleRecord(stored, zeros36(), guid('t'), "1")})});
    return decodeMusicFavourites(file, {u"Auralis 5"_s, false}).lists.at(0).songs.at(0).songPath;
  };
  EXPECT_EQ(pathOf("E:\\vb-share\\Music\\Mac\\Artist\\Song.mp3"), u"Artist\\Song.mp3"_s);
  EXPECT_EQ(pathOf("E:\\vb-share\\Music\\Mac\\E:\\vb-share\\Music\\Mac\\a.mp3"), u"a.mp3"_s);
  EXPECT_EQ(pathOf("xE:\\vb-share\\Music\\Mac\\a.mp3"), u"a.mp3"_s);
  EXPECT_EQ(pathOf("E:\\vb-share\\Music\\Mac\\a:b.mp3"), u"a:b.mp3"_s);
  EXPECT_EQ(pathOf("E:\\vb-share\\Music\\Mac\\caf\xE9.mp3"), u"caf\u00E9.mp3"_s);
  EXPECT_EQ(pathOf("E:\\vb-share\\Music\\Other\\a.mp3"), u"E:\\vb-share\\Music\\Other\\a.mp3"_s);
  EXPECT_EQ(pathOf(""), QString());
}

TEST(DecodeMusicFavourites, WhatIsNoUtf8IsReadAsWindows1252) {
  const QByteArray file =
      wholeFile(musicHeader(), {albums({listRecord("Bj\xF6rk", "5", "6", guid('1'))}), titles({})});
  EXPECT_EQ(decodeMusicFavourites(file, kAuralisUtf8).lists.at(0).nameAsRead, u"Bj\u00F6rk"_s);
}

TEST(DecodeMusicFavourites, ATextIsCutAtANulCharacter) {
  const QByteArray name("Par\0ty", 6);
  const QByteArray file = wholeFile(musicHeader(), {albums({listRecord(name, "5", "6", guid('1'))}), titles({})});
  const DecodedFavourites read = decodeMusicFavourites(file, kAuralis);
  EXPECT_EQ(read.lists.at(0).nameAsRead, u"Par"_s);
  EXPECT_EQ(read.oddities, QStringList{u"the text \"Par\" holds a NUL character and is cut there"_s});
}

TEST(DecodeMusicFavourites, ReadsVaultbox1Titles) {
  const QByteArray file =
      wholeFile(musicHeader(), {albums({listRecord("Red", "1", "6", guid('1'))}),
                                titles({titleOfVaultbox1("E:\\vb-share\\Music\\Mac\\a", zeros36(), guid('2'))})});
  const DecodedFavourites read = decodeMusicFavourites(file, kVaultbox);
  EXPECT_EQ(read.lists.at(0).playlistName, u"@~Red@~"_s);
  EXPECT_EQ(read.lists.at(0).songs, (std::vector<FavouriteTitle>{{u"a"_s, zeros36(), guid('2'), std::nullopt}}));
  EXPECT_TRUE(read.fitsModel);
}

TEST(DecodeMusicFavourites, TitlesOfAnotherModelDoNotFit) {
  const QByteArray four = wholeFile(musicHeader(), {albums({listRecord("A", "5", "6", guid('1'))}),
                                                    titles({titleRecord("a", zeros36(), guid('2'), "1")})});
  EXPECT_FALSE(decodeMusicFavourites(four, kVaultbox).fitsModel);
  EXPECT_TRUE(decodeMusicFavourites(four, kAuralis).fitsModel);
  const QByteArray three = wholeFile(musicHeader(), {albums({listRecord("A", "5", "6", guid('1'))}),
                                                     titles({titleOfVaultbox1("a", zeros36(), guid('2'))})});
  EXPECT_FALSE(decodeMusicFavourites(three, kAuralis).fitsModel);
}

TEST(DecodeMusicFavourites, AFieldCountThatIsWrongDoesNoHarm) {
  QByteArray odd = titles({titleRecord("a", zeros36(), guid('2'), "1"), titleRecord("b", zeros36(), guid('3'), "1")});
  odd.replace(field('L', "a") + le32(3), field('L', "a") + le32(1));
  const QByteArray file = wholeFile(musicHeader(), {albums({listRecord("A", "5", "6", guid('1'))}), odd});
  const DecodedFavourites read = decodeMusicFavourites(file, kAuralis);
  EXPECT_TRUE(read.fitsModel);
  EXPECT_EQ(read.lists.at(0).songs.size(), 2U);
  EXPECT_EQ(read.oddities, QStringList{u"a title of \"A\" has the field count 1"_s});
}

TEST(DecodeMusicFavourites, AFieldCountThatIsTooHighDoesNoHarmToTheLastRecord) {
  QByteArray lists = albums({listRecord("A", "5", "6", guid('1')), listRecord("B", "6", "6", guid('2'))});
  lists.replace(field('L', "A") + le32(3), field('L', "A") + le32(4));
  lists.replace(field('L', "B") + le32(3), field('L', "B") + le32(4));
  QByteArray high =
      titles({titleRecord("a", zeros36(), guid('3'), "1"), titleRecord("b", zeros36(), guid('4'), "1")});
  high.replace(field('L', "b") + le32(3), field('L', "b") + le32(4));
  const DecodedFavourites read = decodeMusicFavourites(wholeFile(musicHeader(), {lists, high, titles({})}), kAuralis);
  EXPECT_TRUE(read.fitsModel);
  ASSERT_EQ(read.lists.size(), 2U);
  EXPECT_EQ(read.lists.at(0).songs.size(), 2U);
  EXPECT_EQ(read.oddities,
            (QStringList{u"the list \"A\" has the field count 4"_s, u"the list \"B\" has the field count 4"_s,
                         u"a title of \"A\" has the field count 4"_s}));
}

TEST(DecodeMusicFavourites, TitlesOfVaultbox1ThatSayThreeFieldsAreAllRead) {
  QByteArray two = titles({titleOfVaultbox1("a", zeros36(), guid('2')), titleOfVaultbox1("b", zeros36(), guid('3'))});
  two.replace(field('L', "a") + le32(2), field('L', "a") + le32(3));
  two.replace(field('L', "b") + le32(2), field('L', "b") + le32(3));
  const DecodedFavourites read = decodeMusicFavourites(
      wholeFile(musicHeader(), {albums({listRecord("A", "5", "6", guid('1'))}), two}), kVaultbox);
  EXPECT_TRUE(read.fitsModel);
  EXPECT_EQ(read.lists.at(0).songs.size(), 2U);
}

TEST(DecodeMusicFavourites, ABrokenChunkCostsItsOwnTitlesOnly) {
  const QByteArray list1 = albums({listRecord("A", "5", "6", guid('1')), listRecord("B", "6", "6", guid('2'))});
  QByteArray broken = chunk(titles({titleRecord("a", zeros36(), guid('3'), "1")}));
  broken[broken.size() - 1] = static_cast<char>(broken.back() ^ 1);
  const QByteArray good = chunk(titles({titleRecord("b", zeros36(), guid('4'), "1")}));
  const QByteArray body = chunk(list1) + broken + good;
  const DecodedFavourites read =
      decodeMusicFavourites(musicHeader() + le32(static_cast<quint32>(body.size())) + body, kAuralis);
  ASSERT_EQ(read.lists.size(), 2U);
  EXPECT_TRUE(read.lists[0].songs.empty());
  EXPECT_EQ(read.lists[1].songs.size(), 1U);
  EXPECT_TRUE(read.oddities.contains(u"the titles of \"A\" are lost: their chunk is damaged"_s));
}

TEST(DecodeMusicFavourites, MissingChunksAreListsWithoutTitlesAndFurtherOnesAreIgnored) {
  const QByteArray one = titles({titleRecord("a", zeros36(), guid('3'), "1")});
  const QByteArray two = albums({listRecord("A", "5", "6", guid('1')), listRecord("B", "6", "6", guid('2'))});
  const DecodedFavourites missing = decodeMusicFavourites(wholeFile(musicHeader(), {two, one}), kAuralis);
  EXPECT_EQ(missing.lists.at(0).songs.size(), 1U);
  EXPECT_TRUE(missing.lists.at(1).songs.empty());
  EXPECT_EQ(missing.oddities, QStringList{u"there are 2 lists and 1 lists of titles"_s});
  const DecodedFavourites further = decodeMusicFavourites(wholeFile(musicHeader(), {two, one, one, one}), kAuralis);
  EXPECT_EQ(further.lists.size(), 2U);
  EXPECT_EQ(further.oddities, QStringList{u"there are 2 lists and 3 lists of titles"_s});
}

TEST(DecodeMusicFavourites, ItemCountsThatAreWrong) {
  const auto songsWithCount = [](quint32 count) {
    QByteArray list =
        titles({titleRecord("a", zeros36(), guid('3'), "1"), titleRecord("b", zeros36(), guid('4'), "1")});
    list.replace(0, 4, le32(count));
    const QByteArray file = wholeFile(musicHeader(), {albums({listRecord("A", "5", "6", guid('1'))}), list});
    return decodeMusicFavourites(file, kAuralis).lists.at(0).songs.size();
  };
  EXPECT_EQ(songsWithCount(0), 2U);
  EXPECT_EQ(songsWithCount(1), 0U);
  EXPECT_EQ(songsWithCount(2), 1U);
  EXPECT_EQ(songsWithCount(3), 2U);
  EXPECT_EQ(songsWithCount(4), 2U);
  EXPECT_EQ(songsWithCount(0xFFFFFFFF), 2U);
}

TEST(IsNetMusicFavEmpty, GoesByTheLengthAndTheFirstCount) {
  const QByteArray list1 = albums({listRecord("A", "5", "6", guid('1'))});
  EXPECT_TRUE(isNetMusicFavEmpty(QByteArray(), FavouritesKind::Music));
  EXPECT_TRUE(isNetMusicFavEmpty(musicHeader(), FavouritesKind::Music));
  EXPECT_TRUE(isNetMusicFavEmpty(photoHeader(), FavouritesKind::Photos));
  EXPECT_TRUE(isNetMusicFavEmpty(wholeFile(musicHeader(), {albums({})}), FavouritesKind::Music));
  EXPECT_TRUE(isNetMusicFavEmpty(wholeFile(photoHeader(), {albums({})}), FavouritesKind::Photos));
  EXPECT_FALSE(isNetMusicFavEmpty(wholeFile(musicHeader(), {list1, titles({})}), FavouritesKind::Music));
  EXPECT_FALSE(isNetMusicFavEmpty(wholeFile(photoHeader(), {list1, titles({})}), FavouritesKind::Photos));
}

TEST(IsNetMusicFavEmpty, AMusicFileOfThePhotoHeadersLengthIsNotEmptyButDamaged) {
  EXPECT_THROW(static_cast<void>(isNetMusicFavEmpty(QByteArray(69, 'x'), FavouritesKind::Music)), Failure);
  EXPECT_THROW(static_cast<void>(isNetMusicFavEmpty(wholeFile(musicHeader(), {QByteArray()}), FavouritesKind::Music)),
               Failure);
}
