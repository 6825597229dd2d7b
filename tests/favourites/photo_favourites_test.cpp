// The albums of a transfer on their way into the server's photo favourites: what is added, what is kept, and what is
// told when it fails.
#include "HandMade.h"
#include "MergeWorkbench.h"
#include "favourites/EmptyPhotoFavourites.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

class PhotoFavouritesTest : public testing::Test {
protected:
  PhotoFavouritesTest() {
    mountShare(files, u"Auracore 5"_s);
    client.settings.set(u"PlaylistID"_s, u"7"_s);
  }
  void drop(MergeWorkbench &at, const QString &album, const QString &picture) {
    at.pictureOf(album, u"/p/"_s + picture);
    at.endAlbum();
  }

  FakeFileSystem files;
  MergeWorkbench client{files, u"Auracore 5"_s};
};

const QByteArray kEmpty = emptyPhotoFavourites();

} // namespace

TEST_F(PhotoFavouritesTest, ANewFileStandsOnTheShareAndInTheClientsFolder) {
  files.put(kServerPhotoFile, kEmpty);
  drop(client, u"Rome"_s, u"1.jpg"_s);
  drop(client, u"Oslo"_s, u"2.jpg"_s);
  ASSERT_TRUE(client.sendPictures());
  const QByteArray expected = wholeFile(
      photoHeader(files.bytes(kServerPhotoFile).mid(9, 36)),
      {albums({listRecord("Rome", "7", "6", countedGuid(1)), listRecord("", "8", "6", countedGuid(2)),
               listRecord("Oslo", "8", "6", countedGuid(3))}),
       titles({picture("p\\1.jpg", countedGuid(4))}), titles({}), titles({picture("p\\2.jpg", countedGuid(5))})});
  EXPECT_EQ(contentsOf(files.bytes(kServerPhotoFile), 73), contentsOf(expected, 73));
  EXPECT_EQ(files.bytes(kServerPhotoFile).left(69), expected.left(69));
  EXPECT_EQ(files.bytes(u"/Client/PhotoFavorites.orv"_s), files.bytes(kServerPhotoFile));
  EXPECT_EQ(client.settings.text(u"PlaylistID"_s), u"9"_s);
  EXPECT_EQ(files.bytes(u"/Client/Backup/_00-11-22-33-44-55/PhotoFavorites.orv.previous"_s), kEmpty);
  EXPECT_FALSE(files.exists(kServerLock));
  EXPECT_FALSE(files.exists(kServerFile)) << "the music file is not touched";
  EXPECT_TRUE(client.clock.sleeps.isEmpty());
}

TEST_F(PhotoFavouritesTest, EveryWayOfHoldingNoAlbumBeginsANewFile) {
  const QByteArray noAlbums = wholeFile(photoHeader(), {albums({}, "1.3")});
  for (const QByteArray &before : {QByteArray(), photoHeader(), kEmpty, noAlbums}) {
    files.put(kServerPhotoFile, before);
    client.settings.set(u"PlaylistID"_s, u"7"_s);
    drop(client, u"Rome"_s, u"1.jpg"_s);
    EXPECT_TRUE(client.sendPictures());
    EXPECT_EQ(client.shownPhotos(), QStringList{u"7 Rome: p\\1.jpg"_s});
  }
  files.erase(kServerPhotoFile);
  drop(client, u"Rome"_s, u"1.jpg"_s);
  EXPECT_TRUE(client.sendPictures());
  EXPECT_EQ(client.shownPhotos(), QStringList{u"8 Rome: p\\1.jpg"_s});
}

TEST_F(PhotoFavouritesTest, EachTransferAddsItsAlbumsBehindTheStoredOnes) {
  drop(client, u"Rome"_s, u"1.jpg"_s);
  ASSERT_TRUE(client.sendPictures());
  const auto before = contentsOf(files.bytes(kServerPhotoFile), 73);
  drop(client, u"Rome"_s, u"2.jpg"_s);
  drop(client, u"Red"_s, u"3.jpg"_s);
  ASSERT_TRUE(client.sendPictures());
  EXPECT_EQ(client.shownPhotos(),
            (QStringList{u"7 Rome: p\\1.jpg"_s, u"8 Rome: p\\2.jpg"_s, u"9 : "_s, u"9 Red: p\\3.jpg"_s}));
  EXPECT_EQ(contentsOf(files.bytes(kServerPhotoFile), 73).at(1), before.at(1));
}

