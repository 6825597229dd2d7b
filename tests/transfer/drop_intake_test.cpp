#include "TransferWorkbench.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

class DropIntakeTest : public testing::Test {
protected:
  QString file(const QString &path) {
    bench.files.put(path, "x");
    return path;
  }
  QStringList names() const {
    QStringList all;
    for (const PlaylistInfo &record : bench.board.records(false)) {
      all.append(record.playlistName + u' ' + record.sourceSongPath);
    }
    return all;
  }

  TransferWorkbench bench;
};

} // namespace

TEST_F(DropIntakeTest, ADroppedTrackIsQueuedAndRecorded) {
  bench.deliver(u"Party"_s, {file(u"/m/1.mp3"_s)});
  EXPECT_EQ(bench.board.at(0), (QueueEntry{QueueEntry::Kind::Path, u"/m/1.mp3"_s, {}}));
  EXPECT_EQ(bench.board.track(0), u"/m/1.mp3"_s);
  EXPECT_EQ(bench.board.records(false), (QList<PlaylistInfo>{{u"Party"_s, u"/m/1.mp3"_s, {}, {}, u"N"_s}}));
  EXPECT_EQ(bench.board.state(), TransferState::Running);
  EXPECT_TRUE(bench.worker.hasBody());
}

TEST_F(DropIntakeTest, APlaylistDroppedTwiceHasOneSetOfRecordsColoursAccumulate) {
  const QStringList songs{file(u"/m/1.mp3"_s)};
  bench.deliver(u"Party"_s, songs);
  bench.deliver(u"Party"_s, songs);
  bench.deliver(u"@!!!Red!!!@"_s, songs);
  bench.deliver(u"@!!!Red!!!@"_s, songs);
  bench.deliver(u"N0PL@YL!ST"_s, songs);
  bench.deliver(u"N0PL@YL!ST"_s, songs);
  EXPECT_EQ(names(), (QStringList{u"Party /m/1.mp3"_s, u"@!!!Red!!!@ /m/1.mp3"_s, u"@!!!Red!!!@ /m/1.mp3"_s,
                                  u"N0PL@YL!ST /m/1.mp3"_s, u"N0PL@YL!ST /m/1.mp3"_s}));
}

TEST_F(DropIntakeTest, APlaylistWithoutANameReplacesItselfToo) {
  bench.deliver({}, {file(u"/m/1.mp3"_s)});
  bench.deliver({}, {file(u"/m/1.mp3"_s)});
  EXPECT_EQ(names(), QStringList{u" /m/1.mp3"_s});
}

TEST_F(DropIntakeTest, APlaylistDroppedAgainWithoutTracksIsForgotten) {
  bench.deliver(u"Party"_s, {file(u"/m/1.mp3"_s)});
  bench.deliver(u"Party"_s, {u"/m/gone.mp3"_s});
  EXPECT_FALSE(bench.board.hasRecords(false));
  EXPECT_EQ(bench.board.count(), 1) << "what was queued before is still carried";
}

TEST_F(DropIntakeTest, SourcesThatCannotBeTransferredStartAnEmptyTransfer) {
  for (const QString &name : {u"TV Shows"_s, u"iPod Games"_s, u"N0PL@YL!ST"_s}) {
    TransferWorkbench fresh;
    fresh.files.put(u"/m/1.mp3"_s, "x");
    fresh.deliver(name, name == u"N0PL@YL!ST" ? QStringList() : QStringList{u"/m/1.mp3"_s});
    EXPECT_EQ(fresh.view.lastLog, u"These items cannot be transferred."_s);
    EXPECT_TRUE(fresh.view.calls.contains(u"windowFrontCentre"_s));
    EXPECT_EQ(fresh.board.count(), 0);
    EXPECT_TRUE(fresh.worker.hasBody()) << name.toStdString();
  }
}

TEST_F(DropIntakeTest, EveryDragAsksForAttentionAndClearsAnOldLog) {
  bench.log.append(u"old"_s);
  bench.log.show();
  bench.deliver(u"Party"_s, {file(u"/m/1.mp3"_s)});
  EXPECT_TRUE(bench.view.calls.contains(u"attention"_s));
  EXPECT_EQ(bench.view.lastLog, QString());
  bench.log.append(u"running"_s);
  bench.log.show();
  bench.deliver(u"Party"_s, {u"/m/1.mp3"_s});
  EXPECT_EQ(bench.view.lastLog, u"running"_s) << "the log of a running transfer stays";
}

TEST_F(DropIntakeTest, ADropThatStartsATransferTakesAnOldCancelBack) {
  bench.board.isCancel = true;
  bench.deliver(u"Party"_s, {file(u"/m/1.mp3"_s)});
  EXPECT_FALSE(bench.board.isCancel);
  EXPECT_EQ(bench.view.progress, 0);
  EXPECT_TRUE(bench.worker.hasBody());
}

