// Lists that could not be written wait on the client's disk: over the end of the program, for their own product.
#include "MergeWorkbench.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kMusicKept = u"/Client/Backup/_00-11-22-33-44-55/NetMusicFavorites.orv.unwritten-"_s;
const QString kPhotosKept = u"/Client/Backup/_00-11-22-33-44-55/PhotoFavorites.orv.unwritten-"_s;

class UnwrittenPlaylistsTest : public testing::Test {
protected:
  UnwrittenPlaylistsTest() { mountShare(files, u"Auralis 5"_s); }

  // A playlist, an album on a colour key and a picture, kept while the product counted as that one.
  void keepListsOf(const QString &deviceName) {
    MergeWorkbench other(files, deviceName);
    other.connected = false;
    other.track(u"Party"_s, u"A@@@@@G@@@@@a.mp3"_s);
    other.track(u"@!!!Red!!!@"_s, u"b.mp3"_s, u"Gold"_s);
    EXPECT_FALSE(other.send());
    other.pictureOf(u"Rome"_s, u"/Volumes/VB-SHARE$/Photo/Mac/Rome/1.jpg"_s);
    EXPECT_FALSE(other.sendPictures());
  }

  // A transfer whose lists could not be written, and the end of the client.
  void failAndQuit(const QString &playlist, const QString &track) {
    MergeWorkbench client(files, u"Auralis 5"_s, u"/Client"_s, m_used += 100);
    client.connected = false;
    client.track(playlist, track);
    EXPECT_FALSE(client.send());
  }
  [[nodiscard]] QStringList kept() const {
    QStringList names;
    const auto backup = files.tree(u"/Client/Backup"_s);
    for (auto file = backup.begin(); file != backup.end(); ++file) {
      if (file.key().contains(u".unwritten"_s)) {
        names.append(u"/Client/Backup/"_s + file.key());
      }
    }
    return names;
  }

  FakeFileSystem files;
  int m_used = 0; // identifiers; no two runs draw the same
};

} // namespace

TEST_F(UnwrittenPlaylistsTest, AreWrittenByTheNextRunAtItsFirstConnection) {
  failAndQuit(u"Party"_s, u"a.mp3"_s);
  failAndQuit(u"@!!!Red!!!@"_s, u"b.mp3"_s);
  MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 500);
  EXPECT_TRUE(next.metaData.hasUnwritten(false));
  EXPECT_FALSE(next.metaData.hasUnwritten(true));
  EXPECT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shown().at(0), u"1 Red: Unknown/2"_s);
  EXPECT_EQ(next.shown().mid(4), QStringList{u"5 @~Party@~: a.mp3/1"_s});
  EXPECT_FALSE(next.metaData.hasUnwritten(false));
  EXPECT_EQ(kept(), QStringList());
}

TEST_F(UnwrittenPlaylistsTest, StandInAFileThatPeopleCanRead) {
  MergeWorkbench client(files);
  client.connected = false;
  client.track(u"Bits & Pieces"_s, u"Björk@@@@@a.mp3"_s);
  EXPECT_FALSE(client.send());
  EXPECT_EQ(
      files.bytes(kMusicKept + u'1'),
      QByteArray(
          "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
          "<plist version=\"1.0\">\n"
          "<dict>\n"
          "\t<key>0</key>\n"
          "\t<dict>\n"
          "\t\t<key>Playlist</key>\n"
          "\t\t<dict>\n"
          "\t\t\t<key>GUID</key>\n"
          "\t\t\t<data>\n\t\t\tAAAAAAAAAAAAAAAAAAAAAg==\n\t\t\t</data>\n"
          "\t\t\t<key>LocationID</key>\n"
          "\t\t\t<string>6</string>\n"
          "\t\t\t<key>PlaylistID</key>\n"
          "\t\t\t<string>1</string>\n"
          "\t\t\t<key>PlaylistName</key>\n"
          "\t\t\t<string>Bits &amp; Pieces</string>\n"
          "\t\t</dict>\n"
          "\t\t<key>Songs</key>\n"
          "\t\t<array>\n"
          "\t\t\t<dict>\n"
          "\t\t\t\t<key>CheckSum</key>\n"
          "\t\t\t\t<data>\n\t\t\t\tAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\n\t\t\t\tAAAA\n\t\t\t\t</data>\n"
          "\t\t\t\t<key>GUID</key>\n"
          "\t\t\t\t<data>\n\t\t\t\tAAAAAAAAAAAAAAAAAAAAAQ==\n\t\t\t\t</data>\n"
          "\t\t\t\t<key>ItemType</key>\n"
          "\t\t\t\t<string>1</string>\n"
          "\t\t\t\t<key>SongPath</key>\n"
          "\t\t\t\t<string>Björk@@@@@a.mp3</string>\n"
          "\t\t\t</dict>\n"
          "\t\t</array>\n"
          "\t</dict>\n"
          "</dict>\n"
          "</plist>\n"));
  EXPECT_EQ(files.mode(u"/Client/Backup/_00-11-22-33-44-55"_s), 0700U);
}

