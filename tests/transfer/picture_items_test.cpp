// Pictures and films on their way onto the share.
#include "TransferWorkbench.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kPhoto = u"/Volumes/VB-SHARE$/Photo/Mac/"_s;
const QString kEnded = u"The transfer has ended."_s;
const QString kLost = u"The connection to the product was lost. These items were not transferred:\n"_s;

QVariantMap album(const QString &name, const QStringList &paths) {
  return {{u"albumName"_s, name}, {u"draggedFiles"_s, paths}};
}

class PictureItemsTest : public testing::Test {
protected:
  PictureItemsTest() {
    bench.onSend = [this] { sent = bench.board.records(true); };
  }
  QString picture(const QString &path, const QByteArray &bytes = "picture", qint64 modified = 1000) {
    bench.files.put(path, bytes, modified);
    return path;
  }
  void albums(const QVariantList &all) {
    bench.intake.handleiPhotoDragAndDrop({{}, {{u"PhotoData"_s, all}}});
    bench.run();
  }
  QStringList photos() const { return files(kPhoto); }
  QStringList files(const QString &folder) const {
    QStringList names;
    const auto tree = bench.files.tree(folder.chopped(1));
    for (const QString &name : tree.keys()) {
      if (!name.endsWith(u'/')) {
        names.append(name);
      }
    }
    return names;
  }
  // "destination flag" of every record when the albums were handed over; "end" for a marker.
  QStringList records() const {
    QStringList all;
    for (const PlaylistInfo &record : sent) {
      all.append(record == PlaylistInfo() ? u"end"_s : record.destinationSongName + u' ' + record.songTransferFlag);
    }
    return all;
  }

  TransferWorkbench bench;
  QList<PlaylistInfo> sent;
};

} // namespace

TEST_F(PictureItemsTest, AnAlbumLandsInTheFolderOfItsPictures) {
  albums({album(u"Summer"_s, {picture(u"/Users/me/Trip/1.jpg"_s), picture(u"/Users/me/Trip/2.png"_s)})});
  EXPECT_EQ(photos(), (QStringList{u"Trip/1.jpg"_s, u"Trip/2.png"_s}));
  EXPECT_EQ(bench.files.mode(kPhoto.chopped(1)), 0777U);
  EXPECT_EQ(bench.files.mode(kPhoto + u"Trip"_s), 0777U);
  EXPECT_EQ(bench.files.modified(kPhoto + u"Trip/1.jpg"_s), 1000);
  EXPECT_EQ(records(), (QStringList{u"/Users/me/Trip/1.jpg Y"_s, u"/Users/me/Trip/2.png Y"_s, u"end"_s}));
  EXPECT_EQ(bench.sent, (QStringList{u"pictures"_s, u"collections photo"_s}));
  EXPECT_EQ(bench.view.lastLog, kEnded);
  EXPECT_FALSE(bench.board.hasRecords(true));
}

TEST_F(PictureItemsTest, NamesAreCleanedOnTheShareAndInTheRecord) {
  albums({album(u"A"_s, {picture(u"/p/Day: 1/what?.jpg"_s)})});
  EXPECT_EQ(photos(), QStringList{u"Day_ 1/what_.jpg"_s});
  EXPECT_EQ(records(), (QStringList{u"/p/Day: 1/what_.jpg Y"_s, u"end"_s}));
}

TEST_F(PictureItemsTest, WithoutAFolderOfItsOwnItLiesInThePhotoFolder) {
  albums({album(u"A"_s, {picture(u"/p:1.jpg"_s)})});
  EXPECT_EQ(photos(), QStringList{u"p_1.jpg"_s});
  EXPECT_EQ(records(), (QStringList{u"p_1.jpg Y"_s, u"end"_s}));
}

