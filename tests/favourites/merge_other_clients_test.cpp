// The merge while others write the same share, and when a write fails: no list is lost, and the answer is honest.
#include "HandMade.h"
#include "MergeWorkbench.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

QByteArray fileWith(const QByteArray &name, const QByteArray &id) {
  std::vector<QByteArray> records = keyRecords();
  records.push_back(listRecord(name, id, "6", guid('f')));
  return wholeFile(musicHeader(), {albums(records), titles({}), titles({}), titles({}), titles({}),
                                   titles({titleRecord("f", zeros36(), guid('t'), "1")})});
}

class MergeOtherClientsTest : public testing::Test {
protected:
  MergeOtherClientsTest() {
    mountShare(files, u"Auralis 5"_s);
    files.put(kServerFile, fileWith("Old", "7"));
  }
  void dropParty(MergeWorkbench &at) { at.track(u"Party"_s, u"a.mp3"_s); }

  FakeFileSystem files;
  MergeWorkbench client{files};
};

} // namespace

TEST_F(MergeOtherClientsTest, AListThatCameDuringThePauseIsMergedToo) {
  bool changed = false;
  client.clock.onSleep = [&] {
    if (!std::exchange(changed, true)) {
      files.put(kServerFile, fileWith("Theirs", "8"), 2000);
    }
  };
  dropParty(client);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().mid(4), (QStringList{u"8 @~Theirs@~: f/1"_s, u"9 @~Party@~: a.mp3/1"_s}));
  EXPECT_EQ(client.settings.text(u"PlaylistID"_s), u"10"_s);
}

TEST_F(MergeOtherClientsTest, AFileThatNeverStandsStillIsLeftAloneAfterThreeLooks) {
  int time = 2000;
  client.clock.onSleep = [&] { files.put(kServerFile, fileWith("Theirs", "8"), ++time); };
  dropParty(client);
  EXPECT_FALSE(client.send());
  EXPECT_EQ(time, 2003);
  EXPECT_EQ(files.bytes(kServerFile), fileWith("Theirs", "8"));
  EXPECT_TRUE(client.desktop.logged(u"Exception in ---> <AppController><addPlaylistToDictionary> "_s));
  EXPECT_FALSE(files.exists(kColourCopyPath.toString()));
  EXPECT_FALSE(files.exists(kServerLock));
}

TEST_F(MergeOtherClientsTest, TwoClientsInTurnKeepEachOthersLists) {
  MergeWorkbench other(files, u"Auralis 5"_s, u"/Other"_s, 1000);
  for (int turn = 1; turn <= 3; ++turn) {
    client.track(u"@~A%1@~"_s.arg(turn), u"a.mp3"_s);
    ASSERT_TRUE(client.send());
    other.track(u"@~B%1@~"_s.arg(turn), u"b.mp3"_s);
    ASSERT_TRUE(other.send());
    ASSERT_TRUE(client.dictionary.validateOrvFile());
  }
  EXPECT_EQ(client.shown().mid(4),
            (QStringList{u"7 @~Old@~: f/1"_s, u"8 @~A1@~: a.mp3/1"_s, u"9 @~B1@~: b.mp3/1"_s, u"10 @~A2@~: a.mp3/1"_s,
                         u"11 @~B2@~: b.mp3/1"_s, u"12 @~A3@~: a.mp3/1"_s, u"13 @~B3@~: b.mp3/1"_s}));
}

TEST_F(MergeOtherClientsTest, AFailedWritePutsTheOldFileBackAndIsReported) {
  const QByteArray before = files.bytes(kServerFile);
  dropParty(client);
  bool failed = false;
  files.beforeOperation = [&](int) {
    const QStringList log = files.log();
    if (!failed && !log.isEmpty() && log.last() == u"removeFile "_s + kServerFile) {
      failed = true;
      files.failAt(1, FailureKind::DiskFull);
    }
  };
  EXPECT_FALSE(client.send());
  EXPECT_EQ(files.bytes(kServerFile), before);
  EXPECT_FALSE(files.exists(kColourCopyPath.toString()));
  EXPECT_TRUE(client.desktop.logged(u"Exception in ---> <Parser><makeOrvFileForGivenDictionary> "
                                    "NetMusicFavorites.orv could not be written: "_s));
  ASSERT_TRUE(client.metaData.sendMetaDataForPlaylist(false)); // the lists were kept
  EXPECT_EQ(client.shown().mid(4), (QStringList{u"7 @~Old@~: f/1"_s, u"8 @~Party@~: a.mp3/1"_s}));
}

