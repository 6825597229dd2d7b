#include "HandMade.h"
#include "MergeWorkbench.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QByteArray kLimits = "GREEN_ENABLED=0\r\nYELLOW_ENABLED=0\r\nRED_ENABLED=0\r\nBLUE_ENABLED=0\r\n"
                           "GREEN_LIMIT=50\r\nYELLOW_LIMIT=50\r\nRED_LIMIT=50\r\nBLUE_LIMIT=50\r\n";
const QByteArray kOldTitle = "E:\\vb-share\\Music\\Mac\\ABBA\\Gold\\ABBA-Gold-Waterloo.mp3";

// A share whose favourites hold one list "Old" with the number 7, and a limits file.
class MergeTest : public testing::Test {
protected:
  MergeTest() {
    mountShare(files, u"Auralis 5"_s);
    files.put(kLimitsPath, kLimits);
    files.put(kServerFile, wholeFile(musicHeader(), {albums({listRecord("Old", "7", "6", guid('o'))}),
                                                     titles({titleRecord(kOldTitle, zeros36(), guid('t'), "1")})}));
  }
  void dropPartyAndRed() {
    client.limits.enableCFLLimits();
    client.track(u"Party"_s, u"Miles Davis@@@@@Kind of Blue@@@@@Miles Davis-Kind of Blue-So What.mp3"_s);
    client.track(u"Party"_s, u"Björk@@@@@Debut@@@@@Björk-Debut-Human Behaviour.mp3"_s);
    client.track(u"@!!!Red!!!@"_s, u"Coltrane@@@@@Blue Train@@@@@x.mp3"_s, u"Blue_Train"_s);
  }
  QByteArray redLimit() {
    return files.bytes(kLimitsPath).mid(files.bytes(kLimitsPath).indexOf("RED_LIMIT=")).split('\r').first();
  }

  FakeFileSystem files;
  MergeWorkbench client{files};
};

} // namespace

