// The driver's ways out, and what comes between a way out and its end.
#include "TransferWorkbench.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

class TransferEndingsTest : public testing::Test {
protected:
  QString song(int number) {
    TrackTags tags;
    tags.authors = QStringList{u"A"_s};
    tags.album = u"B"_s;
    tags.title = u"T%1"_s.arg(number);
    return bench.song(u"/m/A/B/%1.mp3"_s.arg(number), tags);
  }
  // Once, at the first operation that follows this one.
  void after(const QString &operation, const std::function<void()> &action) {
    bench.files.beforeOperation = [this, operation, action](int) {
      if (bench.files.log().constLast() == operation) {
        const auto now = action; // the hook goes
        bench.files.beforeOperation = nullptr;
        now();
      }
    };
  }
  void atNextOperation(const std::function<void()> &action) { after(bench.files.log().constLast(), action); }
  QStringList lastCalls(const QString &start, int count) {
    const QStringList found = bench.view.callsStartingWith(start);
    return found.mid(qMax<qsizetype>(0, found.size() - count));
  }

  TransferWorkbench bench;
};

} // namespace

TEST_F(TransferEndingsTest, ADropWhileAFullDiskIsReportedBecomesTheNextTransfer) {
  const QString later = song(2);
  bench.deliver(u"Party"_s, {song(1)});
  bench.files.setFreeBytes(kMountPoint.toString(), 0);
  after(u"presence /Volumes/VB-SHARE$/System"_s, [&] {
    bench.files.setFreeBytes(kMountPoint.toString(), FakeFileSystem::kPlenty);
    bench.deliver(u"Later"_s, {later});
  });
  bench.run();
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/A-B-T2.mp3"_s});
  EXPECT_EQ(bench.sentRecords.first().playlistName, u"Later"_s);
  EXPECT_EQ(bench.dropsFinished, 2U);
  EXPECT_EQ(bench.board.state(), TransferState::Idle);
}

TEST_F(TransferEndingsTest, ADropDuringTheCleanUpBecomesTheNextTransfer) {
  const QString later = song(2);
  bench.deliver(u"Party"_s, {song(1)});
  bench.onLimits = [&] {
    atNextOperation([&] { bench.deliver(u"Later"_s, {later}); });
    throw Failure(u"boom"_s);
  };
  bench.run();
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/A-B-T2.mp3"_s});
  EXPECT_EQ(bench.dropsFinished, 2U);
  EXPECT_EQ(bench.board.state(), TransferState::Idle);
  EXPECT_EQ(bench.view.transfersCompleted, 2);
}

TEST_F(TransferEndingsTest, TheCleanUpClearsWhatTheEndClears) {
  bench.files.put(u"/mainDict.xml"_s, "lists");
  bench.deliver(u"Party"_s, {song(1)});
  bench.onLimits = [] { throw Failure(u"boom"_s); };
  bench.run();
  EXPECT_FALSE(bench.files.exists(u"/mainDict.xml"_s));
  EXPECT_EQ(bench.board.count(), 0);
  EXPECT_TRUE(bench.board.hasRecords(false)) << "what is on the share goes out with the next transfer";
  EXPECT_EQ(bench.view.icon, u"Connect"_s);
  EXPECT_FALSE(bench.view.cancelEnabled);
  EXPECT_TRUE(bench.view.languageEnabled);
  EXPECT_EQ(bench.view.lastLog, QString()) << "no closing line";
}

TEST_F(TransferEndingsTest, AThreadThatCannotBeHadLeavesAUsableClient) {
  bench.worker.failsToStart = true;
  bench.deliver(u"Party"_s, {song(1)});
  EXPECT_EQ(bench.board.state(), TransferState::Idle);
  EXPECT_FALSE(bench.driver.isAtWork());
  EXPECT_EQ(bench.dropsFinished, 1U);
  EXPECT_TRUE(bench.view.calls.contains(
      u"alert Something went wrong|The dropped items could not be read. Please drop them again."_s));
  bench.worker.failsToStart = false;
  bench.drop(u"Party"_s, {song(2)});
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/A-B-T2.mp3"_s});
  EXPECT_EQ(bench.dropsFinished, 2U);
}