TEST_F(MergeOtherClientsTest, AShareThatDoesNotAnswerIsNotTouched) {
  const QByteArray before = files.bytes(kServerFile);
  dropParty(client);
  files.setUnknown(kMountPoint.toString(), true);
  EXPECT_FALSE(client.send());
  files.setUnknown(kMountPoint.toString(), false);
  EXPECT_EQ(files.bytes(kServerFile), before);
}

TEST_F(MergeOtherClientsTest, AFileOfAnotherModelIsLeftAlone) {
  const QByteArray before =
      wholeFile(musicHeader(), {albums({listRecord("Old", "7", "6", guid('o'))}),
                                titles({titleOfVaultbox1("E:\\vb-share\\Music\\Mac\\a", zeros36(), guid('t'))})});
  files.put(kServerFile, before);
  dropParty(client);
  EXPECT_FALSE(client.send());
  EXPECT_EQ(files.bytes(kServerFile), before);
  EXPECT_TRUE(client.desktop.logged(
      u"Exception in ---> <AppController><addPlaylistToDictionary> the server's favourites do not fit the product \"Auralis 5\""_s));
}

TEST_F(MergeOtherClientsTest, WithoutAFileTheKeysAndTheDroppedListsAreWritten) {
  files.erase(kServerFile);
  dropParty(client);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown(),
            (QStringList{u"1 Red: "_s, u"2 Green: "_s, u"3 Yellow: "_s, u"4 Blue: "_s, u"5 @~Party@~: a.mp3/1"_s}));
}

TEST_F(MergeOtherClientsTest, WhatOthersWroteStaysByteForByte) {
  std::vector<QByteArray> records = keyRecords();
  records.push_back(listRecord("A@~B", "7", "3", guid('a')));
  records.push_back(listRecord("caf\xE9 \x81", "8", "", guid('b')));
  const std::vector<QByteArray> lists{
      titles({}),
      titles({}),
      titles({}),
      titles({}),
      titles({titleRecord("E:\\vb-share\\Music\\Other\\a.mp3", QByteArray(36, 'c'), guid('1'), "3")}),
      titles({titleRecord("E:\\vb-share\\Music\\Mac\\x\xDF.mp3", "short", "odd", "")})};
  std::vector<QByteArray> contents{albums(records)};
  contents.insert(contents.end(), lists.begin(), lists.end());
  files.put(kServerFile, wholeFile(musicHeader(), contents));
  dropParty(client);
  ASSERT_TRUE(client.send());
  const std::vector<QByteArray> written = contentsOf(files.bytes(kServerFile));
  ASSERT_EQ(written.size(), 8U);
  records.push_back(listRecord("Party", "9", "6", client.server().back().guid));
  EXPECT_EQ(written[0].toHex(), albums(records).toHex());
  for (size_t i = 0; i < lists.size(); ++i) {
    EXPECT_EQ(written[i + 1].toHex(), lists[i].toHex()) << "list " << i;
  }
}

TEST_F(MergeOtherClientsTest, ABareNameThatLooksLikeAListInAKeysPlaceIsAppended) {
  std::vector<QByteArray> records = keyRecords();
  records[3] = listRecord("Party", "4", "6", guid('p'));
  files.put(kServerFile, wholeFile(musicHeader(), {albums(records), titles({}), titles({}), titles({}),
                                                   titles({titleRecord("p", zeros36(), guid('t'), "1")})}));
  dropParty(client);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().mid(3), (QStringList{u"4 Party: p/1"_s, u"5 @~Party@~: a.mp3/1"_s}));
}

} // namespace sonorel::test