TEST_F(PhotoFavouritesTest, EveryTransferMakesAHeaderOfItsOwnAndSavesTheCounter) {
  drop(client, u"Rome"_s, u"1.jpg"_s);
  ASSERT_TRUE(client.sendPictures());
  EXPECT_EQ(client.savedCounter(), u"8"_s);
  const QByteArray first = files.bytes(kServerPhotoFile).mid(9, 36);
  drop(client, u"Oslo"_s, u"2.jpg"_s);
  ASSERT_TRUE(client.sendPictures());
  EXPECT_NE(files.bytes(kServerPhotoFile).mid(9, 36), first);
  EXPECT_EQ(client.savedCounter(), u"9"_s);
}

TEST_F(PhotoFavouritesTest, ADamagedListOfListsCostsTheFileButNotTheBackup) {
  QByteArray damaged = wholeFile(photoHeader(), {albums({listRecord("Old", "5", "6", guid('o'))}), titles({})});
  damaged[90] = static_cast<char>(damaged.at(90) ^ 0x55);
  files.put(kServerPhotoFile, damaged);
  drop(client, u"Rome"_s, u"1.jpg"_s);
  EXPECT_TRUE(client.sendPictures());
  EXPECT_EQ(client.shownPhotos(), QStringList{u"7 Rome: p\\1.jpg"_s});
  EXPECT_EQ(files.bytes(u"/Client/Backup/_00-11-22-33-44-55/PhotoFavorites.orv.previous"_s), damaged);
  EXPECT_TRUE(client.desktop.logged(u"PhotoFavorites.orv: the list of lists cannot be read"_s));
}

TEST_F(PhotoFavouritesTest, AFileOfAnotherModelIsLeftAlone) {
  const QByteArray before =
      wholeFile(photoHeader(), {albums({listRecord("Old", "5", "6", guid('o'))}),
                                titles({titleOfVaultbox1("E:\\vb-share\\Photo\\Mac\\a", zeros36(), guid('t'))})});
  files.put(kServerPhotoFile, before);
  drop(client, u"Rome"_s, u"1.jpg"_s);
  EXPECT_FALSE(client.sendPictures());
  EXPECT_EQ(files.bytes(kServerPhotoFile), before);
  EXPECT_TRUE(
      client.desktop.logged(u"Exception in ---> <AppController><makeList1> the server's favourites do not fit "
                            "the product \"Auracore 5\""_s));
}

// Before the first validation the counter stands at 1, as it is shipped.
TEST_F(PhotoFavouritesTest, TheNumbersOfTheColourKeysAreNoAlbumsNumbers) {
  const auto numbersAfter = [this](const QString &counter, const QString &product) {
    files.erase(kServerPhotoFile);
    client.session.setDeviceName(product);
    client.settings.set(u"PlaylistID"_s, counter);
    client.pictureOf(u"Rome"_s, u"/1.jpg"_s);
    client.endAlbum();
    client.pictureOf(u"Oslo"_s, u"/2.jpg"_s);
    EXPECT_TRUE(client.sendPictures());
    return client.shownPhotos().join(u"; "_s) + u" then "_s + client.settings.text(u"PlaylistID"_s);
  };
  EXPECT_EQ(numbersAfter(u"1"_s, u"Auracore 5"_s), u"5 Rome: 1.jpg; 6 : ; 6 Oslo: 2.jpg then 7"_s);
  EXPECT_EQ(numbersAfter(u"5"_s, u"Auralis 5"_s), u"5 Rome: 1.jpg; 6 : ; 6 Oslo: 2.jpg then 7"_s);
  EXPECT_EQ(numbersAfter(u"9"_s, u"Auralis 5"_s), u"9 Rome: 1.jpg; 10 : ; 10 Oslo: 2.jpg then 11"_s);
  EXPECT_EQ(numbersAfter(u"1"_s, u"Vaultbox 1"_s), u"1 Rome: 1.jpg; 2 : ; 2 Oslo: 2.jpg then 3"_s);
}

