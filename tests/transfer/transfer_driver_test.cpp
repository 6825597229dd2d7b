#include "TransferWorkbench.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kDashes = QString(87, u'-') + u'\n';

class TransferDriverTest : public testing::Test {
protected:
  QString song(int number, qsizetype size = 200'000) {
    TrackTags tags;
    tags.authors = QStringList{u"A"_s};
    tags.album = u"B"_s;
    tags.title = u"T%1"_s.arg(number);
    return bench.song(u"/m/A/B/%1.mp3"_s.arg(number), tags, size);
  }

  TransferWorkbench bench;
};

} // namespace

TEST_F(TransferDriverTest, CarriesAPlaylistAndSaysSo) {
  bench.files.put(u"/mainDict.xml"_s, "lists");
  bench.drop(u"@~Party@~"_s, {song(1), song(2)});
  EXPECT_EQ(bench.musicTree().size(), 2);
  EXPECT_EQ(bench.view.lastLog, u"The transfer has ended."_s);
  EXPECT_EQ(bench.sent, (QStringList{u"music"_s, u"collections sound"_s}));
  ASSERT_EQ(bench.sentRecords.size(), 2);
  EXPECT_EQ(bench.sentRecords[0],
            (PlaylistInfo{u"@~Party@~"_s, u"/m/A/B/1.mp3"_s, {}, u"A@@@@@B@@@@@A-B-T1.mp3"_s, u"Y"_s}));
  EXPECT_EQ(bench.board.state(), TransferState::Idle);
  EXPECT_FALSE(bench.board.hasRecords(false));
  EXPECT_EQ(bench.dropsFinished, 1U);
  EXPECT_EQ(bench.view.transfersCompleted, 1);
  EXPECT_EQ(
      bench.view.callsStartingWith(u"setProgressBar"_s),
      (QStringList{u"setProgressBar 0"_s, u"setProgressBar 50"_s, u"setProgressBar 100"_s, u"setProgressBar 0"_s}));
  EXPECT_EQ(bench.view.icon, u"Connect"_s);
  EXPECT_EQ(bench.tags.reads(u"/m/A/B/1.mp3"_s), 1);
  EXPECT_FALSE(bench.files.exists(u"/mainDict.xml"_s));
}

TEST_F(TransferDriverTest, TheWindowIsToldEveryStepInItsOrder) {
  const QString only = song(1);
  bench.view.calls.clear();
  bench.drop(u"Party"_s, {only});
  EXPECT_EQ(bench.view.calls,
            (QStringList{u"attention"_s, u"fillMessageLog "_s, u"setProgressBar 0"_s, u"transferStateChanged"_s,
                         // the worker begins
                         u"selectTab 1"_s, u"transferStateChanged"_s, u"setDockIcon Transfer"_s,
                         // its item
                         u"setEnableDisableCancelBtn YES"_s, u"setHighlightCancelBtn YES"_s,
                         u"setLanguageEnabled NO"_s, u"setProgressBar 100"_s,
                         // the ending
                         u"setLanguageEnabled YES"_s, u"setProgressBar 0"_s, u"setEnableDisableCancelBtn NO"_s,
                         u"setHighlightCancelBtn NO"_s, u"setDockIcon Connect"_s,
                         // the end handler
                         u"fillMessageLog The transfer has ended."_s, u"setEnableDisableCancelBtn NO"_s,
                         u"transferStateChanged"_s, u"transferComplete"_s}));
}

TEST_F(TransferDriverTest, FavouritesThatWereNotWrittenAreToldBeforeTheClosingLine) {
  const QString told =
      u"The favourites lists on Auracore 5 could not be written. The items themselves were transferred, "
      "and their lists will be tried again with the next transfer.\n"_s;
  bench.favouritesSucceed = false;
  bench.drop(u"Party"_s, {song(1)});
  EXPECT_EQ(bench.view.lastLog, told.chopped(1) + u"\nThe transfer has ended."_s);
  EXPECT_TRUE(bench.desktop.logged(u"The favourites of this transfer could not be written."_s));
  EXPECT_FALSE(bench.board.hasRecords(false));
  bench.drop(u"Party"_s, {song(2), bench.song(u"/m/page.htm"_s, {})});
  EXPECT_TRUE(bench.view.lastLog.endsWith(u'\n' + kDashes + told + u"The transfer has ended."_s))
      << bench.view.lastLog.toStdString();
}