TEST_F(PictureItemsTest, OneThatStandsInThePhotoFolderStaysThere) {
  picture(kPhoto + u"1.jpg"_s);
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s), picture(u"/p/Trip/2.jpg"_s)})});
  EXPECT_EQ(photos(), (QStringList{u"1.jpg"_s, u"Trip/2.jpg"_s}));
  EXPECT_EQ(records(), (QStringList{u"1.jpg Y"_s, u"/p/Trip/2.jpg Y"_s, u"end"_s}));
  EXPECT_EQ(bench.processes.requests.size(), 1);
}

TEST_F(PictureItemsTest, AnotherOneOfThatNameInThePhotoFolderIsReplaced) {
  picture(kPhoto + u"1.jpg"_s, "other picture");
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s)})});
  EXPECT_EQ(photos(), QStringList{u"1.jpg"_s});
  EXPECT_EQ(bench.files.bytes(kPhoto + u"1.jpg"_s), QByteArray("picture"));
  EXPECT_EQ(records(), (QStringList{u"1.jpg Y"_s, u"end"_s}));
  EXPECT_EQ(bench.clock.sleeps.size(), 1) << "only the pause before the end: none after the removal";
}

TEST_F(PictureItemsTest, TheSameAlbumAgainCopiesNothing) {
  const QString path = picture(u"/p/Trip/1.jpg"_s);
  albums({album(u"A"_s, {path})});
  bench.processes.requests.clear();
  bench.sent.clear();
  bench.onSend = [this] { sent = bench.board.records(true); };
  albums({album(u"A"_s, {path})});
  EXPECT_TRUE(bench.processes.requests.isEmpty());
  EXPECT_EQ(records(), (QStringList{u"/p/Trip/1.jpg Y"_s, u"end"_s}));
  EXPECT_EQ(bench.sent, (QStringList{u"pictures"_s, u"collections"_s}));
  EXPECT_EQ(bench.view.lastLog, kEnded);
}

TEST_F(PictureItemsTest, ALinkedPictureIsCarriedOnce) {
  const QString link = u"/p/Trip/1.jpg"_s;
  bench.files.putLink(link, picture(u"/disk/p.jpg"_s));
  for (int drop = 0; drop < 2; ++drop) {
    albums({album(u"A"_s, {link})});
    EXPECT_EQ(photos(), QStringList{u"Trip/1.jpg"_s});
    EXPECT_EQ(bench.view.lastLog, kEnded);
  }
  EXPECT_EQ(bench.files.bytes(kPhoto + u"Trip/1.jpg"_s), QByteArray("picture"));
  EXPECT_EQ(bench.processes.requests.size(), 1);
}

TEST_F(PictureItemsTest, AChangedPictureReplacesTheOldOne) {
  const QString path = picture(u"/p/Trip/1.jpg"_s);
  albums({album(u"A"_s, {path})});
  picture(path, "retouched", 2000);
  albums({album(u"A"_s, {path})});
  EXPECT_EQ(bench.files.bytes(kPhoto + u"Trip/1.jpg"_s), QByteArray("retouched"));
}

TEST_F(PictureItemsTest, WhatCannotBeRemovedIsCopiedOver) {
  const QString file = kPhoto + u"Trip/1.jpg"_s;
  picture(file, "other picture");
  bench.files.beforeOperation = [&](int) {
    if (bench.files.log().constLast() == u"sameFile /p/Trip/1.jpg"_s) {
      bench.files.failAt(3, FailureKind::Other); // behind the last looks at both
    }
  };
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s)})});
  EXPECT_TRUE(bench.desktop.logged(file + u" could not be removed: the operation failed: "_s + file));
  EXPECT_EQ(bench.files.bytes(file), QByteArray("picture"));
  EXPECT_EQ(records(), (QStringList{u"/p/Trip/1.jpg Y"_s, u"end"_s}));
}

TEST_F(PictureItemsTest, OnePictureInTwoAlbumsIsCopiedOnceAndRecordedInBoth) {
  const QString path = picture(u"/p/Trip/a?.jpg"_s);
  albums({album(u"A"_s, {path}), album(u"B"_s, {path})});
  EXPECT_EQ(bench.processes.requests.size(), 1);
  EXPECT_EQ(records(), (QStringList{u"/p/Trip/a_.jpg Y"_s, u"end"_s, u"/p/Trip/a_.jpg Y"_s, u"end"_s}));
}

