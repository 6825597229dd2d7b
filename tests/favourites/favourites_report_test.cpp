#include "favourites/FavouritesReport.h"

#include "HandMade.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

QByteArray example() {
  std::vector<QByteArray> records = keyRecords();
  records.push_back(listRecord("Old", "7", "9", guid('o')));
  return wholeFile(musicHeader(),
                   {albums(records), titles({titleRecord("Blue Train", zeros36(), guid('1'), "2")}), titles({}),
                    titles({}), titles({}),
                    titles({titleRecord("E:\\vb-share\\Music\\Mac\\Bj\xF6rk\\a.mp3", zeros36(), guid('2'), "1"),
                            titleRecord("E:\\other\\b.mp3", zeros36(), guid('3'), "5")})});
}

} // namespace

TEST(FavouritesReport, ShowsAPersonTheListsAndTheirTitles) {
  EXPECT_EQ(
      textOf(favouritesReport(example())),
      u"Music favourites: 5 lists, 3 titles\n"
      "Version \"FavoriteAlbums-1.2\", texts in Windows-1252, written as {00000000-0000-0000-0000-0000000000AA}\n"
      "\n1      Red (colour key, 1 album)\n       [album] Blue Train\n"
      "\n2      Green (colour key, empty)\n"
      "\n3      Yellow (colour key, empty)\n"
      "\n4      Blue (colour key, empty)\n"
      "\n7      Old (2 titles)\n       location \"9\"\n       Bj\u00F6rk\\a.mp3\n"
      "       E:\\other\\b.mp3  (item type \"5\")\n"_s);
}

TEST(FavouritesReport, GivesAProgramEverythingAsJson) {
  const QByteArray json = jsonOf(favouritesReport(
      wholeFile(musicHeader(), {albums({listRecord("Old", "7", "6", "\x01\x02")}),
                                titles({titleRecord("E:\\vb-share\\Music\\Mac\\a.mp3", "\x03", "\x04", "1")})})));
  EXPECT_EQ(json, R"({
    "departures": [
        "a GUID or a CheckSum of \"Old\" has an odd length",
        "the colour keys are not the first four lists"
    ],
    "guid": "{00000000-0000-0000-0000-0000000000AA}",
    "kind": "NetMusicFavorites",
    "lists": [
        {
            "colourKey": false,
            "guid": "0102",
            "locationId": "6",
            "name": "Old",
            "playlistId": "7",
            "titles": [
                {
                    "checkSum": "03",
                    "guid": "04",
                    "itemType": "1",
                    "path": "a.mp3"
                }
            ]
        }
    ],
    "readable": true,
    "version": "FavoriteAlbums-1.2"
}
)");
}

TEST(FavouritesReport, KnowsVaultbox1FilesAndPhotoFilesByTheirRecords) {
  const FavouritesReport vaultbox = favouritesReport(
      wholeFile(musicHeader(), {albums({listRecord("Red", "1", "6", guid('1'))}),
                                titles({titleOfVaultbox1("E:\\vb-share\\Music\\Mac\\a", zeros36(), guid('2'))})}));
  EXPECT_FALSE(vaultbox.hasItemTypes);
  EXPECT_TRUE(vaultbox.file.fitsModel);
  EXPECT_TRUE(vaultbox.file.oddities.isEmpty());
  const FavouritesReport photos = favouritesReport(wholeFile(
      photoHeader(), {albums({listRecord("Rome", "5", "6", guid('1'))}),
                      titles({titleRecord("E:\\vb-share\\Photo\\Mac\\Rome\\a.jpg", zeros36(), guid('2'), "1")})}));
  EXPECT_EQ(photos.kind, FavouritesKind::Photos);
  EXPECT_EQ(photos.file.lists.at(0).songs.at(0).songPath, u"Rome\\a.jpg"_s);
  EXPECT_TRUE(photos.file.oddities.isEmpty());
}

TEST(FavouritesReport, ShowsThePhotoAlbumsAndTheirPictures) {
  const QByteArray file = wholeFile(
      photoHeader(),
      {albums({listRecord("Rome", "5", "6", guid('1')), listRecord("", "6", "6", guid('2')),
               listRecord("\xE6\x9D\xB1", "6", "6", guid('3')), listRecord("Caf\xE9", "7", "6", guid('4'))}),
       titles({picture("Rome\\1.jpg", guid('5')), picture("2.jpg", guid('6'))}), titles({}),
       titles({picture("3.jpg", guid('7'))}), titles({})});
  EXPECT_EQ(textOf(favouritesReport(file)),
            u"Photo favourites: 3 albums, 1 separator, 3 pictures\n"
            "Version \"FavoriteAlbums-1.2\", texts in UTF-8 or Windows-1252, written as "
            "{00000000-0000-0000-0000-0000000000AA}\n"
            "\n5      Rome (2 pictures)\n       Rome\\1.jpg\n       2.jpg\n"
            "\n6      (separator)\n"
            "\n6      \u6771 (1 picture)\n       3.jpg\n"
            "\n7      Caf\u00E9 (empty)\n"_s);
}

TEST(FavouritesReport, KnowsThePhotoColourListsByTheirNames) {
  std::vector<QByteArray> records = keyRecords();
  records.push_back(listRecord("Red", "5", "6", guid('1')));
  const QString text = textOf(favouritesReport(
      wholeFile(photoHeader(), {albums(records), titles({}), titles({}), titles({}), titles({}), titles({})})));
  EXPECT_TRUE(text.contains(u"\n1      Red (colour key, empty)\n"_s)) << text.toStdString();
  EXPECT_TRUE(text.contains(u"\n5      Red (empty)\n"_s)) << text.toStdString();
  records.erase(records.begin());
  EXPECT_FALSE(textOf(favouritesReport(wholeFile(photoHeader(),
                                                 {albums(records), titles({}), titles({}), titles({}), titles({})})))
                   .contains(u"colour key"_s));
}