TEST_F(TransferDriverTest, ListsOfAnEarlierTransferAreTriedByOneWithoutPlaylists) {
  bench.playlistsWait = true;
  bench.drop(u"Radio"_s, {u"@~Radio1.mp3"_s});
  EXPECT_EQ(bench.sent.value(0), u"music"_s);
}

TEST_F(TransferDriverTest, DropThatComesAfterTheEndIsLeftToItsOwnWorker) {
  bench.view.onTransferComplete = [this] { bench.deliver(u"Late"_s, {song(2)}); };
  bench.drop(u"Party"_s, {song(1)});
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/A-B-T1.mp3"_s});
  ASSERT_TRUE(bench.worker.hasBody());
  bench.run();
  EXPECT_EQ(bench.musicTree(), (QStringList{u"A/B/A-B-T1.mp3"_s, u"A/B/A-B-T2.mp3"_s}));
  EXPECT_EQ(bench.view.transfersCompleted, 2);
}

TEST_F(TransferDriverTest, EndOfAnEarlierTransferDoesNotHideTheNextOne) {
  bench.deliver(u"Party"_s, {song(1)});
  bench.driver.startTransfer(); // waits for the first one
  EXPECT_TRUE(bench.driver.isAtWork());
  bench.run();
  EXPECT_FALSE(bench.driver.isAtWork());
}

TEST_F(TransferDriverTest, TheSameDropAgainCopiesNothing) {
  const QStringList songs{song(1), song(2)};
  bench.drop(u"Party"_s, songs);
  const qsizetype copies = bench.processes.requests.size();
  bench.drop(u"Party"_s, songs);
  EXPECT_EQ(bench.processes.requests.size(), copies);
  EXPECT_EQ(bench.view.lastLog, u"The transfer has ended."_s);
  EXPECT_EQ(bench.sentRecords.size(), 2);
}

TEST_F(TransferDriverTest, AnEmptyQueueEndsAfterASecondAndTheMetadataCalls) {
  bench.drop(u"TV Shows"_s, {song(1)});
  EXPECT_EQ(bench.clock.sleeps, QList<std::chrono::milliseconds>{std::chrono::milliseconds(1000)});
  EXPECT_EQ(bench.sent, QStringList{u"collections"_s});
  EXPECT_EQ(bench.view.lastLog, u"These items cannot be transferred."_s);
  EXPECT_EQ(bench.view.transfersCompleted, 1);
}

TEST_F(TransferDriverTest, WhatIsSkippedForItsKindOrAbsenceBringsTheLogToTheFront) {
  const QString gone = song(1);
  for (const QString &item : {u"@~Radio One"_s, gone}) {
    bench.deliver(u"Party"_s, {item});
    bench.files.removeFile(gone);
    bench.view.calls.clear();
    bench.run();
    const qsizetype told = bench.view.calls.indexOf(u"windowFrontCentre"_s);
    ASSERT_GT(told, 0) << item.toStdString();
    EXPECT_EQ(bench.view.calls.at(told - 1), u"selectTab 1"_s);
    song(1);
  }
}

TEST_F(TransferDriverTest, RadioEntriesAreOnlyReported) {
  bench.drop(u"Party"_s, {u"@~Radio One"_s, u"@~RadioTwo"_s});
  EXPECT_EQ(bench.view.lastLog, u"\" One\" was not transferred because it is a radio station.\n"
                                "\"Two\" was not transferred because it is a radio station."_s);
  EXPECT_TRUE(bench.processes.requests.isEmpty());
  EXPECT_EQ(bench.view.callsStartingWith(u"setProgressBar"_s),
            (QStringList{u"setProgressBar 0"_s, u"setProgressBar 0"_s}))
      << "the start and the ending";
}