TEST_F(PictureItemsTest, AnEmptyPictureIsCarried) {
  albums({album(u"A"_s, {picture(u"/p/Trip/empty.jpg"_s, {})})});
  EXPECT_TRUE(bench.files.exists(kPhoto + u"Trip/empty.jpg"_s));
  EXPECT_EQ(bench.files.bytes(kPhoto + u"Trip/empty.jpg"_s), QByteArray());
}

TEST_F(PictureItemsTest, APictureThatDoesNotFitEndsTheTransfer) {
  bench.files.setFreeBytes(kMountPoint.toString(), 7);
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s, "1234567"), picture(u"/p/Trip/2.jpg"_s)})});
  EXPECT_EQ(photos(), QStringList());
  EXPECT_EQ(bench.view.lastLog,
            u"There is not enough free space on Auracore 5. These items were not transferred:\n1.jpg\n2.jpg\n"_s);
}

TEST_F(PictureItemsTest, PipesDevicesAndFoldersAreNotCopied) {
  bench.files.putOther(u"/p/Trip/pipe.jpg"_s);
  bench.files.makeFolders(u"/p/Trip/folder.jpg"_s);
  picture(kPhoto + u"Trip/pipe.jpg"_s);
  albums({album(u"A"_s, {u"/p/Trip/pipe.jpg"_s, u"/p/Trip/folder.jpg"_s, u"/p/Trip/gone.jpg"_s})});
  EXPECT_TRUE(bench.processes.requests.isEmpty());
  EXPECT_EQ(photos(), QStringList{u"Trip/pipe.jpg"_s}) << "nothing was removed for it";
  EXPECT_EQ(records(),
            (QStringList{u"/p/Trip/pipe.jpg N"_s, u"/p/Trip/folder.jpg N"_s, u"/p/Trip/gone.jpg N"_s, u"end"_s}));
  EXPECT_EQ(bench.view.lastLog, u"\"pipe.jpg\" could not be transferred.\n"_s + QString(87, u'-') +
                                    u"\n\"folder.jpg\" could not be transferred.\n"
                                    "\"gone.jpg\" was not transferred because the file could not be found."_s);
}

TEST_F(PictureItemsTest, OneThatCannotBeLookedAtIsToldAsMissing) {
  const QString dark = picture(u"/p/Trip/1.jpg"_s);
  bench.files.failPath(dark, FailureKind::Unknown);
  albums({album(u"A"_s, {dark, picture(u"/p/Trip/2.jpg"_s)})});
  EXPECT_EQ(photos(), QStringList{u"Trip/2.jpg"_s});
  EXPECT_EQ(records(), (QStringList{u"/p/Trip/1.jpg N"_s, u"/p/Trip/2.jpg Y"_s, u"end"_s}));
  EXPECT_EQ(bench.view.lastLog, u"\"1.jpg\" was not transferred because the file could not be found.\n"_s + kEnded);
}

TEST_F(PictureItemsTest, NothingIsCopiedIntoAFolderOfThePicturesName) {
  bench.files.makeFolders(kPhoto + u"1.jpg"_s);
  bench.files.makeFolders(kPhoto + u"Trip/2.jpg"_s);
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s), picture(u"/p/Trip/2.jpg"_s)})});
  EXPECT_EQ(photos(), QStringList());
  EXPECT_TRUE(bench.processes.requests.isEmpty());
}

TEST_F(PictureItemsTest, AFailedCopyLeavesNothingHalf) {
  bench.processes.failAt(1, exited(1));
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s), picture(u"/p/Trip/2.jpg"_s)})});
  EXPECT_EQ(photos(), QStringList{u"Trip/2.jpg"_s});
  EXPECT_EQ(records(), (QStringList{u"/p/Trip/1.jpg N"_s, u"/p/Trip/2.jpg Y"_s, u"end"_s}));
  EXPECT_EQ(bench.view.lastLog, u"\"1.jpg\" could not be transferred.\n"_s + kEnded);
}

