#include "MergeWorkbench.h"

#include "favourites/AlbumNames.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

class PlaylistMetaDataTest : public testing::Test {
protected:
  PlaylistMetaDataTest() { mountShare(files, u"Auralis 5"_s); }

  FakeFileSystem files;
  MergeWorkbench client{files};
};

} // namespace

TEST_F(PlaylistMetaDataTest, LooseSongsOfOneAlbumBecomeAListInTheFavourites) {
  client.track(u"N0PL@YL!ST"_s, u"1.mp3"_s, u"Gold"_s);
  client.track(u"N0PL@YL!ST"_s, u"2.mp3"_s, u"Arrival"_s);
  client.track(u"Party"_s, u"3.mp3"_s);
  client.track(u"N0PL@YL!ST"_s, u"4.mp3"_s, u"Gold"_s);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().mid(4), (QStringList{u"5 @~Party@~: 3.mp3/1"_s, u"6 @~Gold@~: 1.mp3/1, 4.mp3/1"_s}));
}

TEST_F(PlaylistMetaDataTest, TheCounterMovesOnByEveryListWhenTheShareIsGone) {
  client.settings.set(u"PlaylistID"_s, u"41"_s);
  client.connected = false;
  client.track(u"Party"_s, u"a.mp3"_s);
  client.track(u"@!!!Red!!!@"_s, u"b.mp3"_s, u"Gold"_s);
  EXPECT_FALSE(client.send());
  EXPECT_EQ(client.settings.text(u"PlaylistID"_s), u"43"_s);
  EXPECT_EQ(client.savedCounter(), u"43"_s);
  EXPECT_FALSE(files.exists(kServerFile));
}

TEST_F(PlaylistMetaDataTest, TheCounterBeginsAt1AndReadsLeadingDigits) {
  client.connected = false;
  const auto counterAfter = [this](const QVariant &before) {
    client.settings.set(u"PlaylistID"_s, before);
    client.track(u"Party"_s, u"a.mp3"_s);
    EXPECT_FALSE(client.send());
    return client.settings.text(u"PlaylistID"_s);
  };
  client.track(u"Party"_s, u"a.mp3"_s);
  EXPECT_FALSE(client.send());
  EXPECT_EQ(client.settings.text(u"PlaylistID"_s), u"2"_s);
  EXPECT_EQ(counterAfter(u"12x"_s), u"13"_s);
  EXPECT_EQ(counterAfter(u"x"_s), u"1"_s);
  EXPECT_EQ(counterAfter(qlonglong(30)), u"31"_s);
}

TEST_F(PlaylistMetaDataTest, ListsThatWereNotWrittenLeaveTheBoardAndComeBeforeTheNextTransfers) {
  client.connected = false;
  client.track(u"N0PL@YL!ST"_s, u"1.mp3"_s, u"Gold"_s);
  client.track(u"N0PL@YL!ST"_s, u"2.mp3"_s, u"Gold"_s);
  EXPECT_FALSE(client.metaData.hasUnwritten(false));
  EXPECT_FALSE(client.send());
  EXPECT_TRUE(client.board.records(false).isEmpty());
  EXPECT_TRUE(client.metaData.hasUnwritten(false));
  client.connected = true;
  client.albums.clear(); // the dropped files may be gone by then
  client.track(u"Party"_s, u"3.mp3"_s);
  EXPECT_TRUE(client.send());
  EXPECT_EQ(client.shown().mid(4), (QStringList{u"5 @~Gold@~: 1.mp3/1, 2.mp3/1"_s, u"6 @~Party@~: 3.mp3/1"_s}));
  EXPECT_FALSE(client.metaData.hasUnwritten(false));
}

TEST_F(PlaylistMetaDataTest, KeptListsAreTriedByATransferWithoutPlaylistsAndWrittenOnce) {
  client.connected = false;
  client.track(u"Party"_s, u"a.mp3"_s);
  EXPECT_FALSE(client.send());
  client.connected = true;
  EXPECT_TRUE(client.metaData.sendMetaDataForPlaylist(false));
  EXPECT_TRUE(client.metaData.sendMetaDataForPlaylist(false));
  EXPECT_EQ(client.shown().mid(4), QStringList{u"5 @~Party@~: a.mp3/1"_s});
}

TEST_F(PlaylistMetaDataTest, KeptListsWaitForTheirOwnProduct) {
  const auto productIs = [this](const QString &address) { client.session.setHardwareAddress(address); };
  client.connected = false;
  client.track(u"Party"_s, u"a.mp3"_s);
  EXPECT_FALSE(client.send());
  productIs(u"00-00-00-00-00-0B"_s);
  client.connected = true;
  EXPECT_FALSE(client.metaData.hasUnwritten(false));
  client.track(u"Other"_s, u"b.mp3"_s);
  EXPECT_TRUE(client.send());
  EXPECT_EQ(client.shown().mid(4), QStringList{u"5 @~Other@~: b.mp3/1"_s});
  files.erase(kServerFile); // the share of the first product
  productIs(u"00-11-22-33-44-55"_s);
  EXPECT_TRUE(client.metaData.retryUnwritten({}));
  EXPECT_EQ(client.shown().mid(4), QStringList{u"5 @~Party@~: a.mp3/1"_s});
}

