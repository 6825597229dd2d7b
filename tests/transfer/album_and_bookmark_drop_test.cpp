// Drags of albums and of bookmarks, and opened files.
#include "TransferWorkbench.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

using Kind = QueueEntry::Kind;

QVariantMap album(const QString &name, const QStringList &paths) {
  return {{u"albumName"_s, name}, {u"draggedFiles"_s, paths}};
}

class AlbumDropTest : public testing::Test {
protected:
  void albums(const QVariantList &all) { bench.intake.handleiPhotoDragAndDrop({{}, {{u"PhotoData"_s, all}}}); }
  void bookmarks(const QStringList &titles, const QStringList &urls) {
    bench.intake.handleSafariDragAndDrop({{}, {{u"Titles"_s, titles}, {u"Urls"_s, urls}}});
  }
  QStringList items() const {
    QStringList all;
    for (const QueueEntry &entry : bench.board.entriesFrom(0)) {
      all.append(entry.item);
    }
    return all;
  }
  QStringList records() const {
    QStringList all;
    for (const PlaylistInfo &record : bench.board.records(true)) {
      all.append(record == PlaylistInfo() ? u"end"_s : record.playlistName + u' ' + record.sourceSongPath);
    }
    return all;
  }

  TransferWorkbench bench;
};

class BookmarkDropTest : public AlbumDropTest {};
class OpenedFilesTest : public AlbumDropTest {};

} // namespace

TEST_F(AlbumDropTest, EveryPictureIsQueuedAndRecordedAndAMarkerEndsTheAlbum) {
  albums({album(u"Summer"_s, {u"/p/Trip/1.jpg"_s, u"/p/Trip/2.jpg"_s}), album(u"Winter"_s, {u"/p/Ski/3.jpg"_s})});
  EXPECT_EQ(bench.board.at(0), (QueueEntry{Kind::Path, u"/p/Trip/1.jpg"_s, {}}));
  EXPECT_EQ(items(), (QStringList{u"/p/Trip/1.jpg"_s, u"/p/Trip/2.jpg"_s, u"/p/Ski/3.jpg"_s}));
  EXPECT_EQ(records(), (QStringList{u"Summer /p/Trip/1.jpg"_s, u"Summer /p/Trip/2.jpg"_s, u"end"_s,
                                    u"Winter /p/Ski/3.jpg"_s, u"end"_s}));
  EXPECT_EQ(bench.board.records(true)[0],
            (PlaylistInfo{u"Summer"_s, u"/p/Trip/1.jpg"_s, {}, u"/p/Trip/1.jpg"_s, u"N"_s}));
  EXPECT_EQ(bench.board.track(0), std::nullopt);
  EXPECT_FALSE(bench.board.takeVideoPresent());
  EXPECT_TRUE(bench.worker.hasBody());
}

TEST_F(AlbumDropTest, AlbumsWithoutFilesAreLeftOut) {
  albums({album(u"A"_s, {}), album(u"B"_s, {}), album(u"C"_s, {u"/p/T/1.jpg"_s}), album(u"D"_s, {})});
  EXPECT_EQ(records(), (QStringList{u"C /p/T/1.jpg"_s, u"end"_s}));
}

TEST_F(AlbumDropTest, ADropOfNothingStartsAnEmptyTransfer) {
  albums({album(u"A"_s, {})});
  EXPECT_EQ(bench.board.count(), 0);
  EXPECT_FALSE(bench.board.hasRecords(true));
  EXPECT_TRUE(bench.worker.hasBody());
}

TEST_F(AlbumDropTest, NamesThatAreNoAlbumsLeaveOnlyTheirMarker) {
  albums({album(u"Finder"_s, {u"/p/T/1.jpg"_s}), album(u"N0PL@YL!ST"_s, {u"/p/T/2.jpg"_s})});
  EXPECT_EQ(items(), (QStringList{u"/p/T/1.jpg"_s, u"/p/T/2.jpg"_s}));
  EXPECT_EQ(records(), (QStringList{u"end"_s, u"end"_s}));
}

TEST_F(AlbumDropTest, OddNamesStandAsTheyAre) {
  albums({album({}, {u"/p/T/1.jpg"_s}), album(u"Red"_s, {u"/p/T/1.jpg"_s}), album(u"@~X"_s, {u"/p/T/1.jpg"_s})});
  EXPECT_EQ(records(),
            (QStringList{u" /p/T/1.jpg"_s, u"end"_s, u"Red /p/T/1.jpg"_s, u"end"_s, u"@~X /p/T/1.jpg"_s, u"end"_s}));
}