TEST_F(TransferDriverTest, SizesAtTheBorder) {
  bench.files.put(u"/m/a.mp3"_s, QByteArray(131071, 'x'));
  bench.files.put(u"/m/b.mp3"_s, QByteArray(131072, 'x'));
  bench.files.put(u"/m/c.wav"_s, QByteArray(5242879, 'x'));
  bench.files.put(u"/m/d.wav"_s, QByteArray(5242880, 'x'));
  bench.files.put(u"/m/e.WAV"_s, QByteArray(131071, 'x'));
  bench.files.put(u"/m/f.WAV"_s, QByteArray(131072, 'x'));
  bench.files.put(u"/m/g.wav"_s, QByteArray(131071, 'x'));
  bench.drop(u"Party"_s, {u"/m/a.mp3"_s, u"/m/b.mp3"_s, u"/m/c.wav"_s, u"/m/d.wav"_s, u"/m/e.WAV"_s, u"/m/f.WAV"_s,
                          u"/m/g.wav"_s});
  EXPECT_EQ(bench.musicTree().size(), 3);
  EXPECT_EQ(bench.view.lastLog, u"\"a.mp3\" was not transferred: music files must be at least 128 KB in size.\n"
                                "\"c.wav\" was not transferred: WAV files must be at least 5 MB in size.\n"
                                "\"e.WAV\" was not transferred: music files must be at least 128 KB in size.\n"
                                "\"g.wav\" was not transferred: WAV files must be at least 5 MB in size.\n"
                                "The transfer has ended."_s);
  EXPECT_EQ(bench.view.callsStartingWith(u"windowFrontCentre"_s).size(), 4);
  EXPECT_EQ(bench.view.callsStartingWith(u"setProgressBar"_s).size(), 9) << "the start, each file and the ending";
}

TEST_F(TransferDriverTest, RejectedItemsSayWhy) {
  TrackTags lossless;
  lossless.title = u"L"_s;
  lossless.codecs = QStringList{u"Apple Lossless"_s};
  bench.song(u"/m/l.M4A"_s, lossless);
  bench.files.put(u"/m/p.m4p"_s, "x");
  bench.files.put(u"/m/t.txt"_s, "x");
  bench.drop(u"Party"_s, {u"/m/l.M4A"_s, u"/m/p.m4p"_s, u"/m/t.txt"_s});
  EXPECT_EQ(bench.view.lastLog,
            u"\"l.M4A\" was not transferred because Auracore 5 cannot play Apple Lossless files.\n"
            "\"p.m4p\" was not transferred because it is a protected file.\n"
            "\"t.txt\" was not transferred because this kind of file or bookmark is not supported."_s);
  EXPECT_EQ(bench.view.callsStartingWith(u"windowFrontCentre"_s).size(), 2);
}

TEST_F(TransferDriverTest, AMissingFileIsReportedAndTheRestGoesOn) {
  const QString gone = song(1);
  const QString there = song(2);
  bench.deliver(u"Party"_s, {gone, there});
  bench.files.removeFile(gone);
  bench.run();
  EXPECT_EQ(bench.view.lastLog, u"\"1.mp3\" was not transferred because the file could not be found.\n"
                                "The transfer has ended."_s);
  // The order of the tracks is strict: behind a missing one only the album folder is used.
  EXPECT_TRUE(bench.files.exists(kMusic + u"B/A-B-T2.mp3"_s));
}