TEST_F(PlaylistMetaDataTest, WhatStillCannotBeWrittenIsKeptInItsOrder) {
  files.failPath(kServerFile, FailureKind::Unknown);
  client.track(u"First"_s, u"1.mp3"_s);
  EXPECT_FALSE(client.send());
  client.track(u"Second"_s, u"2.mp3"_s);
  EXPECT_FALSE(client.send());
  EXPECT_FALSE(client.metaData.retryUnwritten({}));
  files.clearFailures();
  EXPECT_TRUE(client.metaData.retryUnwritten({}));
  EXPECT_EQ(client.shown().mid(4), (QStringList{u"5 @~First@~: 1.mp3/1"_s, u"6 @~Second@~: 2.mp3/1"_s}));
}

// The share goes away between the delete and the write: the next connection writes what was to be written, and the
// kept lists are there already.
TEST_F(PlaylistMetaDataTest, WhatTheRecoveryWroteIsNotWrittenTwice) {
  client.track(u"First"_s, u"1.mp3"_s);
  ASSERT_TRUE(client.send());
  files.clearLog();
  files.beforeOperation = [this](int) {
    if (files.log().contains(u"removeFile "_s + kServerFile)) {
      files.setUnknown(kMountPoint.toString(), true);
    }
  };
  client.track(u"Party"_s, u"a.mp3"_s);
  client.track(u"@!!!Red!!!@"_s, u"b.mp3"_s, u"Gold"_s);
  EXPECT_FALSE(client.send());
  files.beforeOperation = nullptr;
  files.setUnknown(kMountPoint.toString(), false);
  ASSERT_FALSE(files.exists(kServerFile));
  client.rewrite.recoverAtConnect();
  const QStringList recovered = client.shown();
  EXPECT_EQ(recovered.at(0), u"1 Red: Gold/2"_s);
  EXPECT_EQ(recovered.mid(4), (QStringList{u"5 @~First@~: 1.mp3/1"_s, u"6 @~Party@~: a.mp3/1"_s}));
  EXPECT_TRUE(client.metaData.retryUnwritten({}));
  EXPECT_EQ(client.shown(), recovered);
  EXPECT_FALSE(client.metaData.hasUnwritten(false));
}

TEST_F(PlaylistMetaDataTest, ALostShareIsNoSecondFailureOfWhatIsKept) {
  client.connected = false;
  client.track(u"Party"_s, u"a.mp3"_s);
  EXPECT_FALSE(client.send());
  EXPECT_TRUE(client.metaData.sendMetaDataForPlaylist(false)); // nothing of this transfer was lost
  EXPECT_TRUE(client.metaData.hasUnwritten(false));
}

TEST_F(PlaylistMetaDataTest, NothingTransferredIsNothingUnwrittenWhenTheShareIsGone) {
  client.connected = false;
  client.track(u"Party"_s, u"a.mp3"_s);
  client.records.first().songTransferFlag = u"N"_s;
  EXPECT_TRUE(client.send());
}

TEST_F(PlaylistMetaDataTest, SettingsThatCannotBeSavedCostNoList) {
  files.failPath(client.folder + u"MacClientProperty"_s, FailureKind::DiskFull);
  client.track(u"Party"_s, u"a.mp3"_s);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().mid(4), QStringList{u"5 @~Party@~: a.mp3/1"_s});
  EXPECT_TRUE(client.desktop.logged(u"The settings could not be written: "_s));
}

TEST_F(PlaylistMetaDataTest, AMainDictionaryThatCannotBeWrittenCostsNoList) {
  files.failPath(client.folder + u"mainDict.xml"_s, FailureKind::DiskFull);
  client.track(u"Party"_s, u"a.mp3"_s);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(client.shown().mid(4), QStringList{u"5 @~Party@~: a.mp3/1"_s});
  EXPECT_TRUE(client.desktop.logged(u"The main dictionary could not be written: "_s));
}

TEST_F(PlaylistMetaDataTest, AnExceptionIsLoggedAndNothingThrown) {
  PlaylistMetaData failing(client.board, client.merge, client.photoFavourites, client.settings, client.session,
                           client.identifiers, client.desktop,
                           {client.files, client.propertyLists, client.desktop, u"/Client/Backup"_s},
                           {[] { return true; }, [](const QString &) -> QString { throw Failure(u"no tags"_s); },
                            [] { return std::stop_token(); }});
  client.track(u"@!!!Red!!!@"_s, u"1.mp3"_s);
  client.board.replaceRecords(false, client.records);
  EXPECT_FALSE(failing.sendMetaDataForPlaylist(false));
  EXPECT_EQ(client.desktop.lines.last(), u"Exception in ---> <AppController><sendMetaDataForPlaylist> no tags"_s);
  EXPECT_EQ(client.board.records(false), client.records);
}

TEST(AlbumNames, GivesTheAlbumAndLogsAttributesThatCannotBeRead) {
  FakeDesktop desktop;
  TrackTags tagged;
  tagged.album = u"Gold"_s;
  const AlbumNames names(
      [&](const QString &path) -> std::optional<TrackTags> {
        return path == u"/tagged" ? std::optional(tagged)
               : path == u"/bare" ? std::optional(TrackTags())
                                  : std::nullopt;
      },
      desktop);
  EXPECT_EQ(names.albumOf(u"/tagged"_s), u"Gold"_s);
  EXPECT_EQ(names.albumOf(u"/bare"_s), QString());
  EXPECT_TRUE(desktop.lines.isEmpty());
  EXPECT_EQ(names.albumOf(u"/gone"_s), QString());
  EXPECT_EQ(desktop.lines, QStringList{u"ref is null"_s});
}

} // namespace sonorel::test