TEST_F(MergeTest, TwoDropsIntoAStoredFileGiveTheseBytes) {
  ASSERT_TRUE(client.dictionary.validateOrvFile());
  EXPECT_EQ(client.settings.text(u"PlaylistID"_s), u"8"_s);
  dropPartyAndRed();
  client.clock.sleeps.clear();
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.clock.sleeps, QList<std::chrono::milliseconds>{std::chrono::seconds(1)}) << "before the delete";

  const QByteArray file = files.bytes(kServerFile);
  const std::vector<QByteArray> contents = contentsOf(file);
  ASSERT_EQ(contents.size(), 7U);
  QList<qsizetype> sizes;
  for (const QByteArray &content : contents) {
    sizes.append(content.size());
  }
  EXPECT_EQ(sizes, (QList<qsizetype>{305, 114, 27, 27, 27, 158, 329}));
  const QByteArray start = QByteArray::fromHex("07000000"
                                               "4e12000000") +
                           "FavoriteAlbums-1.2" + QByteArray::fromHex("4c03000000") + "Red" +
                           QByteArray::fromHex("03000000"
                                               "4e0100000031"
                                               "4e0100000036"
                                               "4e10000000") +
                           guid('r');
  EXPECT_EQ(contents[0].left(start.size()).toHex(), start.toHex());
  EXPECT_EQ(contents[0].indexOf(field('L', "Old")), 213);
  EXPECT_EQ(contents[0].indexOf(field('L', "Party")), 258);

  // Every byte; the GUIDs that were made for the drop are those that stand there, each of its own.
  const QByteArray party = contents[0].right(16);
  const QByteArray blueTrain = contents[1].mid(contents[1].size() - 22, 16);
  const QByteArray human = contents[6].mid(contents[6].size() - 22, 16);
  const QByteArray soWhat = contents[6].mid(165, 16);
  EXPECT_EQ((QSet<QByteArray>{party, blueTrain, human, soWhat}).size(), 4);
  std::vector<QByteArray> lists = keyRecords();
  lists.push_back(listRecord("Old", "7", "6", guid('o')));
  lists.push_back(listRecord("Party", "8", "6", party));
  EXPECT_EQ(contents[0].toHex(), albums(lists).toHex());
  EXPECT_EQ(contents[1].toHex(), titles({titleRecord("Blue Train", zeros36(), blueTrain, "2")}).toHex());
  for (const size_t key : {2U, 3U, 4U}) {
    EXPECT_EQ(contents[key].toHex(), titles({}).toHex());
  }
  EXPECT_EQ(contents[5].toHex(), titles({titleRecord(kOldTitle, zeros36(), guid('t'), "1")}).toHex());
  EXPECT_EQ(
      contents[6].toHex(),
      titles({titleRecord("E:\\vb-share\\Music\\Mac\\Miles Davis\\Kind of Blue\\Miles Davis-Kind of Blue-So What.mp3",
                          zeros36(), soWhat, "1"),
              titleRecord("E:\\vb-share\\Music\\Mac\\Bj\xF6rk\\Debut\\Bj\xF6rk-Debut-Human Behaviour.mp3", zeros36(),
                          human, "1")})
          .toHex());
  EXPECT_EQ(file, wholeFile(musicHeader(file.mid(9, 36)), contents));

  EXPECT_EQ(
      client.shown(),
      (QStringList{
          u"1 Red: Blue Train/2"_s, u"2 Green: "_s, u"3 Yellow: "_s, u"4 Blue: "_s,
          u"7 @~Old@~: ABBA\\Gold\\ABBA-Gold-Waterloo.mp3/1"_s,
          u"8 @~Party@~: Miles Davis\\Kind of Blue\\Miles Davis-Kind of Blue-So What.mp3/1, Björk\\Debut\\Björk-Debut-Human Behaviour.mp3/1"_s}));
  EXPECT_EQ(files.bytes(client.folder + u"NetMusicFavorites.orv"_s), file);
  EXPECT_EQ(client.settings.text(u"PlaylistID"_s), u"10"_s);
  EXPECT_EQ(client.savedCounter(), u"10"_s);
  const FavouriteLists saved = client.dictionaryFile.load();
  ASSERT_EQ(saved.size(), 6U);
  EXPECT_EQ(saved[0].songs.size(), 1U);
  EXPECT_EQ(saved[5].playlistName, u"Party"_s);
  EXPECT_EQ(saved[5].songs.size(), 2U);
  EXPECT_EQ(files.bytes(kLimitsPath), "GREEN_ENABLED=1\r\nYELLOW_ENABLED=1\r\nRED_ENABLED=1\r\nBLUE_ENABLED=1\r\n"
                                      "GREEN_LIMIT=50\r\nYELLOW_LIMIT=50\r\nRED_LIMIT=9\r\nBLUE_LIMIT=50\r\n");
  const QVariantMap copy = client.propertyLists.decode(files.bytes(kColourCopyPath.toString())).toMap();
  EXPECT_EQ(copy.keys(), (QStringList{u"0"_s, u"1"_s, u"2"_s, u"3"_s}));
  EXPECT_EQ(copy[u"0"_s].toMap()[u"Songs"_s].toList(), (QVariantList{QVariantMap{{u"SongPath"_s, u"Blue Train"_s},
                                                                                 {u"ItemType"_s, u"2"_s},
                                                                                 {u"CheckSum"_s, zeros36()},
                                                                                 {u"GUID"_s, blueTrain}}}));
  EXPECT_FALSE(copy[u"1"_s].toMap().contains(u"Songs"_s));
}

TEST_F(MergeTest, ABareNameDroppedAgainIsASecondList) {
  for (int turn = 0; turn < 2; ++turn) {
    client.track(u"Party"_s, u"a.mp3"_s);
    ASSERT_TRUE(client.send());
  }
  EXPECT_EQ(client.shown().mid(5), (QStringList{u"8 @~Party@~: a.mp3/1"_s, u"9 @~Party@~: a.mp3/1"_s}));
}