TEST_F(TransferDriverTest, AFullDiskEndsTheTransferWithTheList) {
  const QStringList songs{song(1), song(2), u"@~RadioX"_s};
  bench.deliver(u"Party"_s, songs);
  bench.files.setFreeBytes(kMountPoint.toString(), 200'000);
  bench.run();
  EXPECT_EQ(bench.view.lastLog, u"There is not enough free space on Auracore 5. These items were not transferred:\n"
                                "1.mp3\n2.mp3\nX\n"_s);
  EXPECT_TRUE(bench.view.calls.contains(u"windowFrontCentre"_s));
  EXPECT_TRUE(bench.view.calls.contains(u"setProgressBar 100"_s));
  EXPECT_EQ(bench.sentRecords.first().songTransferFlag, u"N"_s);
}

TEST_F(TransferDriverTest, ALostShareEndsTheTransferWithTheListAndCorrectsTheIcon) {
  const QStringList songs{song(1), song(2), song(3)};
  bench.processes.onRun = [this](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program == u"/bin/cp" && request.arguments[1].endsWith(u"2.mp3"_s)) {
      bench.files.unmount(kMountPoint.toString());
      return exited(1);
    }
    return std::nullopt;
  };
  bench.drop(u"Party"_s, songs);
  EXPECT_EQ(bench.view.lastLog, u"The connection to the product was lost. These items were not transferred:\n"
                                "2.mp3\n3.mp3\n\nThe transfer has ended."_s);
  const QStringList icons = bench.view.callsStartingWith(u"setDockIcon"_s);
  EXPECT_EQ(icons.mid(icons.size() - 2), (QStringList{u"setDockIcon Connect"_s, u"setDockIcon Disconnect"_s}));
  EXPECT_EQ(bench.sentRecords[0].songTransferFlag, u"Y"_s);
  EXPECT_EQ(bench.sentRecords[1].songTransferFlag, u"N"_s);
  EXPECT_TRUE(bench.files.tree(u"/Volumes/VB-SHARE$"_s).isEmpty());
}

TEST_F(TransferDriverTest, AShareThatIsOnlyRememberedIsLost) {
  bench.processes.onRun = [this](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program == u"/bin/cp" && request.arguments[1].endsWith(u"2.mp3"_s)) {
      bench.files.setRemembered(kMountPoint.toString(), true);
      return exited(1);
    }
    return std::nullopt;
  };
  bench.drop(u"Party"_s, {song(1), song(2), song(3)});
  EXPECT_EQ(bench.view.lastLog, u"The connection to the product was lost. These items were not transferred:\n"
                                "2.mp3\n3.mp3\n\nThe transfer has ended."_s)
      << "neither is the disk full nor has one track failed";
}

TEST_F(TransferDriverTest, TheShareUnmountedBetweenTwoTracksLeavesNothingBelowItsPoint) {
  const QStringList songs{song(1), song(2)};
  bench.processes.onRun = [this, first = true](const ToolRequest &request) mutable -> std::optional<ToolResult> {
    if (request.program == u"/bin/cp" && std::exchange(first, false)) {
      const ToolResult copied = bench.processes.run(request, {});
      bench.files.unmount(kMountPoint.toString());
      return copied;
    }
    return std::nullopt;
  };
  bench.drop(u"Party"_s, songs);
  EXPECT_TRUE(bench.files.tree(u"/Volumes/VB-SHARE$"_s).isEmpty());
  EXPECT_TRUE(bench.view.lastLog.startsWith(u"The connection to the product was lost."_s));
  EXPECT_EQ(bench.sentRecords[1].songTransferFlag, u"N"_s);
}

TEST_F(TransferDriverTest, AFailedCopyIsNamedAndNotCalledDone) {
  bench.processes.onRun = [](const ToolRequest &) { return exited(1); };
  bench.drop(u"Party"_s, {song(1), song(2)});
  EXPECT_EQ(bench.view.lastLog,
            u"\"1.mp3\" could not be transferred.\n"_s + kDashes + u"\"2.mp3\" could not be transferred."_s);
  EXPECT_EQ(bench.sent.last(), u"collections"_s);
}

TEST_F(TransferDriverTest, CancelStopsBeforeTheNextItem) {
  bench.processes.onRun = [this](const ToolRequest &) -> std::optional<ToolResult> {
    bench.board.isCancel = true;
    return std::nullopt;
  };
  bench.drop(u"Party"_s, {song(1), song(2)});
  EXPECT_EQ(bench.musicTree().size(), 1);
  EXPECT_EQ(bench.view.lastLog, u"The transfer was cancelled."_s);
  EXPECT_TRUE(bench.clock.sleeps.isEmpty());
  EXPECT_EQ(bench.sentRecords[0].songTransferFlag, u"Y"_s);
  EXPECT_FALSE(bench.view.cancelEnabled);
}