TEST_F(PictureItemsTest, OneWhoseFileWentForAnotherIsNotOnTheShare) {
  bench.processes.failAt(3, exited(1));
  albums(
      {album(u"A"_s, {picture(u"/p/Else/1.jpg"_s), picture(u"/p/Trip/1.jpg"_s), picture(u"/q/Trip/1.jpg"_s, "x")})});
  EXPECT_EQ(photos(), QStringList{u"Else/1.jpg"_s});
  EXPECT_EQ(records(), (QStringList{u"/p/Else/1.jpg Y"_s, u"/p/Trip/1.jpg N"_s, u"/q/Trip/1.jpg N"_s, u"end"_s}));
}

// A share that does not tell large letters from small ones has one file for both places.
TEST_F(PictureItemsTest, OneWhoseFileWentForOneThatIsWrittenOtherwiseIsNotOnTheShare) {
  const QString placeOfSecond = kPhoto + u"Trip/BOAT.JPG"_s;
  picture(placeOfSecond, "one file");
  bench.files.beforeOperation = [&](int) {
    if (bench.files.log().constLast() == u"removeFile "_s + placeOfSecond &&
        bench.files.exists(kPhoto + u"Trip/boat.jpg"_s)) {
      bench.files.erase(kPhoto + u"Trip/boat.jpg"_s);
    }
  };
  bench.processes.failAt(2, exited(1));
  albums({album(u"A"_s, {picture(u"/p/Trip/boat.jpg"_s), picture(u"/q/Trip/BOAT.JPG"_s, "x")})});
  EXPECT_EQ(photos(), QStringList());
  EXPECT_EQ(records(), (QStringList{u"/p/Trip/boat.jpg N"_s, u"/q/Trip/BOAT.JPG N"_s, u"end"_s}));
}

TEST_F(PictureItemsTest, NothingIsRemovedForASourceThatCannotBeRead) {
  picture(kPhoto + u"Trip/1.jpg"_s, "older", 900);
  bench.files.beforeOperation = [&](int) {
    if (bench.files.log().constLast() == u"sameFile /p/Trip/1.jpg"_s) {
      bench.files.failAt(2, FailureKind::Other); // behind the last looks at both
    }
  };
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s)})});
  EXPECT_EQ(bench.files.bytes(kPhoto + u"Trip/1.jpg"_s), QByteArray("older"));
  EXPECT_TRUE(bench.desktop.logged(u"/p/Trip/1.jpg was not copied: it cannot be read"_s));
  EXPECT_TRUE(bench.processes.requests.isEmpty());
  EXPECT_EQ(bench.view.lastLog, u"\"1.jpg\" could not be transferred."_s);
}

TEST_F(PictureItemsTest, AFailedCopyOfWhatStandsInTheAlbumAnywayCounts) {
  picture(kPhoto + u"1.jpg"_s, "other picture");
  picture(kPhoto + u"Trip/1.jpg"_s);
  bench.processes.failAt(1, exited(1));
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s)})});
  EXPECT_EQ(bench.view.lastLog, kEnded);
  EXPECT_EQ(photos(), QStringList{u"Trip/1.jpg"_s});
}

TEST_F(PictureItemsTest, AnAlbumFolderThatCannotBeMadeFailsTheCopy) {
  picture(kPhoto + u"Trip"_s, "a file");
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s)})});
  EXPECT_EQ(photos(), QStringList{u"Trip"_s});
  EXPECT_EQ(bench.view.lastLog, u"\"1.jpg\" could not be transferred."_s);
}

TEST_F(PictureItemsTest, AShareThatIsLostDuringACopyIsToldWithTheRest) {
  bench.processes.onRun = [this](const ToolRequest &) {
    bench.files.unmount(kMountPoint.toString());
    return exited(1);
  };
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s), picture(u"/p/Trip/2.jpg"_s)})});
  EXPECT_EQ(bench.view.lastLog, kLost + u"1.jpg\n2.jpg\n"_s);
  EXPECT_EQ(bench.view.icon, u"Disconnect"_s);
}

