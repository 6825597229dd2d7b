#include "TransferWorkbench.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

class TransferTest : public testing::Test {
protected:
  bool place(const QString &path, int flag = 1) {
    return bench.transfer.transferSoundFile(path, u"ABBA-Gold-Waterloo.mp3"_s, 0, flag);
  }
  static TrackTags waterloo() {
    TrackTags tags;
    tags.authors = QStringList{u"ABBA"_s};
    tags.album = u"Gold"_s;
    tags.title = u"Waterloo"_s;
    return tags;
  }

  TransferWorkbench bench;
  const QString source = bench.song(u"/m/ABBA/Gold/01.mp3"_s, waterloo());
};

} // namespace

TEST_F(TransferTest, LandsInArtistAndAlbumFolders) {
  EXPECT_TRUE(place(source));
  EXPECT_EQ(bench.files.bytes(kMusic + u"ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s).size(), 200'000);
  EXPECT_EQ(bench.processes.requests.last().arguments,
            (QStringList{u"-p"_s, source, kMusic + u"ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s}));
  EXPECT_EQ(bench.files.attributes(kMusic + u"ABBA/Gold"_s, Links::Follow)->mode, 0777U);
}

TEST_F(TransferTest, WithoutTheFlagOnlyTheAlbumFolder) {
  EXPECT_TRUE(place(source, 0));
  EXPECT_TRUE(bench.files.exists(kMusic + u"Gold/ABBA-Gold-Waterloo.mp3"_s));
}

TEST_F(TransferTest, AnIdenticalCopyIsNotCopiedAgain) {
  EXPECT_TRUE(place(source));
  const qsizetype runs = bench.processes.requests.size();
  EXPECT_FALSE(place(source));
  EXPECT_TRUE(bench.transfer.settledOnIdenticalFile());
  EXPECT_EQ(bench.processes.requests.size(), runs);
}

TEST_F(TransferTest, ASourceOneSecondNewerIsTheSameTwoSecondsNewerIsReplaced) {
  const QString target = kMusic + u"ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s;
  bench.files.put(target, QByteArray(200'000, 'm'), 999);
  EXPECT_FALSE(place(source));
  EXPECT_TRUE(bench.clock.sleeps.isEmpty());
  bench.files.put(target, QByteArray(200'000, 'm'), 1001);
  EXPECT_TRUE(place(source));
  EXPECT_EQ(bench.clock.sleeps, QList<std::chrono::milliseconds>{std::chrono::milliseconds(2000)});
  bench.files.put(target, QByteArray(200'000, 'm'), 998);
  EXPECT_TRUE(place(source));
}

TEST_F(TransferTest, NothingIsRemovedWhenTheReplacementCannotFollow) {
  const QString target = kMusic + u"ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s;
  bench.files.put(target, "older", 900);
  std::stop_source stop;
  stop.request_stop();
  bench.transfer.setStopToken(stop.get_token());
  EXPECT_FALSE(place(source));
  EXPECT_EQ(bench.files.bytes(target), "older");
  EXPECT_TRUE(bench.processes.requests.isEmpty());
}

TEST_F(TransferTest, NothingIsRemovedForASourceThatCannotBeRead) {
  const QString target = kMusic + u"ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s;
  bench.files.put(target, "older", 900);
  bench.board.replaceRecords(false, {{u"P"_s, source, {}, {}, u"N"_s}});
  bench.files.erase(source);
  EXPECT_FALSE(place(source));
  bench.files.putOther(source);
  EXPECT_FALSE(place(source));
  EXPECT_EQ(bench.files.bytes(target), "older");
  EXPECT_TRUE(bench.processes.requests.isEmpty());
  EXPECT_TRUE(bench.desktop.logged(source + u" was not copied: it cannot be read"_s));
  EXPECT_EQ(bench.board.records(false).first().songTransferFlag, u"N"_s);
}

TEST_F(TransferTest, WhyACopyFailedIsLogged) {
  bench.processes.onRun = [](const ToolRequest &) {
    return ToolResult{ToolEnding::Exited, 1, "cp: cannot open '01.mp3' for reading: Permission denied\n"};
  };
  EXPECT_FALSE(place(source));
  EXPECT_TRUE(
      bench.desktop.logged(source + u" was not copied: cp: cannot open '01.mp3' for reading: Permission denied"_s));
  bench.processes.onRun = [](const ToolRequest &) { return exited(7); };
  EXPECT_FALSE(place(source));
  EXPECT_TRUE(bench.desktop.logged(source + u" was not copied: status 7"_s));
}

TEST_F(TransferTest, WhatCannotBeRemovedIsCopiedOver) {
  const QString target = kMusic + u"ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s;
  bench.files.put(target, "older", 900);
  bench.board.replaceRecords(false, {{u"P"_s, source, {}, {}, u"N"_s}});
  bench.files.beforeOperation = [&](int) {
    if (bench.files.log().constLast() == u"sameFile "_s + source) {
      bench.files.failAt(3, FailureKind::Other); // behind the last looks at both
    }
  };
  EXPECT_TRUE(place(source));
  EXPECT_TRUE(bench.desktop.logged(target + u" could not be removed: the operation failed: "_s + target));
  EXPECT_EQ(bench.files.bytes(target).size(), 200'000);
  EXPECT_EQ(bench.board.records(false).first().songTransferFlag, u"Y"_s);
}

TEST_F(TransferTest, AnInterruptedReplacementIsFinishedWhenThatIsSoonDone) {
  const QString target = kMusic + u"ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s;
  for (const bool inThePause : {true, false}) {
    bench.files.put(target, "older", 900);
    bench.board.replaceRecords(false, {{u"P"_s, source, {}, {}, u"N"_s}});
    bench.processes.requests.clear();
    std::stop_source stop;
    bench.transfer.setStopToken(stop.get_token());
    bench.clock.onSleep = [&stop, inThePause] { inThePause ? stop.request_stop() : false; };
    bench.processes.onRun = [&stop](const ToolRequest &request) -> std::optional<ToolResult> {
      if (request.deadline != std::chrono::milliseconds(0)) {
        return std::nullopt;
      }
      stop.request_stop();
      return ToolResult{ToolEnding::Stopped, -1, {}};
    };
    EXPECT_TRUE(place(source));
    EXPECT_EQ(bench.files.bytes(target).size(), 200'000);
    EXPECT_EQ(bench.board.records(false).first().songTransferFlag, u"Y"_s);
    EXPECT_EQ(bench.processes.requests.last().arguments, (QStringList{u"-p"_s, source, target}));
    EXPECT_EQ(bench.processes.requests.last().deadline, std::chrono::milliseconds(1500));
  }
}

TEST_F(TransferTest, AnInterruptedCopyOfANewTrackIsGivenUp) {
  std::stop_source stop;
  bench.transfer.setStopToken(stop.get_token());
  bench.processes.onRun = [&stop](const ToolRequest &) -> std::optional<ToolResult> {
    stop.request_stop();
    return ToolResult{ToolEnding::Stopped, -1, {}};
  };
  EXPECT_FALSE(place(source));
  EXPECT_EQ(bench.processes.requests.size(), 1);
}

TEST_F(TransferTest, SettlesOnTheParenthesisedFormAndRecordsIt) {
  bench.files.put(kMusic + u"ABBA/Gold/(01).mp3"_s, QByteArray(200'000, 'm'), 1000);
  bench.board.replaceRecords(false, {{u"P"_s, source, {}, {}, u"N"_s}});
  EXPECT_FALSE(place(source));
  EXPECT_EQ(bench.board.records(false).first().destinationSongName, u"ABBA@@@@@Gold@@@@@(01).mp3"_s);
  EXPECT_EQ(bench.board.records(false).first().songTransferFlag, u"Y"_s);
}

TEST_F(TransferTest, SettlesOnTheFlatLevelFirst) {
  for (const QString &flat :
       {u"ABBA-Gold-Waterloo.mp3"_s, u"01.mp3"_s, u"(01).mp3"_s, u"(_ABBA_)-(Gold)-(Waterloo).mp3"_s}) {
    TransferWorkbench fresh;
    const QString song = fresh.song(u"/m/ABBA/Gold/01.mp3"_s, waterloo());
    fresh.files.put(kMusic + flat, QByteArray(200'000, 'm'), 1000);
    fresh.board.replaceRecords(false, {{u"P"_s, song, {}, {}, u"N"_s}});
    EXPECT_FALSE(fresh.transfer.transferSoundFile(song, u"ABBA-Gold-Waterloo.mp3"_s, 0, 1));
    EXPECT_EQ(fresh.board.records(false).first().destinationSongName, flat);
  }
}

TEST_F(TransferTest, FallsBackToTheOwnNameWhenTheShareRefusesTheNewOne) {
  bench.board.replaceRecords(false, {{u"P"_s, source, {}, {}, u"N"_s}});
  bench.processes.failAt(1, exited(1));
  EXPECT_TRUE(place(source));
  EXPECT_TRUE(bench.files.exists(kMusic + u"ABBA/Gold/01.mp3"_s));
  EXPECT_EQ(bench.board.records(false).first().destinationSongName, u"ABBA@@@@@Gold@@@@@01.mp3"_s);
}

TEST_F(TransferTest, TwoFailedCopiesRecordNothing) {
  bench.board.replaceRecords(false, {{u"P"_s, source, {}, {}, u"N"_s}});
  bench.processes.onRun = [](const ToolRequest &) { return exited(1); };
  EXPECT_FALSE(place(source));
  EXPECT_FALSE(bench.transfer.settledOnIdenticalFile());
  EXPECT_EQ(bench.board.records(false).first().songTransferFlag, u"N"_s);
}

TEST_F(TransferTest, ForbiddenCharactersBecomeUnderscores) {
  EXPECT_TRUE(bench.transfer.transferSoundFile(source, u"AC/DC: \"Live\".mp3"_s, 0, 1));
  EXPECT_TRUE(bench.files.exists(kMusic + u"ABBA/Gold/AC_DC_ _Live_.mp3"_s));
}

TEST_F(TransferTest, TheInvalidFlagStays) {
  EXPECT_FALSE(bench.transfer.isValidFile(u"txt"_s));
  EXPECT_TRUE(bench.transfer.isValidFile(u"MP3"_s));
  EXPECT_TRUE(bench.transfer.isSoundFileType());
  EXPECT_TRUE(bench.transfer.isInvalidFileType());
}

TEST_F(TransferTest, TheCompanionOfACopyIsRemoved) {
  bench.files.put(kMusic + u"ABBA/Gold/._ABBA-Gold-Waterloo.mp3"_s, "x");
  EXPECT_TRUE(place(source));
  EXPECT_FALSE(bench.files.exists(kMusic + u"ABBA/Gold/._ABBA-Gold-Waterloo.mp3"_s));
}

TEST_F(TransferTest, NothingIsCopiedIntoAFolderOfTheTracksName) {
  const QString folder = kMusic + u"ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s;
  bench.files.makeFolders(folder);
  bench.board.replaceRecords(false, {{u"P"_s, source, {}, {}, u"N"_s}});
  EXPECT_FALSE(place(source));
  EXPECT_TRUE(bench.musicTree().isEmpty());
  EXPECT_EQ(bench.board.records(false).first().songTransferFlag, u"N"_s);
}

TEST_F(TransferTest, ASourceOnTheShareItselfIsIdentical) {
  const QString own = bench.song(kMusic + u"ABBA/Gold/01.mp3"_s, waterloo());
  EXPECT_FALSE(place(own));
  EXPECT_TRUE(bench.transfer.settledOnIdenticalFile());
  EXPECT_TRUE(bench.files.exists(own));
  EXPECT_TRUE(bench.processes.requests.isEmpty());
}

TEST_F(TransferTest, AnotherMusicFolderIsAFailure) {
  ShareFolders folders = standardFolders();
  folders.musicFolder = u"/Klang/"_s;
  Transfer elsewhere(bench.tools, folders);
  EXPECT_THROW((void)elsewhere.transferSoundFile(source, u"n.mp3"_s, 0, 1), Failure);
  EXPECT_TRUE(bench.processes.requests.isEmpty());
}

TEST_F(TransferTest, APathOfTwoComponentsGetsNoFolder) {
  const QString top = bench.song(u"/1.mp3"_s, waterloo());
  EXPECT_TRUE(place(top));
  EXPECT_EQ(bench.musicTree(), QStringList{u"ABBA-Gold-Waterloo.mp3"_s});
}

TEST_F(TransferTest, EveryRecordOfTheFileIsMarkedAndNoOther) {
  bench.board.replaceRecords(false, {{u"P"_s, source, {}, {}, u"N"_s},
                                     {u"P"_s, u"/m/other.mp3"_s, {}, {}, u"N"_s},
                                     {u"Q"_s, source, {}, u"stale"_s, u"N"_s}});
  EXPECT_TRUE(place(source));
  const QList<PlaylistInfo> records = bench.board.records(false);
  EXPECT_EQ(records[0].destinationSongName, u"ABBA@@@@@Gold@@@@@ABBA-Gold-Waterloo.mp3"_s);
  EXPECT_EQ(records[2], (PlaylistInfo{u"Q"_s, source, {}, records[0].destinationSongName, u"Y"_s}));
  EXPECT_EQ(records[1].songTransferFlag, u"N"_s);
}

TEST_F(TransferTest, PictureRecordsKeepTheirFolderAndGetACleanName) {
  const QString picture = u"/m/A/what?.jpg"_s;
  bench.board.replaceRecords(true, {{u"P"_s, picture, {}, picture, u"N"_s}});
  bench.transfer.playlistInfoUpdate(picture, true);
  EXPECT_EQ(bench.board.records(true).first(), (PlaylistInfo{u"P"_s, picture, {}, u"/m/A/what_.jpg"_s, u"Y"_s}));
}

TEST_F(TransferTest, OnAShareThatDoesNotAnswerNothingIsTouched) {
  bench.files.setUnknown(kMountPoint.toString(), true);
  EXPECT_THROW((void)place(source), Failure);
  bench.files.setUnknown(kMountPoint.toString(), false);
  EXPECT_FALSE(bench.files.exists(kMusic.chopped(1)));
  EXPECT_TRUE(bench.processes.requests.isEmpty());
}

} // namespace sonorel::test