TEST_F(UnwrittenPlaylistsTest, LeaveNothingBehindWhenTheyAreWrittenAtOnce) {
  MergeWorkbench client(files);
  client.track(u"Party"_s, u"a.mp3"_s);
  EXPECT_TRUE(client.send());
  client.pictureOf(u"Rome"_s, u"/p/1.jpg"_s);
  EXPECT_TRUE(client.sendPictures());
  EXPECT_EQ(kept(), QStringList());
}

TEST_F(UnwrittenPlaylistsTest, OfPicturesWaitLikeThoseOfMusic) {
  {
    MergeWorkbench client(files);
    client.connected = false;
    client.pictureOf(u"Rome"_s, u"/Rome/1.jpg"_s);
    client.endAlbum();
    client.pictureOf(u"Oslo"_s, u"/Oslo/2.jpg"_s);
    EXPECT_FALSE(client.sendPictures());
    EXPECT_TRUE(files.exists(kPhotosKept + u'1'));
  }
  MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 500);
  EXPECT_TRUE(next.metaData.hasUnwritten(true));
  EXPECT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shownPhotos(), (QStringList{u"5 Rome: Rome\\1.jpg"_s, u"6 : "_s, u"6 Oslo: Oslo\\2.jpg"_s}));
  EXPECT_EQ(kept(), QStringList());
}

TEST_F(UnwrittenPlaylistsTest, WaitForTheirOwnProductOverARestart) {
  failAndQuit(u"Party"_s, u"a.mp3"_s);
  {
    MergeWorkbench other(files, u"Auralis 5"_s, u"/Client"_s, 500);
    other.session.setHardwareAddress(u"00-00-00-00-00-0B"_s);
    EXPECT_FALSE(other.metaData.hasUnwritten(false));
    EXPECT_TRUE(other.metaData.retryUnwritten({}));
    EXPECT_FALSE(files.exists(kServerFile));
    other.connected = false;
    other.track(u"Other"_s, u"b.mp3"_s);
    EXPECT_FALSE(other.send());
  }
  MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 600);
  EXPECT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shown().mid(4), QStringList{u"5 @~Party@~: a.mp3/1"_s});
  EXPECT_EQ(kept(), QStringList{u"/Client/Backup/_00-00-00-00-00-0b/NetMusicFavorites.orv.unwritten-1"_s});
  files.erase(kServerFile); // the share of the other product
  next.session.setHardwareAddress(u"00-00-00-00-00-0B"_s);
  EXPECT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shown().mid(4), QStringList{u"5 @~Other@~: b.mp3/1"_s});
}

// A sleep of the machine breaks a transfer off and leaves its records for the next one.
TEST_F(UnwrittenPlaylistsTest, AreWhatABrokenOffTransferLeftForAProductThatIsNotConnectedNow) {
  MergeWorkbench client(files);
  client.metaData.beginTransfer();
  client.track(u"Party"_s, u"A@@@@@G@@@@@a.mp3"_s);
  client.pictureOf(u"Rome"_s, u"/Rome/1.jpg"_s);
  client.breakOff();
  client.metaData.keepRecordsOfAnotherProduct(); // the same one again
  client.session.setHardwareAddress({});         // which cannot be read this time
  client.metaData.keepRecordsOfAnotherProduct();
  EXPECT_EQ(client.board.records(false).size(), 1);
  EXPECT_EQ(client.board.records(true).size(), 1);
  EXPECT_EQ(kept(), QStringList());

  client.session.setHardwareAddress(u"00-00-00-00-00-0B"_s);
  client.session.setDeviceName(u"Vaultbox 1"_s);
  client.metaData.keepRecordsOfAnotherProduct();
  EXPECT_FALSE(client.board.hasRecords(false));
  EXPECT_FALSE(client.board.hasRecords(true));
  EXPECT_EQ(kept(), (QStringList{kMusicKept + u'1', kPhotosKept + u'1'}));
  EXPECT_TRUE(files.bytes(kMusicKept + u'1').contains("ItemType")); // as the product has it that it was made for
  client.metaData.beginTransfer();
  client.track(u"Other"_s, u"b.mp3"_s);
  EXPECT_TRUE(client.send());
  EXPECT_EQ(client.shown(), QStringList{u"1 @~Other@~: b.mp3/-"_s});

  files.erase(kServerFile); // the share of the first product
  client.session.setHardwareAddress(u"00-11-22-33-44-55"_s);
  client.session.setDeviceName(u"Auralis 5"_s);
  EXPECT_TRUE(client.metaData.retryUnwritten({}));
  EXPECT_EQ(client.shown().mid(4), QStringList{u"5 @~Party@~: A\\G\\a.mp3/1"_s});
  EXPECT_EQ(client.shownPhotos(), QStringList{u"5 Rome: Rome\\1.jpg"_s});
}