TEST_F(TransferDriverTest, SleepEndsTheWorkerAndKeepsTheQueue) {
  bench.deliver(u"Party"_s, {song(1)});
  bench.board.manualSleepWasConnected = true;
  bench.run();
  EXPECT_FALSE(bench.board.transferComplete());
  EXPECT_FALSE(bench.board.isCarrying());
  EXPECT_EQ(bench.view.calls.constLast(), u"transferStateChanged"_s);
  EXPECT_EQ(bench.board.count(), 1);
  EXPECT_TRUE(bench.sent.isEmpty());
  EXPECT_EQ(bench.view.transfersCompleted, 0);
  EXPECT_EQ(bench.dropsFinished, 1U);
}

TEST_F(TransferDriverTest, LimitsAreEnabledWhileOneTrackHasBeenMatched) {
  bench.files.put(u"/m/x.txt"_s, "x");
  bench.drop(u"Party"_s, {song(1), u"/m/x.txt"_s, song(2), u"/m/x.txt"_s});
  EXPECT_EQ(bench.limitsEnabled, 2);
}

TEST_F(TransferDriverTest, ADropDuringTheEndingBecomesTheNextTransfer) {
  const QString second = song(2);
  bench.deliver(u"Party"_s, {song(1)});
  bench.onSend = [this, second] { bench.deliver(u"Later"_s, {second}); };
  bench.run();
  EXPECT_EQ(bench.musicTree().size(), 2);
  EXPECT_EQ(bench.sentRecords.first().playlistName, u"Later"_s);
  EXPECT_EQ(bench.dropsFinished, 2U);
  EXPECT_EQ(bench.board.state(), TransferState::Idle);
}

TEST_F(TransferDriverTest, AnEscapingExceptionLeavesAUsableClient) {
  bench.deliver(u"Party"_s, {song(1)});
  bench.onSend = [this] { throw Failure(u"boom"_s); };
  bench.run();
  EXPECT_TRUE(bench.desktop.lines.contains(u"Exception in ---> <AppController><transferToVaultbox> boom"_s));
  EXPECT_EQ(bench.board.state(), TransferState::Idle);
  EXPECT_EQ(bench.dropsFinished, 1U);
  bench.drop(u"Party"_s, {song(2)});
  EXPECT_EQ(bench.view.lastLog, u"The transfer has ended."_s);
}

TEST_F(TransferDriverTest, TenThousandTracksAreReadOnceEach) {
  QStringList songs;
  for (int i = 0; i < 10'000; ++i) {
    songs.append(song(i, 131'072));
  }
  bench.processes.onRun = [](const ToolRequest &) { return exited(0); };
  bench.drop(u"Party"_s, songs);
  EXPECT_TRUE(
      std::all_of(songs.begin(), songs.end(), [this](const QString &path) { return bench.tags.reads(path) == 1; }));
  EXPECT_EQ(bench.sentRecords.size(), 10'000);
  EXPECT_EQ(bench.sentRecords.last().songTransferFlag, u"Y"_s);
}

TEST_F(TransferDriverTest, ATrackCostsTheSameInALongDrop) {
  const auto operationsOf = [](int count) {
    TransferWorkbench one;
    QStringList songs;
    for (int i = 0; i < count; ++i) {
      songs.append(one.song(u"/m/A/B/%1.mp3"_s.arg(i), {}, 131'072));
    }
    one.processes.onRun = [](const ToolRequest &) { return exited(0); };
    const int before = one.files.operations();
    one.drop(u"Party"_s, songs);
    return one.files.operations() - before;
  };
  EXPECT_EQ(operationsOf(1100) - operationsOf(1000), 10 * (operationsOf(20) - operationsOf(10)));
}

} // namespace sonorel::test
