#include "ControllerFixture.h"
#include "favourites/MainDictionary.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

const auto kMusic = u"/Volumes/VB-SHARE$/Music/Mac/"_s;
const auto kFavourites = u"/Volumes/VB-SHARE$/System/NetMusicFavorites.orv"_s;
const auto kLimits = u"/Volumes/VB-SHARE$/System/OrvSpecialFavouriteLimits.orv"_s;

class ControllerTransferTest : public ControllerTest {
protected:
  QStringList musicFiles() {
    QStringList files;
    for (const QString &path : fakes.files.tree(kMusic.chopped(1)).keys()) {
      if (!path.endsWith(u'/')) {
        files.append(path);
      }
    }
    return files;
  }
};

} // namespace

TEST_F(ControllerTransferTest, CarriesADroppedPlaylistToThePlayersFavourites) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s), song(u"Two"_s)});
  EXPECT_EQ(finished, 0U);
  carry();
  EXPECT_EQ(musicFiles().size(), 2);
  EXPECT_EQ(lists(), QStringList({u"@~Evening@~: 2"_s}));
  EXPECT_TRUE(fakes.files.exists(kSystemFolder + u"NetMusicFileCollection.orv"_s));
  EXPECT_EQ(fakes.userInterface.transfersCompleted, 1);
  EXPECT_EQ(fakes.userInterface.last().messageLog, u"The transfer has ended."_s);
  EXPECT_FALSE(fakes.userInterface.last().transferring);
  EXPECT_EQ(finished, 1U);
  EXPECT_TRUE(controller->getPlaylistArray(false).isEmpty());
}

// Whoever waits for the drop to be finished reads the state that it has left.
TEST_F(ControllerTransferTest, CountsADropAsFinishedWhenItsStateIsShownAndBeforeTheSignal) {
  UserInterfaceState shown;
  int completed = -1;
  values.dropsFinished = [&](quint32 drops) {
    finished += drops;
    shown = fakes.userInterface.last();
    completed = fakes.userInterface.transfersCompleted;
  };
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  EXPECT_TRUE(fakes.userInterface.last().transferring);
  carry();
  EXPECT_EQ(finished, 1U);
  EXPECT_EQ(shown.messageLog, u"The transfer has ended."_s);
  EXPECT_FALSE(shown.transferring);
  EXPECT_EQ(completed, 0);
  EXPECT_EQ(fakes.userInterface.transfersCompleted, 1);
}

TEST_F(ControllerTransferTest, CountsADropWithoutAConnectionAsFinishedWhenTheLookIsShown) {
  UserInterfaceState shown;
  values.dropsFinished = [&](quint32 drops) {
    finished += drops;
    shown = fakes.userInterface.last();
  };
  startConnected();
  controller->disconnect();
  fakes.loop.runPosted();
  controller->preferences();
  fakes.loop.runPosted();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  EXPECT_EQ(finished, 1U);
  EXPECT_EQ(shown.currentTab, 2);
  EXPECT_EQ(shown.dockImage, u"Disconnect"_s);
}

TEST_F(ControllerTransferTest, CopiesNothingAgainWhenTheListIsDroppedAgain) {
  startConnected();
  const QStringList songs{song(u"One"_s), song(u"Two"_s)};
  deliver(u"@~Evening@~"_s, songs);
  carry();
  fakes.processes.requests.clear();
  deliver(u"@~Evening@~"_s, songs);
  carry();
  EXPECT_FALSE(fakes.processes.programs().contains(u"/bin/cp"_s));
  EXPECT_EQ(lists(), QStringList({u"@~Evening@~: 2"_s}));
}

TEST_F(ControllerTransferTest, KeepsTheListsOverAQuitAndANewStart) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  carry();
  controller->quit();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.quitStatus, 0);
  EXPECT_FALSE(fakes.files.isMounted(kPoint));
  controller.reset();
  start();
  EXPECT_EQ(lists(), QStringList({u"@~Evening@~: 1"_s}));
  deliver(u"@~Morning@~"_s, {song(u"Two"_s)});
  carry();
  QStringList both = lists();
  both.sort();
  EXPECT_EQ(both, QStringList({u"@~Evening@~: 1"_s, u"@~Morning@~: 1"_s}));
}

TEST_F(ControllerTransferTest, RefusesToQuitDuringATransfer) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  controller->quit();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.quitStatus, std::nullopt);
  ASSERT_EQ(fakes.userInterface.questions.size(), 1);
  EXPECT_EQ(fakes.userInterface.questions.first().message, u"Sonorel cannot quit now."_s);
  carry();
  EXPECT_EQ(lists(), QStringList({u"@~Evening@~: 1"_s}));
}

TEST_F(ControllerTransferTest, ObeysTheSecondRequestOfTheSystem) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  controller->endRequested();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.quitStatus, std::nullopt);
  controller->endRequested();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.quitStatus, 0);
  EXPECT_FALSE(fakes.files.isMounted(kPoint));
  EXPECT_TRUE(fakes.userInterface.questions.isEmpty());
  fakes.files.mount(kPoint);
  EXPECT_EQ(musicFiles(), QStringList()) << "nothing was copied any more";
  EXPECT_TRUE(fakes.files.exists(kSystemFolder + u"ClientDisconnected.orv"_s));
}