TEST_F(UnwrittenPlaylistsTest, AreWhatABrokenOffTransferLeftWhenTheProgramEnds) {
  {
    MergeWorkbench client(files);
    client.metaData.keepRecords(); // nothing was carried yet
    client.metaData.beginTransfer();
    client.track(u"Party"_s, u"a.mp3"_s);
    client.breakOff();
    client.metaData.keepRecords();
    EXPECT_EQ(kept(), QStringList{kMusicKept + u'1'});
  }
  MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 500);
  EXPECT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shown().mid(4), QStringList{u"5 @~Party@~: a.mp3/1"_s});
  EXPECT_EQ(kept(), QStringList());
}

TEST_F(UnwrittenPlaylistsTest, AreNoListsOfWhichNothingWasCarried) {
  MergeWorkbench client(files);
  client.metaData.beginTransfer();
  client.board.replaceRecords(false, {{u"Party"_s, u"/m/a.mp3"_s, {}, {}, u"N"_s}});
  client.metaData.keepRecords();
  EXPECT_FALSE(client.board.hasRecords(false));
  EXPECT_EQ(kept(), QStringList());
}

TEST_F(UnwrittenPlaylistsTest, ComeInTheOrderOfTheirTransfersAlsoBehindTheTenth) {
  QStringList expected;
  for (int i = 1; i <= 12; ++i) {
    failAndQuit(u"List %1"_s.arg(i), u"a.mp3"_s);
    expected.append(u"%1 @~List %2@~: a.mp3/1"_s.arg(i + 4).arg(i));
  }
  MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 5000);
  EXPECT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shown().mid(4), expected);
}

TEST_F(UnwrittenPlaylistsTest, StayOnTheDiskWhenTheNextRunCannotWriteThemEither) {
  failAndQuit(u"First"_s, u"a.mp3"_s);
  {
    MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 500);
    files.failPath(kServerFile, FailureKind::Unknown);
    next.track(u"Second"_s, u"b.mp3"_s);
    EXPECT_FALSE(next.send());
    files.clearFailures();
  }
  MergeWorkbench last(files, u"Auralis 5"_s, u"/Client"_s, 600);
  EXPECT_TRUE(last.metaData.retryUnwritten({}));
  EXPECT_EQ(last.shown().mid(4), (QStringList{u"5 @~First@~: a.mp3/1"_s, u"6 @~Second@~: b.mp3/1"_s}));
}

TEST_F(UnwrittenPlaylistsTest, InADamagedFileAreSetAsideAndTheOthersWritten) {
  failAndQuit(u"First"_s, u"a.mp3"_s);
  failAndQuit(u"Second"_s, u"b.mp3"_s);
  const QByteArray cut = files.bytes(kMusicKept + u'1').chopped(20);
  for (const QByteArray &damaged : {cut, QByteArray(), QByteArray("<plist version=\"1.0\"><array/></plist>"),
                                    QByteArray("<plist version=\"1.0\"><dict><key>0</key><dict/></dict></plist>")}) {
    files.put(kMusicKept + u'1', damaged);
    MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 500);
    EXPECT_TRUE(next.metaData.hasUnwritten(false));
    EXPECT_FALSE(files.exists(kMusicKept + u'1')) << damaged.toStdString();
    EXPECT_TRUE(next.desktop.logged(u"Lists that wait to be written cannot be read from "_s + kMusicKept + u'1'));
  }
  EXPECT_EQ(files.bytes(kMusicKept + u"1.damaged"_s), cut);
  MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 600);
  EXPECT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shown().mid(4), QStringList{u"5 @~Second@~: b.mp3/1"_s});
}