TEST_F(TransferEndingsTest, ASourceThatVanishesAtTheLastMomentIsNoFullDisk) {
  const QString gone = song(1);
  bench.deliver(u"Party"_s, {gone, song(2)});
  after(u"presence /m/A/B/1.mp3"_s, [&] { bench.files.erase(gone); });
  bench.run();
  EXPECT_EQ(bench.view.lastLog, u"\"1.mp3\" was not transferred because the file could not be found.\n"
                                "The transfer has ended."_s);
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/A-B-T2.mp3"_s});
}

TEST_F(TransferEndingsTest, ASourceThatCannotBeLookedAtIsReported) {
  const QString dark = song(1);
  bench.deliver(u"Party"_s, {dark, song(2)});
  bench.files.failPath(dark, FailureKind::Unknown);
  bench.run();
  EXPECT_EQ(bench.view.lastLog, u"\"1.mp3\" was not transferred because the file could not be found.\n"
                                "The transfer has ended."_s);
}

TEST_F(TransferEndingsTest, AMissingFileWithoutTheShareEndsWithTheList) {
  const QString gone = song(1);
  bench.deliver(u"Party"_s, {gone, song(2)});
  bench.files.erase(gone);
  bench.files.unmount(kMountPoint.toString());
  bench.clock.onSleep = [this] { bench.view.tab = Tab::Connection; }; // looked at while the ending pauses
  bench.run();
  EXPECT_EQ(bench.view.lastLog, u"The connection to the product was lost. These items were not transferred:\n"
                                "1.mp3\n2.mp3\n"_s);
  EXPECT_EQ(lastCalls(u"setDockIcon"_s, 2), (QStringList{u"setDockIcon Disconnect"_s, u"setDockIcon Disconnect"_s}));
  EXPECT_EQ(lastCalls(u"setProgressBar"_s, 2), (QStringList{u"setProgressBar 100"_s, u"setProgressBar 0"_s}));
  EXPECT_EQ(bench.view.tab, Tab::Transfer);
  EXPECT_TRUE(bench.view.calls.contains(u"windowFrontCentre"_s));
}

TEST_F(TransferEndingsTest, AnExceptionWithTheShareThereGoesOnWithTheNextItem) {
  bench.processes.onRun = [first = true](const ToolRequest &) mutable -> std::optional<ToolResult> {
    if (std::exchange(first, false)) {
      throw Failure(u"no pipe"_s);
    }
    return std::nullopt;
  };
  bench.drop(u"Party"_s, {song(1), song(2)});
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/A-B-T2.mp3"_s});
  EXPECT_TRUE(bench.desktop.lines.contains(u"Exception in ---> <AppController><transferToVaultbox> no pipe"_s));
  EXPECT_EQ(bench.sentRecords[0].songTransferFlag, u"N"_s);
  EXPECT_EQ(bench.sentRecords[1].songTransferFlag, u"Y"_s);
}

TEST_F(TransferEndingsTest, AnExceptionWithoutTheShareEndsWithTheListAndNoProgress) {
  bench.processes.onRun = [this](const ToolRequest &) -> std::optional<ToolResult> {
    bench.files.unmount(kMountPoint.toString());
    throw Failure(u"no pipe"_s);
  };
  bench.drop(u"Party"_s, {song(1), song(2)});
  EXPECT_EQ(bench.view.lastLog, u"The connection to the product was lost. These items were not transferred:\n"
                                "1.mp3\n2.mp3\n"_s);
  EXPECT_EQ(bench.view.callsStartingWith(u"setProgressBar"_s),
            (QStringList{u"setProgressBar 0"_s, u"setProgressBar 0"_s, u"setProgressBar 0"_s}));
  EXPECT_TRUE(bench.view.calls.contains(u"stopPulse"_s));
  EXPECT_EQ(bench.view.callsStartingWith(u"setDockIcon"_s),
            (QStringList{u"setDockIcon Transfer"_s, u"setDockIcon Disconnect"_s}));
}