TEST_F(PhotoFavouritesTest, OnlyEndsOfAlbumsWriteNothing) {
  client.endAlbum();
  EXPECT_TRUE(client.sendPictures());
  EXPECT_FALSE(files.exists(kServerPhotoFile));
  EXPECT_EQ(client.settings.text(u"PlaylistID"_s), u"7"_s);
  EXPECT_TRUE(client.metaData.sendMetaDataForPlaylist(true)) << "no record at all";
}

TEST_F(PhotoFavouritesTest, AShareThatIsGoneKeepsTheAlbumsForTheNextTime) {
  files.put(kServerPhotoFile, kEmpty);
  client.connected = false;
  drop(client, u"Rome"_s, u"1.jpg"_s);
  EXPECT_FALSE(client.sendPictures());
  EXPECT_TRUE(client.board.records(true).isEmpty());
  EXPECT_TRUE(client.metaData.hasUnwritten(true));
  EXPECT_FALSE(client.metaData.hasUnwritten(false));
  EXPECT_TRUE(client.metaData.retryUnwritten({})) << "still gone: no second failure";
  client.connected = true;
  drop(client, u"Oslo"_s, u"2.jpg"_s);
  EXPECT_TRUE(client.sendPictures());
  EXPECT_EQ(client.shownPhotos(), (QStringList{u"7 Rome: p\\1.jpg"_s, u"8 Oslo: p\\2.jpg"_s}));
  EXPECT_FALSE(client.metaData.hasUnwritten(true));
}

TEST_F(PhotoFavouritesTest, AShareThatDoesNotAnswerIsNotTakenForAnEmptyOne) {
  drop(client, u"Old"_s, u"0.jpg"_s);
  ASSERT_TRUE(client.sendPictures());
  const QByteArray before = files.bytes(kServerPhotoFile);
  files.setUnknown(kMountPoint.toString(), true);
  drop(client, u"Rome"_s, u"1.jpg"_s);
  EXPECT_FALSE(client.sendPictures());
  files.setUnknown(kMountPoint.toString(), false);
  EXPECT_EQ(files.bytes(kServerPhotoFile), before);
  EXPECT_TRUE(client.metaData.retryUnwritten({}));
  EXPECT_EQ(client.shownPhotos(), (QStringList{u"7 Old: p\\0.jpg"_s, u"8 Rome: p\\1.jpg"_s}));
}

TEST_F(PhotoFavouritesTest, PicturesThatDidNotArriveAreNoLossWhenTheShareIsGone) {
  client.connected = false;
  client.pictureOf(u"Rome"_s, u"/p/1.jpg"_s);
  client.pictures.first().songTransferFlag = u"N"_s;
  EXPECT_TRUE(client.sendPictures());
  EXPECT_FALSE(client.metaData.hasUnwritten(true));
}

TEST_F(PhotoFavouritesTest, AnAlbumWhosePicturesDidNotArriveIsWrittenEmpty) {
  client.pictureOf(u"Rome"_s, u"/p/1.jpg"_s);
  client.pictures.first().songTransferFlag = u"N"_s;
  EXPECT_TRUE(client.sendPictures());
  EXPECT_EQ(client.shownPhotos(), QStringList{u"7 Rome: "_s});
}