TEST_F(MergeTest, AFramedNameReplacesItselfInItsPlace) {
  client.track(u"@~Old@~"_s, u"new.mp3"_s);
  client.track(u"Party"_s, u"a.mp3"_s);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().mid(4), (QStringList{u"8 @~Old@~: new.mp3/1"_s, u"9 @~Party@~: a.mp3/1"_s}));
}

// Only lists of this client's location are written without their frames.
TEST_F(MergeTest, WhatIsDroppedBringsItsLocation) {
  std::vector<QByteArray> lists = keyRecords();
  lists[0] = listRecord("Red", "1", "3", guid('r'));
  lists.push_back(listRecord("Old", "7", "3", guid('o')));
  files.put(kServerFile, wholeFile(musicHeader(), {albums(lists), titles({}), titles({}), titles({}), titles({}),
                                                   titles({titleRecord(kOldTitle, zeros36(), guid('t'), "1")})}));
  client.track(u"@~Old@~"_s, u"new.mp3"_s);
  client.track(u"@!!!Red!!!@"_s, u"x.mp3"_s, u"Blue_Train"_s);
  ASSERT_TRUE(client.send());
  const QByteArray list1 = contentsOf(files.bytes(kServerFile)).at(0);
  lists[0] = keyRecords()[0];
  lists[4] = listRecord("Old", "8", "6", list1.right(16));
  EXPECT_EQ(list1.toHex(), albums(lists).toHex());
}

TEST_F(MergeTest, ColourKeyDroppedFirstBurnsANumber) {
  client.track(u"@!!!Red!!!@"_s, u"x.mp3"_s, u"Blue_Train"_s);
  client.track(u"Party"_s, u"a.mp3"_s);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().last(), u"9 @~Party@~: a.mp3/1"_s);
}

TEST_F(MergeTest, ALaterAlbumIsAppendedAndKeepsTheOthers) {
  dropPartyAndRed();
  ASSERT_TRUE(client.send());
  client.track(u"@!!!Red!!!@"_s, u"y.mp3"_s, u"A Love Supreme"_s);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().first(), u"1 Red: Blue Train/2, A Love Supreme/2"_s);
  EXPECT_EQ(redLimit(), "RED_LIMIT=9");
  client.track(u"@!!!Red!!!@"_s, u"z.mp3"_s, u"BLUE TRAIN"_s);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().first(), u"1 Red: Blue Train/2, A Love Supreme/2"_s);
}

TEST_F(MergeTest, WithoutALimitsFileTheSecondAlbumReplacesTheFirst) {
  files.removeFile(kLimitsPath);
  client.track(u"@!!!Red!!!@"_s, u"x.mp3"_s, u"Blue_Train"_s);
  ASSERT_TRUE(client.send());
  client.track(u"@!!!Red!!!@"_s, u"y.mp3"_s, u"A Love Supreme"_s);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().first(), u"1 Red: A Love Supreme/2"_s);
}

TEST_F(MergeTest, TheLimitFollowsTheTitlesOnTheKey) {
  client.limits.enableCFLLimits();
  for (int i = 0; i < 9; ++i) {
    client.track(u"Red"_s, u"%1.mp3"_s.arg(i));
  }
  ASSERT_TRUE(client.send());
  EXPECT_EQ(redLimit(), "RED_LIMIT=10");
  for (int i = 0; i < 150; ++i) {
    client.track(u"Red"_s, u"%1.mp3"_s.arg(i));
  }
  ASSERT_TRUE(client.send());
  EXPECT_EQ(redLimit(), "RED_LIMIT=99");
}

TEST_F(MergeTest, TheTenthAlbumPushesOutTheOldestOnAuralis5) {
  client.limits.enableCFLLimits();
  for (int i = 1; i <= 10; ++i) {
    client.track(u"@!!!Red!!!@"_s, u"%1.mp3"_s.arg(i), u"Album %1"_s.arg(i));
    ASSERT_TRUE(client.send());
  }
  EXPECT_EQ(client.server().front().songs.size(), 9U);
  EXPECT_EQ(client.server().front().songs.front().songPath, u"Album 2"_s);
}