TEST_F(PictureItemsTest, AnExceptionWithTheShareThereGoesOnWithTheNextItem) {
  bench.files.failPath(kPhoto + u"Trip/1.jpg"_s, FailureKind::Unknown);
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s), picture(u"/p/Trip/2.jpg"_s)})});
  EXPECT_TRUE(bench.files.exists(kPhoto + u"Trip/2.jpg"_s));
  EXPECT_TRUE(bench.desktop.logged(u"Exception in ---> <AppController><transferToVaultbox> the share does not answer "
                                   "for /Volumes/VB-SHARE$/Photo/Mac/Trip/1.jpg"_s));
  EXPECT_EQ(bench.view.lastLog, kEnded);
}

TEST_F(PictureItemsTest, AnExceptionWithoutTheShareEndsWithTheListAndNoProgress) {
  bench.processes.onRun = [this](const ToolRequest &) -> std::optional<ToolResult> {
    bench.files.unmount(kMountPoint.toString());
    throw Failure(u"no pipe"_s);
  };
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s), picture(u"/p/Trip/2.jpg"_s)})});
  EXPECT_EQ(bench.view.lastLog, kLost + u"1.jpg\n2.jpg\n"_s);
  EXPECT_FALSE(bench.view.calls.contains(u"setProgressBar 100"_s));
  EXPECT_TRUE(bench.view.calls.contains(u"stopPulse"_s));
}

// The failed copy is named; the share is no longer looked for.
TEST_F(PictureItemsTest, AShareThatIsLostDuringACancelIsNotTold) {
  bench.processes.onRun = [this](const ToolRequest &) {
    bench.board.isCancel = true;
    bench.files.unmount(kMountPoint.toString());
    return exited(1);
  };
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s), picture(u"/p/Trip/2.jpg"_s)})});
  EXPECT_EQ(bench.view.lastLog, u"\"1.jpg\" could not be transferred.The transfer was cancelled."_s);
}

TEST_F(PictureItemsTest, AProductThatWasNeverFilledGetsItsFolders) {
  bench.files.erase(u"/Volumes/VB-SHARE$/Photo"_s);
  albums({album(u"A"_s, {picture(u"/p/Trip/1.jpg"_s)})});
  EXPECT_EQ(photos(), QStringList{u"Trip/1.jpg"_s});
  EXPECT_EQ(bench.files.mode(u"/Volumes/VB-SHARE$/Photo"_s), 0777U);
}

TEST_F(PictureItemsTest, PicturesOfAPlaylistComeAlong) {
  const QString song = bench.song(u"/m/A/B/1.mp3"_s, {});
  bench.drop(u"@~Party@~"_s, {song, picture(u"/m/A/B/cover.jpg"_s), picture(u"/m/A/B/film.avi"_s)});
  EXPECT_EQ(photos(), (QStringList{u"B/cover.jpg"_s, u"B/film.avi"_s}));
  EXPECT_EQ(bench.musicTree().size(), 1);
  EXPECT_EQ(records(), (QStringList{u"/m/A/B/cover.jpg Y"_s, u"/m/A/B/film.avi Y"_s, u"end"_s}));
  EXPECT_EQ(bench.sent, (QStringList{u"pictures"_s, u"music"_s, u"collections sound photo"_s}));
  EXPECT_EQ(bench.view.lastLog,
            u"Pictures and videos of the dropped playlist were handled separately from the music.\n"_s + kEnded);
}

// No extension counts as a film by itself; the branch is there for whoever sets the flag.
class VideoItemsTest : public PictureItemsTest {
protected:
  const QString video = u"/Volumes/VB-SHARE$/Video/Mac/"_s;