// The failed copy is named; the share is no longer looked for.
TEST_F(TransferEndingsTest, AShareThatIsLostDuringACancelIsNotTold) {
  bench.processes.onRun = [this](const ToolRequest &) {
    bench.board.isCancel = true;
    bench.files.unmount(kMountPoint.toString());
    return exited(1);
  };
  bench.drop(u"Party"_s, {song(1), song(2)});
  EXPECT_EQ(bench.view.lastLog, u"\"1.mp3\" could not be transferred.The transfer was cancelled."_s);
}

// What cannot be carried at all is told even when nothing is carried any more.
TEST_F(TransferEndingsTest, RadioEntriesAndMissingFilesAreToldBeforeACancelOrASleepCounts) {
  const QString told = u"\" One\" was not transferred because it is a radio station.\n"
                       "\"1.mp3\" was not transferred because the file could not be found."_s;
  for (const bool sleeps : {false, true}) {
    const QString gone = song(1);
    bench.deliver(u"Party"_s, {u"@~Radio One"_s, gone, song(2)});
    bench.files.erase(gone);
    (sleeps ? bench.board.manualSleepWasConnected : bench.board.isCancel) = true;
    bench.run();
    EXPECT_EQ(bench.view.lastLog, sleeps ? told : told + u"The transfer was cancelled."_s);
    EXPECT_TRUE(bench.processes.requests.isEmpty());
  }
  EXPECT_EQ(bench.board.fileIndex, 2);
}

TEST_F(TransferEndingsTest, SleepShowsAQuietWindowAndKeepsTheRecords) {
  bench.deliver(u"Party"_s, {song(1), song(2)});
  bench.processes.onRun = [this](const ToolRequest &) -> std::optional<ToolResult> {
    bench.board.manualSleepWasConnected = true;
    return std::nullopt;
  };
  bench.run();
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/A-B-T1.mp3"_s});
  EXPECT_FALSE(bench.view.pulsing);
  EXPECT_EQ(bench.view.icon, u"Connect"_s);
  EXPECT_FALSE(bench.view.cancelEnabled);
  EXPECT_TRUE(bench.view.languageEnabled);
  EXPECT_EQ(bench.view.progress, 0);
  EXPECT_EQ(bench.board.fileIndex, 1);
  EXPECT_EQ(bench.board.records(false)[0].songTransferFlag, u"Y"_s);
  EXPECT_EQ(bench.board.records(false)[1].songTransferFlag, u"N"_s);
  EXPECT_TRUE(bench.clock.sleeps.isEmpty());
}

TEST_F(TransferEndingsTest, CopyThatASleepEndsIsTheFirstOfTheListAfterTheWake) {
  bench.deliver(u"Party"_s, {song(1), song(2), song(3)});
  int copies = 0;
  bench.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program != u"/bin/cp"_s || ++copies < 2) {
      return std::nullopt;
    }
    bench.board.manualSleepWasConnected = true;
    bench.worker.requestStop();
    return ToolResult{ToolEnding::Stopped, -1, {}};
  };
  bench.run();
  EXPECT_EQ(copies, 2) << "no further name is tried";
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/A-B-T1.mp3"_s});
  EXPECT_EQ(bench.board.fileIndex, 1);
  EXPECT_EQ(bench.view.lastLog, QString()) << "the copy was not wrong";
  EXPECT_EQ(bench.dropsFinished, 1U);
}

TEST_F(TransferEndingsTest, ShareThatGoesWithASleepIsNotLost) {
  bench.deliver(u"Party"_s, {song(1), song(2)});
  bench.processes.onRun = [this](const ToolRequest &) -> std::optional<ToolResult> {
    bench.board.manualSleepWasConnected = true;
    bench.files.unmount(kMountPoint.toString());
    throw Failure(u"no pipe"_s);
  };
  bench.run();
  EXPECT_EQ(bench.view.lastLog, QString());
  EXPECT_EQ(bench.board.fileIndex, 0);
  EXPECT_EQ(bench.board.state(), TransferState::Aborted);
  EXPECT_EQ(bench.view.transfersCompleted, 0);
}