TEST_F(DropIntakeTest, PicturesOfANamedPlaylistMakeAnAlbum) {
  bench.deliver(u"@~Jazz"_s, {file(u"/m/A/p.JPG"_s)});
  EXPECT_EQ(bench.board.records(true),
            (QList<PlaylistInfo>{{u"@~Jazz"_s, u"/m/A/p.JPG"_s, {}, u"/m/A/p.JPG"_s, u"N"_s}, {}}));
  EXPECT_TRUE(bench.board.takeVideoPresent());
}

TEST_F(DropIntakeTest, PictureAlbumNamesByProductAndColour) {
  bench.session.setDeviceName(u"Vaultbox 1"_s);
  bench.deliver(u"@~Jazz"_s, {file(u"/m/p.jpg"_s)});
  bench.deliver(u"@!!!Blue!!!@"_s, {u"/m/p.jpg"_s});
  EXPECT_EQ(bench.board.records(true)[0].playlistName, u"Jazz"_s);
  EXPECT_EQ(bench.board.records(true)[2].playlistName, u"Blue"_s);
}

TEST_F(DropIntakeTest, Auralis5TakesFramedNamesWithoutAPlaylist) {
  bench.session.setDeviceName(u"Auralis 5"_s);
  bench.deliver(u"@~Jazz@~"_s, {file(u"/m/1.mp3"_s), file(u"/m/p.jpg"_s)});
  EXPECT_EQ(names(), QStringList{u"N0PL@YL!ST /m/1.mp3"_s});
  EXPECT_FALSE(bench.board.hasRecords(true));
  EXPECT_TRUE(bench.board.takeVideoPresent());
}

TEST_F(DropIntakeTest, FinderPathsAreQueuedWithoutACheck) {
  bench.deliver(u"Finder"_s, {u"/none.mp3"_s, file(u"/m/1.mp3"_s)});
  EXPECT_EQ(bench.board.count(), 2);
  EXPECT_FALSE(bench.board.hasRecords(false));
}

TEST_F(DropIntakeTest, MissingFilesAreLeftOutRadioIsQueued) {
  bench.deliver(u"Party"_s, {u"/none.mp3"_s, u"@~RadioX"_s});
  EXPECT_EQ(bench.board.count(), 1);
  EXPECT_EQ(bench.board.at(0)->kind, QueueEntry::Kind::Radio);
}

TEST_F(DropIntakeTest, NothingIsQueuedWhileNotConnected) {
  bench.files.unmount(kMountPoint.toString());
  bench.view.progress = 50;
  bench.deliver(u"Party"_s, {file(u"/m/1.mp3"_s)});
  EXPECT_EQ(bench.board.count(), 0);
  EXPECT_EQ(bench.view.progress, 0);
  EXPECT_TRUE(bench.view.calls.contains(u"windowFrontCentre"_s));
  EXPECT_EQ(bench.view.tab, Tab::Connection);
  EXPECT_EQ(bench.view.icon, u"Disconnect"_s);
  EXPECT_EQ(bench.dropsFinished, 1U);
}

TEST_F(DropIntakeTest, ADropDuringACancelIsLostWhole) {
  bench.deliver(u"Party"_s, {file(u"/m/1.mp3"_s)});
  bench.board.isCancel = true;
  bench.deliver(u"Party"_s, {file(u"/m/2.mp3"_s)});
  EXPECT_EQ(names(), QStringList{u"Party /m/1.mp3"_s});
  EXPECT_EQ(bench.view.lastLog,
            u"The running transfer is still being cancelled. Please drop the items again in a moment."_s);
  EXPECT_TRUE(bench.view.calls.contains(u"windowFrontCentre"_s));
  EXPECT_EQ(bench.dropsFinished, 1U);
}

TEST_F(DropIntakeTest, DropsBeforeTheStartIsOverWait) {
  TransferWorkbench early;
  DropIntake intake(early.files, early.board, early.log, early.strings, early.session, early.view, early.desktop,
                    {[] { return true; }, [] {}, [] {}, [](quint32) {}});
  early.files.put(u"/m/1.mp3"_s, "x");
  intake.handleiTunesDragAndDrop({u"Party"_s, {{u"draggedFiles"_s, QStringList{u"/m/1.mp3"_s}}}});
  EXPECT_EQ(early.board.count(), 0);
  intake.setReady();
  EXPECT_EQ(early.board.count(), 1);
}

TEST_F(DropIntakeTest, AnExceptionIsLoggedAndShown) {
  DropIntake intake(bench.files, bench.board, bench.log, bench.strings, bench.session, bench.view, bench.desktop,
                    {[]() -> bool { throw Failure(u"no answer"_s); }, [] {}, [] {}, [](quint32) {}});
  intake.setReady();
  intake.handleiTunesDragAndDrop({u"Party"_s, {}});
  EXPECT_TRUE(
      bench.desktop.lines.contains(u"Exception in ---> <AppController><handleiTunesDragAndDrop> no answer"_s));
  EXPECT_TRUE(bench.view.calls.contains(
      u"alert Something went wrong|The dropped items could not be read. Please drop them again."_s));
}

} // namespace sonorel::test