  // What becomes of the copy of a film.
  void whenCopied(const std::function<ToolResult()> &become) {
    bench.processes.onRun = [this, become](const ToolRequest &request) -> std::optional<ToolResult> {
      return request.arguments.value(2).startsWith(video) ? std::optional(become()) : std::nullopt;
    };
  }
  // The second item is made a film just before it is carried.
  void film(const QString &path) {
    bench.deliver(u"Party"_s, {bench.song(u"/m/A/B/1.mp3"_s, {}), path});
    bench.onLimits = [this] {
      bench.onLimits = [this] {
        bench.transfer.setPhotoOrVideoFileType(false);
        bench.transfer.setVideoFileType(true);
      };
    };
    bench.run();
  }
};

TEST_F(VideoItemsTest, AFilmLandsInTheVideoFolderAndEarnsNoClosingLine) {
  bench.drop(u"Finder"_s, {u"/none.mp3"_s});
  bench.deliver(u"Party"_s, {bench.song(u"/m/A/B/1.mp3"_s, {}, 1000), picture(u"/m/A/B/what?.avi"_s)});
  bench.onLimits = [this] {
    bench.onLimits = [this] {
      bench.transfer.setPhotoOrVideoFileType(false);
      bench.transfer.setVideoFileType(true);
    };
  };
  bench.run();
  EXPECT_EQ(files(video), QStringList{u"what_.avi"_s});
  EXPECT_EQ(photos(), QStringList());
  EXPECT_EQ(bench.files.mode(video.chopped(1)), 0777U);
  EXPECT_TRUE(bench.desktop.lines.contains(u"task successful in volume smbfs"_s));
  EXPECT_EQ(bench.sent.last(), u"collections video"_s);
  EXPECT_FALSE(bench.view.lastLog.contains(kEnded)) << bench.view.lastLog.toStdString();
}

TEST_F(VideoItemsTest, AnIdenticalFilmIsNotCopiedAgain) {
  picture(video + u"x.avi"_s);
  film(picture(u"/m/A/B/x.avi"_s));
  EXPECT_EQ(bench.processes.requests.size(), 1) << "the track";
  EXPECT_EQ(records(), (QStringList{u"/m/A/B/x.avi Y"_s, u"end"_s}));
}

TEST_F(VideoItemsTest, AnotherFilmOfThatNameIsCopiedOverAndCounts) {
  picture(video + u"x.avi"_s, "another film");
  bench.files.clearLog();
  film(picture(u"/m/A/B/x.avi"_s));
  EXPECT_EQ(bench.files.bytes(video + u"x.avi"_s), QByteArray("picture"));
  EXPECT_FALSE(bench.files.log().contains(u"removeFile "_s + video + u"x.avi"_s)) << "not removed first";
  EXPECT_EQ(bench.sent.last(), u"collections sound video"_s);
  EXPECT_EQ(records(), (QStringList{u"/m/A/B/x.avi Y"_s, u"end"_s}));
}

TEST_F(VideoItemsTest, AFilmThatCouldNotBeCopiedIsNotTold) {
  bench.processes.failAt(2, exited(1));
  film(picture(u"/m/A/B/x.avi"_s));
  EXPECT_EQ(files(video), QStringList());
  EXPECT_EQ(bench.view.lastLog,
            u"Pictures and videos of the dropped playlist were handled separately from the music.\n"_s + kEnded);
}

TEST_F(VideoItemsTest, OneThatCannotBeLookedAtIsToldAsMissing) {
  const QString dark = picture(u"/m/A/B/x.avi"_s);
  bench.files.failPath(dark, FailureKind::Unknown);
  film(dark);
  EXPECT_EQ(files(video), QStringList());
  EXPECT_TRUE(
      bench.view.lastLog.startsWith(u"\"x.avi\" was not transferred because the file could not be found.\n"_s))
      << bench.view.lastLog.toStdString();
}

TEST_F(VideoItemsTest, NothingIsCopiedIntoAFolderOfTheFilmsName) {
  bench.files.makeFolders(video + u"x.avi"_s);
  film(picture(u"/m/A/B/x.avi"_s));
  EXPECT_EQ(files(video), QStringList());
  EXPECT_EQ(bench.processes.requests.size(), 1) << "the track";
}