TEST_F(AlbumDropTest, ARadioStationAmongPicturesIsReported) {
  albums({album(u"A"_s, {u"@~RadioX"_s})});
  EXPECT_EQ(bench.board.at(0)->kind, Kind::Radio);
}

TEST_F(AlbumDropTest, TheLibraryIsAskedOnceForAllAlbums) {
  QList<QStringList> asked;
  DropIntake::Hooks hooks{[] { return true; }, [] {}, [] {}, [](quint32) {}};
  hooks.changePhotosPaths = [&asked](const QStringList &paths) {
    asked.append(paths);
    return QStringList(paths).replaceInStrings(u"thumb"_s, u"image"_s);
  };
  DropIntake intake(bench.files, bench.board, bench.log, bench.strings, bench.session, bench.view, bench.desktop,
                    hooks);
  intake.setReady();
  intake.handleiPhotoDragAndDrop(
      {{}, {{u"PhotoData"_s, QVariantList{album(u"A"_s, {u"/thumb/1.jpg"_s}), album(u"B"_s, {u"/thumb/2.jpg"_s})}}}});
  EXPECT_EQ(asked, (QList<QStringList>{{u"/thumb/1.jpg"_s, u"/thumb/2.jpg"_s}}));
  EXPECT_EQ(items(), (QStringList{u"/image/1.jpg"_s, u"/image/2.jpg"_s}));
  EXPECT_EQ(bench.board.records(true)[0].destinationSongName, u"/image/1.jpg"_s);
  EXPECT_EQ(records(), (QStringList{u"A /image/1.jpg"_s, u"end"_s, u"B /image/2.jpg"_s, u"end"_s}));
}

// What a library's list says is as foreign as a drag.
TEST_F(AlbumDropTest, APathOfTheLibraryThatLeadsElsewhereIsNotFollowed) {
  const QStringList odd{u"relative/1.jpg"_s,   u"/Pictures/../2.jpg"_s,   u"/Pictures/./3.jpg"_s,
                        u"/Pictures//4.jpg"_s, u"/Pictures/Roll/5.jpg"_s, u"/Library/Application Support/6.jpg"_s};
  DropIntake::Hooks hooks{[] { return true; }, [] {}, [] {}, [](quint32) {}};
  hooks.changePhotosPaths = [&odd](const QStringList &) { return odd; };
  hooks.isOutside = [](const QString &path) { return !path.startsWith(u"/Library/"_s); };
  DropIntake intake(bench.files, bench.board, bench.log, bench.strings, bench.session, bench.view, bench.desktop,
                    hooks);
  intake.setReady();
  const QStringList dropped{u"/t/1.jpg"_s, u"/t/2.jpg"_s, u"/t/3.jpg"_s, u"/t/4.jpg"_s, u"/t/5.jpg"_s, u"/t/6.jpg"_s};
  intake.handleiPhotoDragAndDrop({{}, {{u"PhotoData"_s, QVariantList{album(u"A"_s, dropped)}}}});
  const QStringList kept = dropped.mid(0, 4);
  EXPECT_EQ(items(), kept + (QStringList() << u"/Pictures/Roll/5.jpg"_s << u"/t/6.jpg"_s));
  EXPECT_EQ(records().first(), u"A /t/1.jpg"_s);
}

TEST_F(AlbumDropTest, NothingIsQueuedWhileNotConnected) {
  bench.files.unmount(kMountPoint.toString());
  albums({album(u"A"_s, {u"/p/T/1.jpg"_s})});
  bookmarks({u"T"_s}, {u"http://x/"_s});
  EXPECT_EQ(bench.board.count(), 0);
  EXPECT_FALSE(bench.board.hasRecords(true));
  EXPECT_EQ(bench.view.tab, Tab::Connection);
  EXPECT_EQ(bench.view.icon, u"Disconnect"_s);
  EXPECT_EQ(bench.dropsFinished, 2U);
}

TEST_F(AlbumDropTest, ADropDuringACancelIsLostAndTold) {
  albums({album(u"A"_s, {u"/p/T/1.jpg"_s})});
  bench.board.isCancel = true;
  albums({album(u"B"_s, {u"/p/T/2.jpg"_s})});
  EXPECT_EQ(items(), QStringList{u"/p/T/1.jpg"_s});
  EXPECT_EQ(records(), (QStringList{u"A /p/T/1.jpg"_s, u"end"_s}));
  EXPECT_EQ(bench.view.lastLog,
            u"The running transfer is still being cancelled. Please drop the items again in a moment."_s);
  EXPECT_EQ(bench.dropsFinished, 1U);
}