TEST(FavouritesReport, GivesAProgramThePhotoAlbumsAsJson) {
  EXPECT_EQ(jsonOf(favouritesReport(wholeFile(
                photoHeader(),
                {albums({listRecord("Rome", "5", "6", "\x01"), listRecord("", "6", "6", guid('2'))}),
                 titles({titleRecord("E:\\vb-share\\Photo\\Mac\\a.jpg", "\x03", "\x04", "1")}), titles({})}))),
            R"({
    "departures": [
        "a GUID or a CheckSum of \"Rome\" has an odd length"
    ],
    "guid": "{00000000-0000-0000-0000-0000000000AA}",
    "kind": "PhotoFavorites",
    "lists": [
        {
            "colourKey": false,
            "guid": "01",
            "locationId": "6",
            "name": "Rome",
            "playlistId": "5",
            "separator": false,
            "titles": [
                {
                    "checkSum": "03",
                    "guid": "04",
                    "itemType": "1",
                    "path": "a.jpg"
                }
            ]
        },
        {
            "colourKey": false,
            "guid": "32323232323232323232323232323232",
            "locationId": "6",
            "name": "",
            "playlistId": "6",
            "separator": true,
            "titles": [
            ]
        }
    ],
    "readable": true,
    "version": "FavoriteAlbums-1.2"
}
)");
}

// The client reads them as it reads the right ones; the player does not find what they name.
TEST(FavouritesReport, TellsOfPathsThatStandAsNoPlayerLooksForThem) {
  std::vector<QByteArray> records = keyRecords();
  records.push_back(listRecord("Old", "7", "6", guid('o')));
  const FavouritesReport music = favouritesReport(wholeFile(
      musicHeader(),
      {albums(records),
       titles({titleRecord("Gold", zeros36(), guid('1'), "2"),
               titleRecord("E:\\vb-share\\Music\\Mac\\Arrival", zeros36(), guid('2'), "2")}),
       titles({}), titles({}), titles({}),
       titles({titleRecord("a.mp3", zeros36(), guid('3'), "1"), titleRecord("b.mp3", zeros36(), guid('4'), "1"),
               titleRecord("D:\\theirs\\c.mp3", zeros36(), guid('5'), "1")})}));
  EXPECT_EQ(music.file.oddities, (QStringList{u"an album of \"Red\" has the server's folder in front"_s,
                                              u"a title of \"Old\" lacks the server's folder"_s}));
  const FavouritesReport photos =
      favouritesReport(wholeFile(photoHeader(), {albums({listRecord("Rome", "5", "6", guid('1'))}),
                                                 titles({titleRecord("Rome\\a.jpg", zeros36(), guid('2'), "1")})}));
  EXPECT_EQ(photos.file.oddities, QStringList{u"a picture of \"Rome\" lacks the server's folder"_s});
}

TEST(FavouritesReport, TellsOfChunksWhoseLengthsAreLargerThanWhatTheyHold) {
  QByteArray list1 = chunk(albums(keyRecords()));
  const qsizetype stream = list1.size() - 8;
  list1 = le32(300) + le32(static_cast<quint32>(stream) + 3) + list1.mid(8) + "abc";
  const QByteArray body = list1 + chunk(titles({})).repeated(4);
  const FavouritesReport report = favouritesReport(musicHeader() + le32(static_cast<quint32>(body.size())) + body);
  EXPECT_EQ(report.file.lists.size(), 4U);
  EXPECT_EQ(report.file.oddities,
            (QStringList{u"the chunk at byte 76 has the length 300, but %1 bytes of content"_s.arg(
                             albums(keyRecords()).size()),
                         u"the chunk at byte 76 has 3 bytes behind its stream"_s}));
}

TEST(FavouritesReport, TellsOfColourKeysWithOtherNames) {
  std::vector<QByteArray> records = keyRecords();
  records[1] = listRecord("Old", "2", "6", guid('g'));
  const FavouritesReport report =
      favouritesReport(wholeFile(musicHeader(), {albums(records), titles({}), titles({}), titles({}), titles({})}));
  EXPECT_EQ(report.file.oddities, QStringList{u"the colour key Green is named \"Old\""_s});
}

TEST(FavouritesReport, KnowsAVaultbox1FileWhoseTitlesSayThreeFields) {
  QByteArray two = titles({titleOfVaultbox1("E:\\vb-share\\Music\\Mac\\a", zeros36(), guid('2'))});
  two.replace(le32(2) + field('N', zeros36()), le32(3) + field('N', zeros36()));
  const FavouritesReport report =
      favouritesReport(wholeFile(musicHeader(), {albums({listRecord("A", "5", "6", guid('1'))}), two}));
  EXPECT_FALSE(report.hasItemTypes);
  EXPECT_EQ(report.file.lists.at(0).songs.size(), 1U);
}

TEST(FavouritesReport, TellsOfNumbersThatStandTwiceAndOfMissingColourKeys) {
  const QByteArray list = titles({titleRecord("E:\\vb-share\\Music\\Mac\\a", zeros36(), guid('1'), "1")});
  const FavouritesReport report = favouritesReport(
      wholeFile(musicHeader(), {albums({listRecord("A", "7", "6", guid('a')), listRecord("B", "7", "6", guid('b'))}),
                                list, titles({})}));
  EXPECT_EQ(report.file.oddities, (QStringList{u"the PlaylistID \"7\" stands more than once"_s,
                                               u"the colour keys are not the first four lists"_s}));
}