TEST_F(PhotoFavouritesTest, AFailedWritePutsTheOldFileBackAndTheAlbumsAreTriedAgain) {
  drop(client, u"Old"_s, u"0.jpg"_s);
  ASSERT_TRUE(client.sendPictures());
  const QByteArray before = files.bytes(kServerPhotoFile);
  files.clearLog();
  bool failed = false;
  files.beforeOperation = [&](int) {
    const QStringList log = files.log();
    if (!failed && !log.isEmpty() && log.last() == u"removeFile "_s + kServerPhotoFile) {
      failed = true;
      files.failAt(1, FailureKind::DiskFull);
    }
  };
  drop(client, u"Rome"_s, u"1.jpg"_s);
  EXPECT_FALSE(client.sendPictures());
  files.beforeOperation = nullptr;
  ASSERT_TRUE(failed);
  EXPECT_EQ(files.bytes(kServerPhotoFile), before);
  EXPECT_TRUE(client.desktop.logged(u"Exception in ---> <AppController><makeList1> PhotoFavorites.orv could not be "
                                    "written: "_s));
  EXPECT_TRUE(client.metaData.retryUnwritten({}));
  EXPECT_EQ(client.shownPhotos(), (QStringList{u"7 Old: p\\0.jpg"_s, u"8 Rome: p\\1.jpg"_s}));
}

TEST_F(PhotoFavouritesTest, WhatTheRecoveryWroteIsNotWrittenTwice) {
  std::vector<QByteArray> records = keyRecords();
  records[0] = listRecord("Red", "31", "6", guid('r'));
  files.put(kServerPhotoFile,
            wholeFile(photoHeader(), {albums(records), titles({}), titles({}), titles({}), titles({})}));
  files.beforeOperation = [this](int) {
    if (files.log().contains(u"removeFile "_s + kServerPhotoFile)) {
      files.setUnknown(kMountPoint.toString(), true);
    }
  };
  drop(client, u"Red"_s, u"1.jpg"_s);
  drop(client, u"Rome"_s, u"2.jpg"_s);
  EXPECT_FALSE(client.sendPictures());
  files.beforeOperation = nullptr;
  files.setUnknown(kMountPoint.toString(), false);
  ASSERT_FALSE(files.exists(kServerPhotoFile));
  client.rewrite.recoverAtConnect();
  const QStringList recovered = client.shownPhotos();
  EXPECT_EQ(recovered, (QStringList{u"31 Red: p\\1.jpg"_s, u"2 Green: "_s, u"3 Yellow: "_s, u"4 Blue: "_s, u"8 : "_s,
                                    u"8 Rome: p\\2.jpg"_s}));
  EXPECT_TRUE(client.metaData.retryUnwritten({}));
  EXPECT_EQ(client.shownPhotos(), recovered);
  EXPECT_FALSE(client.metaData.hasUnwritten(true));
}

TEST_F(PhotoFavouritesTest, AlbumsWaitForTheirOwnProduct) {
  client.connected = false;
  drop(client, u"Rome"_s, u"1.jpg"_s);
  EXPECT_FALSE(client.sendPictures());
  client.connected = true;
  client.session.setHardwareAddress(u"00-00-00-00-00-0B"_s);
  EXPECT_FALSE(client.metaData.hasUnwritten(true));
  drop(client, u"Oslo"_s, u"2.jpg"_s);
  EXPECT_TRUE(client.sendPictures());
  EXPECT_EQ(client.shownPhotos(), QStringList{u"8 Oslo: p\\2.jpg"_s});
  files.erase(kServerPhotoFile); // the share of the first product
  client.session.setHardwareAddress(u"00-11-22-33-44-55"_s);
  EXPECT_TRUE(client.metaData.retryUnwritten({}));
  EXPECT_EQ(client.shownPhotos(), QStringList{u"7 Rome: p\\1.jpg"_s});
}

TEST_F(PhotoFavouritesTest, TwoClientsInTurnKeepEachOthersAlbums) {
  MergeWorkbench other(files, u"Auracore 5"_s, u"/Other"_s, 1000);
  other.settings.set(u"PlaylistID"_s, u"7"_s);
  for (int turn = 1; turn <= 2; ++turn) {
    drop(client, u"A%1"_s.arg(turn), u"a.jpg"_s);
    ASSERT_TRUE(client.sendPictures());
    drop(other, u"B%1"_s.arg(turn), u"b.jpg"_s);
    ASSERT_TRUE(other.sendPictures());
  }
  EXPECT_EQ(client.shownPhotos(),
            (QStringList{u"7 A1: p\\a.jpg"_s, u"7 B1: p\\b.jpg"_s, u"8 A2: p\\a.jpg"_s, u"8 B2: p\\b.jpg"_s}));
}