TEST_F(VideoItemsTest, AShareThatIsGoneEndsTheTransfer) {
  whenCopied([this] {
    bench.files.unmount(kMountPoint.toString());
    return exited(1);
  });
  film(picture(u"/m/A/B/x.avi"_s));
  EXPECT_TRUE(bench.view.lastLog.startsWith(kLost + u"x.avi\n"_s)) << bench.view.lastLog.toStdString();
}

TEST_F(VideoItemsTest, AShareThatIsGoneDuringACancelIsNotTold) {
  whenCopied([this] {
    bench.board.isCancel = true;
    bench.files.unmount(kMountPoint.toString());
    return exited(1);
  });
  film(picture(u"/m/A/B/x.avi"_s));
  EXPECT_EQ(bench.view.lastLog, u"The transfer was cancelled."_s);
}

TEST_F(VideoItemsTest, AnExceptionWithTheShareThereEndsNothing) {
  whenCopied([]() -> ToolResult { throw Failure(u"no pipe"_s); });
  film(picture(u"/m/A/B/x.avi"_s));
  EXPECT_TRUE(bench.desktop.logged(u"Exception in ---> <AppController><transferToVaultbox> no pipe"_s));
  EXPECT_TRUE(bench.view.lastLog.endsWith(kEnded)) << bench.view.lastLog.toStdString();
}

TEST_F(VideoItemsTest, AnExceptionWithoutTheShareEndsWithTheListAndNoProgress) {
  whenCopied([this]() -> ToolResult {
    bench.files.unmount(kMountPoint.toString());
    throw Failure(u"no pipe"_s);
  });
  film(picture(u"/m/A/B/x.avi"_s));
  EXPECT_TRUE(bench.view.lastLog.startsWith(kLost + u"x.avi\n"_s)) << bench.view.lastLog.toStdString();
  EXPECT_FALSE(bench.view.calls.contains(u"setProgressBar 100"_s));
}

TEST_F(VideoItemsTest, AFilmThatASleepBreaksOffIsTheFirstOfTheListAfterTheWake) {
  whenCopied([this] {
    bench.board.manualSleepWasConnected = true;
    return ToolResult{ToolEnding::Stopped, -1, {}};
  });
  film(picture(u"/m/A/B/x.avi"_s));
  EXPECT_EQ(bench.board.state(), TransferState::Aborted);
  EXPECT_EQ(bench.board.entriesFrom(bench.board.fileIndex),
            (QList<QueueEntry>{{QueueEntry::Kind::Path, u"/m/A/B/x.avi"_s, {}}}));
  EXPECT_EQ(bench.view.lastLog, QString());
  EXPECT_EQ(bench.view.transfersCompleted, 0);
  EXPECT_EQ(files(video), QStringList());
}

class MetaDataFileTest : public PictureItemsTest {};

TEST_F(MetaDataFileTest, ReplacesTheOneInTheSystemFolder) {
  const QString system = u"/Volumes/VB-SHARE$/System/"_s;
  bench.files.put(system + u"ClientAlive.orv"_s, "old and longer");
  bench.files.put(system + u"._ClientAlive.orv"_s, "x");
  bench.files.put(u"/tmp/ClientAlive.orv"_s, "new");
  bench.transfer.transferMetaDataFile(u"/tmp/ClientAlive.orv"_s);
  EXPECT_EQ(bench.files.bytes(system + u"ClientAlive.orv"_s), QByteArray("new"));
  EXPECT_FALSE(bench.files.exists(system + u"._ClientAlive.orv"_s));
}

TEST_F(MetaDataFileTest, MakesTheSystemFolder) {
  bench.files.erase(u"/Volumes/VB-SHARE$/System"_s);
  bench.files.put(u"/tmp/ClientAlive.orv"_s, "new");
  bench.transfer.transferMetaDataFile(u"/tmp/ClientAlive.orv"_s);
  EXPECT_EQ(bench.files.mode(u"/Volumes/VB-SHARE$/System"_s), 0755U);
}

} // namespace sonorel::test