TEST_F(UnwrittenPlaylistsTest, ThatCannotBeReadNowAreLeftWhereTheyAre) {
  failAndQuit(u"First"_s, u"a.mp3"_s);
  for (const QString &path : {kMusicKept + u'1', u"/Client/Backup/_00-11-22-33-44-55"_s}) {
    MergeWorkbench blind(files, u"Auralis 5"_s, u"/Client"_s, m_used += 100);
    files.failPath(path, FailureKind::Other);
    EXPECT_FALSE(blind.metaData.hasUnwritten(false));
    blind.connected = false;
    blind.track(u"Second"_s, u"b.mp3"_s);
    EXPECT_FALSE(blind.send()); // beside what it did not see
    files.clearFailures();
    blind.connected = true;
    EXPECT_TRUE(blind.metaData.retryUnwritten({}));
    EXPECT_TRUE(files.exists(kMusicKept + u'1'));
  }
  MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, m_used += 100);
  EXPECT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shown().last(), u"7 @~First@~: a.mp3/1"_s);
}

TEST_F(UnwrittenPlaylistsTest, ThatTheDiskRefusesWaitInMemory) {
  MergeWorkbench client(files);
  client.connected = false;
  files.failPath(kMusicKept + u'1', FailureKind::DiskFull);
  client.track(u"Party"_s, u"a.mp3"_s);
  EXPECT_FALSE(client.send());
  EXPECT_TRUE(client.desktop.logged(u"Lists could not be kept on the disk until they are written: "_s));
  client.connected = true;
  EXPECT_TRUE(client.metaData.retryUnwritten({}));
  EXPECT_EQ(client.shown().mid(4), QStringList{u"5 @~Party@~: a.mp3/1"_s});
}

TEST_F(UnwrittenPlaylistsTest, ThatStandOnTheServerAlreadyAreNotWrittenTwice) {
  {
    MergeWorkbench client(files);
    client.track(u"Party"_s, u"a.mp3"_s);
    client.track(u"@!!!Red!!!@"_s, u"b.mp3"_s, u"Gold"_s);
    files.failPath(kMusicKept + u'1', FailureKind::DiskFull);
    ASSERT_TRUE(client.send());
    files.clearFailures();
  }
  MergeWorkbench again(files); // draws the same identifiers
  again.connected = false;
  again.track(u"Party"_s, u"a.mp3"_s);
  again.track(u"@!!!Red!!!@"_s, u"b.mp3"_s, u"Gold"_s);
  EXPECT_FALSE(again.send());
  MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 500);
  const QStringList before = next.shown();
  EXPECT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shown(), before);
  EXPECT_EQ(kept(), QStringList());
}

// A product whose name cannot be read counts as "Vaultbox 1", whose titles lack a field and whose keys are no keys.
TEST_F(UnwrittenPlaylistsTest, OfAProductThatWasTakenForAnotherFitIt) {
  keepListsOf(u"Vaultbox 1"_s);
  MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 500);
  ASSERT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shown().at(0), u"1 Red: Gold/2"_s);
  EXPECT_EQ(next.shown().mid(4), QStringList{u"5 @~Party@~: A\\G\\a.mp3/1"_s});
  EXPECT_TRUE(decodeMusicFavourites(files.bytes(kServerFile), playerOf(next.session)).fitsModel);
  EXPECT_TRUE(
      decodeFavourites(files.bytes(kServerPhotoFile), FavouritesKind::Photos, playerOf(next.session)).fitsModel);
}

TEST_F(UnwrittenPlaylistsTest, OfAProductThatIsTakenForVaultbox1FitThatToo) {
  keepListsOf(u"Auracore 5"_s);
  MergeWorkbench next(files, u"Vaultbox 1"_s, u"/Client"_s, 500);
  ASSERT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shown(), (QStringList{u"1 @~Party@~: A\\G\\a.mp3/-"_s, u"2 @~Red@~: Gold/-"_s}));
  EXPECT_TRUE(decodeMusicFavourites(files.bytes(kServerFile), playerOf(next.session)).fitsModel);
  EXPECT_TRUE(
      decodeFavourites(files.bytes(kServerPhotoFile), FavouritesKind::Photos, playerOf(next.session)).fitsModel);
}