TEST_F(AlbumDropTest, AnExceptionIsLoggedAndShown) {
  DropIntake intake(bench.files, bench.board, bench.log, bench.strings, bench.session, bench.view, bench.desktop,
                    {[]() -> bool { throw Failure(u"no answer"_s); }, [] {}, [] {}, [](quint32) {}});
  intake.setReady();
  intake.handleiPhotoDragAndDrop({});
  EXPECT_TRUE(
      bench.desktop.lines.contains(u"Exception in ---> <AppController><handleiPhotoDragAndDrop> no answer"_s));
  EXPECT_EQ(bench.view.callsStartingWith(u"alert"_s).size(), 1);
}

TEST_F(BookmarkDropTest, EachPairIsOneEntryWithItsNameAndText) {
  bookmarks({u"a/b:c"_s, u".notes"_s}, {u"http://one/"_s, u"http://two/"_s});
  EXPECT_EQ(bench.board.entriesFrom(0),
            (QList<QueueEntry>{
                {Kind::BookmarkPair, u"a_b_c.url"_s, u"[InternetShortcut]\nURL=http://one/"_s},
                {Kind::BookmarkPair, u"notes.url"_s, u"[InternetShortcut]\nURL=http://two/"_s},
            }));
  EXPECT_EQ(bench.board.places(), 4);
  EXPECT_FALSE(bench.board.hasRecords(true));
  EXPECT_TRUE(bench.view.calls.contains(u"attention"_s));
  EXPECT_TRUE(bench.worker.hasBody());
}

TEST_F(BookmarkDropTest, PairsGoUpToTheShorterList) {
  bookmarks({u"a"_s, u"b"_s}, {u"http://one/"_s});
  bookmarks({u"c"_s}, {u"http://one/"_s, u"http://two/"_s});
  bookmarks({}, {u"http://one/"_s});
  EXPECT_EQ(items(), (QStringList{u"a.url"_s, u"c.url"_s}));
}

TEST_F(BookmarkDropTest, ADropDuringACancelIsLostSilently) {
  bookmarks({u"a"_s}, {u"http://one/"_s});
  bench.board.isCancel = true;
  const QString before = bench.view.lastLog;
  bench.view.calls.clear();
  bookmarks({u"b"_s}, {u"http://two/"_s});
  EXPECT_EQ(items(), QStringList{u"a.url"_s});
  EXPECT_EQ(bench.view.calls, QStringList{u"attention"_s});
  EXPECT_EQ(bench.view.lastLog, before);
  EXPECT_EQ(bench.dropsFinished, 1U);
}

TEST_F(BookmarkDropTest, AnExceptionIsOnlyLogged) {
  DropIntake intake(bench.files, bench.board, bench.log, bench.strings, bench.session, bench.view, bench.desktop,
                    {[]() -> bool { throw Failure(u"no answer"_s); }, [] {}, [] {}, [](quint32) {}});
  intake.setReady();
  intake.handleSafariDragAndDrop({});
  EXPECT_TRUE(
      bench.desktop.lines.contains(u"Exception in ---> <AppController><handleSafariDragAndDrop> no answer"_s));
  EXPECT_TRUE(bench.view.callsStartingWith(u"alert"_s).isEmpty());
}

TEST_F(OpenedFilesTest, TheAgentIsStartedAgainAfterASecondAndNothingIsQueued) {
  QStringList did;
  DropIntake::Hooks hooks{[] { return true; }, [] {}, [&did] { did.append(u"agent"_s); }, [](quint32) {}};
  hooks.pause = [&](std::chrono::milliseconds pause) {
    did = bench.view.calls;
    did.append(u"pause %1"_s.arg(pause.count()));
  };
  DropIntake intake(bench.files, bench.board, bench.log, bench.strings, bench.session, bench.view, bench.desktop,
                    hooks);
  bench.log.append(u"old"_s);
  bench.log.show();
  bench.view.calls.clear();
  intake.openFiles();
  EXPECT_EQ(did,
            (QStringList{u"attention"_s, u"fillMessageLog "_s, u"windowFrontCentre"_s, u"pause 1000"_s, u"agent"_s}));
  EXPECT_EQ(bench.board.count(), 0);
}

} // namespace sonorel::test