TEST_F(MergeTest, APlaylistWithoutTransferredTracksOnlyUsesANumberUp) {
  client.track(u"Empty"_s, u"a.mp3"_s);
  client.records.first().songTransferFlag = u"N"_s;
  client.track(u"Party"_s, u"b.mp3"_s);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().mid(5), QStringList{u"9 @~Party@~: b.mp3/1"_s});
}

TEST_F(MergeTest, NothingIsWrittenWhileTheShareIsNotThere) {
  const QByteArray before = files.bytes(kServerFile);
  client.connected = false;
  client.track(u"Party"_s, u"a.mp3"_s);
  EXPECT_FALSE(client.send());
  EXPECT_EQ(files.bytes(kServerFile), before);
}

TEST_F(MergeTest, DuplicateNumbersOfAnotherClientLoseNoList) {
  files.put(
      kServerFile,
      wholeFile(musicHeader(), {albums({listRecord("A", "7", "6", guid('a')), listRecord("B", "7", "6", guid('b'))}),
                                titles({titleRecord("a", zeros36(), guid('1'), "1")}),
                                titles({titleRecord("b", zeros36(), guid('2'), "1")})}));
  client.track(u"Party"_s, u"c.mp3"_s);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().mid(4), (QStringList{u"7 @~A@~: a/1"_s, u"8 @~B@~: b/1"_s, u"9 @~Party@~: c.mp3/1"_s}));
}

TEST_F(MergeTest, Vaultbox1HasNoKeysNoTypesAndReplacesByFrame) {
  FakeFileSystem share;
  mountShare(share, u"Vaultbox 1"_s);
  MergeWorkbench vaultbox(share, u"Vaultbox 1"_s);
  vaultbox.track(u"@~Jazz@~"_s, u"a.mp3"_s);
  vaultbox.track(u"@!!!Red!!!@"_s, u"b.mp3"_s, u"Gold"_s);
  ASSERT_TRUE(vaultbox.send());
  vaultbox.track(u"@~Jazz@~"_s, u"c.mp3"_s);
  ASSERT_TRUE(vaultbox.send());
  EXPECT_EQ(vaultbox.shown(), (QStringList{u"3 @~Jazz@~: c.mp3/-"_s, u"2 @~Red@~: Gold/-"_s}));
  EXPECT_FALSE(share.exists(kColourCopyPath.toString()));
}

TEST_F(MergeTest, ADeathAtEveryOperationLeavesTheOldOrTheNewFileAndTheNextRunARightOne) {
  for (int at = 1;; ++at) {
    FakeFileSystem disk;
    mountShare(disk, u"Auralis 5"_s);
    disk.put(kServerFile, wholeFile(musicHeader(), {albums({listRecord("Old", "7", "6", guid('o'))}),
                                                    titles({titleRecord(kOldTitle, zeros36(), guid('t'), "1")})}));
    bool died = false;
    {
      MergeWorkbench first(disk);
      disk.dieAt(at);
      first.track(u"@~Party@~"_s, u"a.mp3"_s);
      try {
        (void)first.send();
      } catch (const Died &) {
        died = true;
      }
    }
    disk.revive();
    MergeWorkbench next(disk);
    next.rewrite.recoverAtConnect();
    ASSERT_TRUE(next.dictionary.validateOrvFile()) << "operation " << at;
    next.track(u"@~Party@~"_s, u"a.mp3"_s);
    ASSERT_TRUE(next.send()) << "operation " << at;
    const QStringList shown = next.shown();
    ASSERT_EQ(shown.filter(u"@~Old@~: ABBA\\Gold"_s).size(), 1) << "operation " << at;
    ASSERT_EQ(shown.filter(u"@~Party@~: a.mp3/1"_s).size(), 1) << "operation " << at;
    ASSERT_EQ(shown.size(), 6) << "operation " << at;
    if (!died) {
      EXPECT_GT(at, 20);
      break;
    }
  }
}

} // namespace sonorel::test