// Otherwise the older list would come later and replace the newer one of its name.
TEST_F(UnwrittenPlaylistsTest, AreNotOvertakenByNewerOnes) {
  failAndQuit(u"@~Gold@~"_s, u"old.mp3"_s);
  MergeWorkbench client(files, u"Auralis 5"_s, u"/Client"_s, 500);
  files.failPath(kServerLock, FailureKind::Unknown); // while the older list is tried, and no longer
  files.beforeOperation = [&](int) {
    if (files.log().last().endsWith(kServerLock)) {
      files.clearFailures();
    }
  };
  client.track(u"@~Gold@~"_s, u"new.mp3"_s);
  EXPECT_FALSE(client.send());
  EXPECT_EQ(kept(), QStringList({kMusicKept + u'1', kMusicKept + u'2'}));
  EXPECT_TRUE(client.desktop.logged(u"The playlists were not written: older ones wait before them."_s));
  EXPECT_TRUE(client.metaData.retryUnwritten({}));
  EXPECT_EQ(client.shown().mid(4), QStringList{u"6 @~Gold@~: new.mp3/1"_s});
}

TEST_F(UnwrittenPlaylistsTest, StopBetweenTwoTransfersWhenAskedTo) {
  failAndQuit(u"First"_s, u"a.mp3"_s);
  failAndQuit(u"Second"_s, u"b.mp3"_s);
  MergeWorkbench client(files, u"Auralis 5"_s, u"/Client"_s, 500);
  std::stop_source stop;
  client.clock.onSleep = [&] { stop.request_stop(); };
  EXPECT_FALSE(client.metaData.retryUnwritten(stop.get_token()));
  EXPECT_EQ(kept(), QStringList{kMusicKept + u'2'});
  EXPECT_TRUE(client.metaData.retryUnwritten({}));
  EXPECT_EQ(kept(), QStringList());
}

TEST_F(UnwrittenPlaylistsTest, StopWhileAnotherClientWrites) {
  failAndQuit(u"Party"_s, u"a.mp3"_s);
  files.put(kServerLock, "FOREIGN/1", FakeFileSystem::kStart);
  MergeWorkbench client(files, u"Auralis 5"_s, u"/Client"_s, 500);
  std::stop_source stop;
  client.clock.onSleep = [&] { stop.request_stop(); };
  EXPECT_FALSE(client.metaData.retryUnwritten(stop.get_token()));
  EXPECT_EQ(client.clock.sleeps.size(), 1);
  EXPECT_EQ(kept(), QStringList{kMusicKept + u'1'});
}

// Of a drop on a key the albums that stood there already are left out, which may be the last one.
TEST_F(UnwrittenPlaylistsTest, OnAColourKeyAreKnownByAnyOfTheirAlbums) {
  const auto drop = [](MergeWorkbench &client) {
    client.track(u"@!!!Red!!!@"_s, u"b.mp3"_s, u"Arrival"_s);
    client.track(u"@!!!Red!!!@"_s, u"c.mp3"_s, u"Gold"_s);
    return client.send();
  };
  {
    MergeWorkbench client(files);
    client.track(u"@!!!Red!!!@"_s, u"a.mp3"_s, u"Gold"_s);
    client.track(u"@!!!Red!!!@"_s, u"d.mp3"_s, u"Waterloo"_s);
    ASSERT_TRUE(client.send());
  }
  {
    MergeWorkbench client(files, u"Auralis 5"_s, u"/Client"_s, 100);
    files.erase(kColourCopyPath.toString()); // so that the albums are appended
    files.failPath(kMusicKept + u'1', FailureKind::DiskFull);
    ASSERT_TRUE(drop(client));
    files.clearFailures();
    EXPECT_EQ(client.shown().at(0), u"1 Red: Gold/2, Waterloo/2, Arrival/2"_s);
  }
  {
    MergeWorkbench again(files, u"Auralis 5"_s, u"/Client"_s, 100); // draws the same identifiers
    again.connected = false;
    EXPECT_FALSE(drop(again));
  }
  MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 500);
  EXPECT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.shown().at(0), u"1 Red: Gold/2, Waterloo/2, Arrival/2"_s);
}

TEST_F(UnwrittenPlaylistsTest, ComeBackWithEveryCharacter) {
  const QString odd = u"<&>\"' \t\r\u0001 é 東 🎵 @@@@@ ]]>"_s;
  MergeWorkbench client(files);
  client.session.setAU5UTF8Compliant(u"YES"_s);
  client.connected = false;
  client.track(odd, odd);
  EXPECT_FALSE(client.send());
  MergeWorkbench next(files, u"Auralis 5"_s, u"/Client"_s, 500);
  next.session.setAU5UTF8Compliant(u"YES"_s);
  ASSERT_TRUE(next.metaData.retryUnwritten({}));
  EXPECT_EQ(next.server().back().nameAsRead, odd);
  EXPECT_EQ(next.server().back().songs.at(0).songPath, u"_&__' \t\r\u0001 é 東 🎵 \\ ]]_"_s);
}

} // namespace sonorel::test