TEST_F(PhotoFavouritesTest, AFileThatChangedSinceTheLookIsLookedAtAgain) {
  drop(client, u"Old"_s, u"0.jpg"_s);
  ASSERT_TRUE(client.sendPictures());
  bool changed = false;
  files.beforeOperation = [&](int) {
    if (!changed && files.exists(u"/Client/Backup/_00-11-22-33-44-55/PhotoFavorites.orv.next"_s)) {
      changed = true;
      files.put(kServerPhotoFile,
                wholeFile(photoHeader(), {albums({listRecord("Theirs", "5", "6", guid('t'))}), titles({})}), 5000);
    }
  };
  drop(client, u"Rome"_s, u"1.jpg"_s);
  EXPECT_TRUE(client.sendPictures());
  EXPECT_TRUE(changed);
  EXPECT_EQ(client.shownPhotos(), (QStringList{u"5 Theirs: "_s, u"8 Rome: p\\1.jpg"_s}));
}

TEST_F(PhotoFavouritesTest, TheEmptyListIsMadeOnlyWhereThereIsNoneOrAFileOf0Bytes) {
  client.photoFavourites.createIfMissing(kEmpty, {});
  EXPECT_EQ(files.bytes(kServerPhotoFile), kEmpty);
  files.put(kServerPhotoFile, {});
  client.photoFavourites.createIfMissing(kEmpty, {});
  EXPECT_EQ(files.bytes(kServerPhotoFile), kEmpty);
  files.put(kServerPhotoFile, "somebody's");
  client.photoFavourites.createIfMissing(kEmpty, {});
  EXPECT_EQ(files.bytes(kServerPhotoFile), QByteArray("somebody's"));
  EXPECT_FALSE(files.exists(kServerLock));
}

TEST_F(PhotoFavouritesTest, AnInterruptedRewriteIsFinishedBeforeTheEmptyListIsMade) {
  drop(client, u"Old"_s, u"0.jpg"_s);
  ASSERT_TRUE(client.sendPictures());
  files.clearLog();
  files.beforeOperation = [this](int) {
    if (files.log().contains(u"removeFile "_s + kServerPhotoFile)) {
      files.setUnknown(kMountPoint.toString(), true);
    }
  };
  drop(client, u"Rome"_s, u"1.jpg"_s);
  EXPECT_FALSE(client.sendPictures());
  files.beforeOperation = nullptr;
  files.setUnknown(kMountPoint.toString(), false);
  ASSERT_FALSE(files.exists(kServerPhotoFile));
  client.photoFavourites.createIfMissing(kEmpty, {});
  EXPECT_EQ(client.shownPhotos(), (QStringList{u"7 Old: p\\0.jpg"_s, u"8 Rome: p\\1.jpg"_s}));
}

TEST_F(PhotoFavouritesTest, Vaultbox1GetsTitlesOfTwoFieldsAndNoColourBranch) {
  MergeWorkbench vaultbox(files, u"Vaultbox 1"_s);
  vaultbox.settings.set(u"PlaylistID"_s, u"5"_s);
  drop(vaultbox, u"Red"_s, u"1.jpg"_s);
  ASSERT_TRUE(vaultbox.sendPictures());
  EXPECT_EQ(contentsOf(files.bytes(kServerPhotoFile), 73),
            (std::vector<QByteArray>{
                albums({listRecord("Red", "5", "6", countedGuid(1))}),
                titles({titleOfVaultbox1("E:\\vb-share\\Photo\\Mac\\p\\1.jpg", zeros36(), countedGuid(2))})}));
}

} // namespace sonorel::test