TEST_F(ControllerTransferTest, EndsWithinFifteenSecondsOfTheSecondRequest) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  controller->endRequested();
  fakes.loop.runPosted();
  const auto before = fakes.clock.monotonicNow();
  controller->endRequested();
  fakes.loop.runPosted();
  EXPECT_LE(fakes.clock.monotonicNow() - before, 15s);
}

TEST_F(ControllerTransferTest, QuitWaitsForACancelledTransferBeforeItUnmounts) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  bool workerEndedFirst = false;
  fakes.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program == u"/sbin/umount"_s) {
      workerEndedFirst = !fakes.worker.hasBody();
    }
    return std::nullopt;
  };
  controller->cancel();
  controller->quit();
  fakes.loop.runPosted();
  EXPECT_TRUE(workerEndedFirst);
  EXPECT_EQ(fakes.userInterface.quitStatus, 0);
  EXPECT_EQ(finished, 1U);
  EXPECT_FALSE(fakes.files.isMounted(kPoint));
}

TEST_F(ControllerTransferTest, RefusesADropWhileCancelling) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  controller->cancel();
  fakes.loop.runPosted();
  deliver(u"@~Morning@~"_s, {song(u"Two"_s)});
  EXPECT_EQ(finished, 1U) << "the refused drop is done with";
  carry();
  EXPECT_EQ(finished, 2U);
  EXPECT_EQ(musicFiles(), QStringList());
  EXPECT_TRUE(fakes.userInterface.last().messageLog.endsWith(u"The transfer was cancelled."_s));
}

TEST_F(ControllerTransferTest, DoesNotConnectWhileATransferRuns) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  fakes.processes.requests.clear();
  controller->connect();
  fakes.loop.runPosted();
  EXPECT_FALSE(fakes.processes.programs().contains(u"/sbin/mount"_s));
  carry();
  EXPECT_EQ(lists(), QStringList({u"@~Evening@~: 1"_s}));
}

TEST_F(ControllerTransferTest, EndsAfterTheTransferWhenTheLimitsFileIsDamaged) {
  startConnected();
  fakes.files.put(kLimits, "no limits at all");
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  carry();
  EXPECT_EQ(fakes.userInterface.quitStatus, 0);
  fakes.files.mount(kPoint);
  EXPECT_EQ(lists(), QStringList({u"@~Evening@~: 1"_s})) << "what was placed is in the favourites";
  EXPECT_EQ(fakes.files.bytes(kLimits), QByteArray("no limits at all"));
}

TEST_F(ControllerTransferTest, CompletesALimitsFileThatWasCutAtTheNextConnection) {
  const QByteArray whole = "GREEN_ENABLED=1\r\nYELLOW_ENABLED=1\r\nRED_ENABLED=1\r\nBLUE_ENABLED=1\r\n"
                           "GREEN_LIMIT=50\r\nYELLOW_LIMIT=50\r\nRED_LIMIT=9\r\nBLUE_LIMIT=50\r\n";
  startConnected();
  fakes.files.put(kLimits, whole.left(20));
  fakes.files.makeFolders(u"/Users/anna/Backup/_192.168.1.20"_s);
  fakes.files.put(u"/Users/anna/Backup/_192.168.1.20/OrvSpecialFavouriteLimits.orv.next"_s, whole);
  controller->disconnect();
  fakes.loop.runPosted();
  controller->connect();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.files.bytes(kLimits), whole);
}

TEST_F(ControllerTransferTest, WritesWhatCouldNotBeWrittenAfterTheNextConnection) {
  startConnected();
  fakes.files.failPath(kFavourites, FailureKind::Unknown);
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  carry();
  const QString log = fakes.userInterface.last().messageLog;
  EXPECT_TRUE(log.startsWith(u"The favourites lists on Auracore 5 could not be written."_s)) << log.toStdString();
  EXPECT_TRUE(log.endsWith(u"\nThe transfer has ended."_s));
  fakes.files.clearFailures();
  EXPECT_EQ(lists(), QStringList());
  controller->disconnect();
  fakes.loop.runPosted();
  controller->connect();
  fakes.loop.runPosted();
  EXPECT_EQ(lists(), QStringList({u"@~Evening@~: 1"_s}));
}

TEST_F(ControllerTransferTest, LogsAFileWhoseAlbumCannotBeRead) {
  startConnected();
  const auto untagged = u"/Users/anna/Music/Untagged.mp3"_s;
  fakes.files.put(untagged, QByteArray(200'000, 'm'));
  deliver(u"@!!!Red!!!@"_s, {untagged});
  carry();
  EXPECT_TRUE(fakes.desktop.lines.contains(u"ref is null"_s));
}

TEST_F(ControllerTransferTest, SaysThatNothingIsConnected) {
  start();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  EXPECT_FALSE(fakes.worker.hasBody());
  EXPECT_EQ(finished, 1U);
  EXPECT_EQ(fakes.userInterface.last().currentTab, 2);
}