TEST_F(TransferEndingsTest, ADropThatWaitedWhenTheMachineSleepsIsKeptForTheList) {
  const QString later = song(2);
  bench.deliver(u"Party"_s, {song(1)});
  bench.onSend = [&] {
    bench.deliver(u"Later"_s, {later});
    bench.board.manualSleepWasConnected = true;
    bench.worker.requestStop();
  };
  bench.run();
  EXPECT_EQ(bench.board.state(), TransferState::Aborted);
  EXPECT_EQ(bench.board.entriesFrom(bench.board.fileIndex), QList<QueueEntry>({{QueueEntry::Kind::Path, later, {}}}));
  EXPECT_EQ(bench.dropsFinished, 2U);
}

TEST_F(TransferEndingsTest, ADropThatWaitedWhenTheClientIsDisconnectedIsToldAndGone) {
  bench.files.put(u"/m/p.jpg"_s, "x");
  bench.deliver(u"Party"_s, {song(1)});
  bench.onSend = [&] {
    bench.deliver(u"Later"_s, {song(2), u"/m/p.jpg"_s});
    bench.board.isCancel = true;
    bench.worker.requestStop();
  };
  bench.run();
  EXPECT_EQ(bench.board.state(), TransferState::Idle);
  EXPECT_FALSE(bench.board.at(0));
  EXPECT_FALSE(bench.board.hasRecords(false));
  EXPECT_FALSE(bench.board.isCancel);
  EXPECT_FALSE(bench.board.takeVideoPresent());
  EXPECT_EQ(bench.dropsFinished, 2U);
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/A-B-T1.mp3"_s});
  EXPECT_EQ(bench.view.lastLog,
            u"The connection to the product was lost. These items were not transferred:\n2.mp3\np.jpg\n"_s);
  EXPECT_TRUE(bench.driver.takeToldOfWaitingDrop());
  EXPECT_FALSE(bench.driver.takeToldOfWaitingDrop());
}

TEST_F(TransferEndingsTest, PicturesOfAPlaylistAreNamedBeforeTheClosingLine) {
  bench.files.put(u"/m/p.jpg"_s, "x");
  bench.drop(u"N0PL@YL!ST"_s, {song(1), u"/m/p.jpg"_s});
  EXPECT_EQ(bench.view.lastLog,
            u"Pictures and videos of the dropped playlist were handled separately from the music.\n"
            "The transfer has ended."_s);
  EXPECT_FALSE(bench.board.takeVideoPresent());
}

TEST_F(TransferEndingsTest, PicturesOfACancelledPlaylistAreNotNamedByTheNextTransfer) {
  bench.files.put(u"/m/p.jpg"_s, "x");
  bench.deliver(u"N0PL@YL!ST"_s, {song(1), u"/m/p.jpg"_s});
  bench.board.isCancel = true;
  bench.run();
  EXPECT_EQ(bench.view.lastLog, u"The transfer was cancelled."_s);
  bench.drop(u"Party"_s, {song(2)});
  EXPECT_EQ(bench.view.lastLog, u"The transfer has ended."_s);
}

TEST_F(TransferEndingsTest, PicturesAreNamedByTheFirstTransferThatPlacesSomething) {
  bench.files.put(u"/m/p.jpg"_s, "x");
  bench.processes.failAt(1, exited(1));
  bench.drop(u"N0PL@YL!ST"_s, {u"/m/p.jpg"_s});
  EXPECT_EQ(bench.view.lastLog, u"\"p.jpg\" could not be transferred."_s);
  bench.drop(u"Party"_s, {song(2)});
  EXPECT_EQ(bench.view.lastLog,
            u"Pictures and videos of the dropped playlist were handled separately from the music.\n"
            "The transfer has ended."_s);
}

TEST_F(TransferEndingsTest, AClearedQueueLeavesTheProgressANumber) {
  bench.deliver(u"Party"_s, {song(1)});
  bench.processes.onRun = [this](const ToolRequest &) -> std::optional<ToolResult> {
    bench.board.clearQueue();
    return std::nullopt;
  };
  bench.run();
  EXPECT_EQ(bench.view.callsStartingWith(u"setProgressBar"_s),
            (QStringList{u"setProgressBar 0"_s, u"setProgressBar 100"_s, u"setProgressBar 0"_s}));
}

} // namespace sonorel::test
