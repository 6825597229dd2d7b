#include "transfer/TrackArtwork.h"

#include "TransferWorkbench.h"
#include "support/FakeRunningApplications.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kBundle = u"/Applications/Sonorel/Sonorel.app"_s;
const QString kAppData = u"/Applications/Sonorel/App Data/"_s;
const QString kHandOver = u"/Library/Application Support/Sonorel/ArtworkData.txt"_s;
const QString kTrack = u"/m/ABBA/Gold/01.mp3"_s;

class TrackArtworkTest : public testing::Test {
protected:
  TrackArtworkTest() {
    bench.files.makeFolders(u"/Library/Application Support/Sonorel"_s);
    TrackTags tags;
    tags.title = u"Waterloo"_s;
    bench.song(kTrack, tags);
  }
  void playerRuns() { applications.applications.push_back({u"iTunes"_s, u"/Applications/Player"_s, {}, 0}); }
  void place(const QString &track = kTrack, const QString &name = u"ABBA-Gold-Waterloo.mp3"_s,
             bool hierarchy = true) {
    artwork.transferStandAloneArtwork(track, name, hierarchy, stop.get_token());
  }
  QStringList lastArguments() const {
    return bench.processes.requests.isEmpty() ? QStringList() : bench.processes.requests.last().arguments;
  }
  QStringList lastPlace() const { return lastArguments().mid(3); } // name and folder argument

  TransferWorkbench bench;
  FakeRunningApplications applications;
  std::stop_source stop;
  TrackArtwork artwork{bench.tools,       applications,
                       bench.strings,     bench.view,
                       standardFolders(), {kBundle, kAppData, kHandOver, artworkTemporaryName(u"0123abcd"_s)}};
};

} // namespace

TEST_F(TrackArtworkTest, ThePictureIsExportedIntoTheTracksFolder) {
  playerRuns();
  place();
  ASSERT_EQ(bench.processes.programs(), QStringList{u"/usr/bin/osascript"_s});
  EXPECT_EQ(lastArguments(), (QStringList{kAppData + u"SaveToFolder_jpegonly.scpt"_s, kTrack, u"Waterloo"_s,
                                          u"ABBA-Gold-Waterloo"_s, u"ABBA:Gold:"_s}));
  EXPECT_EQ(bench.files.bytes(kHandOver), QByteArray("Waterloo\nABBA-Gold-Waterloo\n/m/ABBA/Gold/01.mp3"));
  EXPECT_GT(bench.processes.requests.last().deadline.count(), 0);
  EXPECT_TRUE(bench.view.asked.empty());
}

TEST_F(TrackArtworkTest, WithoutAHierarchyItLandsInTheMusicFolder) {
  playerRuns();
  bench.files.put(kMusic + u"._x.jpg"_s, "x");
  bench.files.put(kMusic + u"ABBA/Gold/._x.jpg"_s, "x");
  place(kTrack, u"x.mp3"_s, false);
  EXPECT_EQ(lastPlace(), (QStringList{u"x"_s, QString()}));
  EXPECT_FALSE(bench.files.exists(kMusic + u"._x.jpg"_s));
  EXPECT_TRUE(bench.files.exists(kMusic + u"ABBA/Gold/._x.jpg"_s));
}

TEST_F(TrackArtworkTest, TheFolderFollowsTheComponentsOfThePath) {
  playerRuns();
  place(bench.song(u"/Gold: 1/01.mp3"_s, {}), u"x.mp3"_s);
  EXPECT_EQ(lastPlace(), (QStringList{u"x"_s, u"Gold_ 1:"_s}));
  place(bench.song(u"/01.mp3"_s, {}), u"x.mp3"_s);
  EXPECT_EQ(lastPlace(), (QStringList{u"x"_s, QString()}));
}

TEST_F(TrackArtworkTest, TheCompanionOfThePictureIsRemovedAfterASuccess) {
  playerRuns();
  const QString companion = kMusic + u"ABBA/Gold/._x.jpg"_s;
  bench.files.put(companion, "x");
  bench.processes.failAt(1, exited(1));
  place(kTrack, u"x.mp3"_s);
  EXPECT_TRUE(bench.files.exists(companion));
  place(kTrack, u"x.mp3"_s);
  EXPECT_FALSE(bench.files.exists(companion));
}

TEST_F(TrackArtworkTest, AFullStopInTheNameIsNoExtension) {
  playerRuns();
  place(kTrack, u"Mr. Blue (feat. X).mp3"_s);
  EXPECT_EQ(lastPlace().value(0), u"Mr. Blue (feat. X)"_s);
}

TEST_F(TrackArtworkTest, LongNamesLoseTheirFoldersAndThenTheirFirstParts) {
  playerRuns();
  const QString longTitle = u'(' + QString(205, u'x') + u')'; // with "ABBA/Gold/" 217, with one more folder too long
  place(kTrack, longTitle + u".mp3"_s);
  EXPECT_EQ(lastPlace(), (QStringList{longTitle, u"ABBA:Gold:"_s}));
  const QString longer = u'(' + QString(212, u'x') + u')';
  place(kTrack, longer + u".mp3"_s);
  EXPECT_EQ(lastPlace(), (QStringList{longer, u"Gold:"_s}));
  place(kTrack, u"(Mr. X)-("_s + QString(230, u'.') + u").mp3"_s);
  EXPECT_EQ(lastPlace(), (QStringList{u'(' + QString(218, u'.') + u')', QString()}));
}

TEST_F(TrackArtworkTest, ATrackWithoutArtworkIsOnlyLogged) {
  playerRuns();
  bench.processes.failAt(1, exited(1));
  place();
  EXPECT_EQ(bench.desktop.lines, QStringList{u"script unsuccessful.."_s});
}

TEST_F(TrackArtworkTest, WhatCannotBeRemovedBesideIsLoggedAndWhatIsNotThereIsNot) {
  playerRuns();
  place(kTrack, u"x.mp3"_s, false);
  EXPECT_EQ(bench.desktop.lines, QStringList());
  bench.files.failPath(kMusic + u"._x.jpg"_s, FailureKind::Other);
  place(kTrack, u"x.mp3"_s, false);
  EXPECT_TRUE(bench.desktop.logged(kMusic + u"._x.jpg could not be removed: "_s));
}

TEST_F(TrackArtworkTest, WhatAKilledScriptLeftIsRemoved) {
  playerRuns();
  const QString left = kMusic + u"ABBA/Gold/.sonorel-0123abcd-artwork"_s;
  for (const ToolResult &killed : {exited(137), ToolResult{ToolEnding::DeadlinePassed, 137, {}}}) {
    bench.files.put(left, "half");
    bench.processes.failAt(1, killed);
    place();
    EXPECT_FALSE(bench.files.exists(left));
  }
  for (const ToolResult &ended : {exited(1), ToolResult{ToolEnding::Stopped, 137, {}}}) {
    bench.files.put(left, "half"); // the program is about to end, or the script has tidied up itself
    bench.processes.failAt(1, ended);
    place();
    EXPECT_TRUE(bench.files.exists(left));
  }
}

TEST_F(TrackArtworkTest, TheTemporaryNameCarriesTheMarkOfTheClient) {
  EXPECT_EQ(artworkTemporaryName(u"0123abcd"_s), u".sonorel-0123abcd-artwork"_s);
  EXPECT_EQ(artworkTemporaryName({}), QString());
}

TEST_F(TrackArtworkTest, AHandOverFileThatCannotBeWrittenIsOnlyLogged) {
  playerRuns();
  bench.files.failPath(kHandOver, FailureKind::Other);
  place();
  EXPECT_TRUE(bench.processes.requests.isEmpty());
  ASSERT_EQ(bench.desktop.lines.size(), 1);
  EXPECT_TRUE(bench.desktop.lines[0].startsWith(u"The artwork of /m/ABBA/Gold/01.mp3 could not be placed: "_s));
}

TEST_F(TrackArtworkTest, EmbeddingRunsItsOwnScript) {
  bench.processes.failAt(1, exited(1));
  artwork.embedArtworkToTrack(kTrack, stop.get_token());
  EXPECT_EQ(lastArguments(), (QStringList{kAppData + u"Embed Artwork.scpt"_s, kTrack, u"Waterloo"_s}));
  EXPECT_EQ(bench.desktop.lines, QStringList{u"script unsuccessful.."_s});
}

TEST_F(TrackArtworkTest, ThisApplicationItselfIsNoPlayer) {
  applications.applications = {{u"iTunes"_s, kBundle, {}, 0}, {u"Other"_s, u"/Other"_s, {}, 0}};
  EXPECT_FALSE(artwork.isApplicationRunning(u"iTunes"_s));
  EXPECT_TRUE(artwork.isApplicationRunning(u"Other"_s));
  EXPECT_FALSE(artwork.isApplicationRunning(u"itunes"_s));
}

TEST_F(TrackArtworkTest, WithoutThePlayerTheUserIsAsked) {
  bench.clock.onSleep = [this] {
    ASSERT_EQ(bench.view.asked.size(), 1U);
    EXPECT_EQ(bench.view.asked.front().message, u"Sonorel"_s);
    EXPECT_EQ(bench.view.asked.front().informativeText,
              u"The music player is needed to copy the album artwork, but it is not running. "
              "Do you want to open it now?"_s);
    EXPECT_EQ(bench.view.asked.front().buttons, (QStringList{u"Open the player"_s, u"Continue without artwork"_s}));
    bench.view.answer(0);
  };
  place();
  EXPECT_EQ(bench.processes.requests.size(), 1);
  place();
  EXPECT_EQ(bench.view.callsStartingWith(u"ask"_s).size(), 2) << "still not running: asked again";
}

TEST_F(TrackArtworkTest, ANoHoldsForEveryLaterTrack) {
  bench.view.autoAnswer = 1;
  place();
  place();
  EXPECT_EQ(bench.view.callsStartingWith(u"ask"_s).size(), 1);
  EXPECT_TRUE(bench.processes.requests.isEmpty());
  playerRuns();
  place();
  EXPECT_EQ(bench.processes.requests.size(), 1) << "the player runs by now";
}

TEST_F(TrackArtworkTest, AnyOtherAnswerLeavesThisTrackOut) {
  bench.view.autoAnswer = -1;
  place();
  EXPECT_TRUE(bench.processes.requests.isEmpty());
  place();
  EXPECT_EQ(bench.view.callsStartingWith(u"ask"_s).size(), 2);
}

TEST_F(TrackArtworkTest, ACancelASleepOrAnEndCloseTheWait) {
  const std::vector<std::function<void()>> ends{[this] { bench.board.isCancel = true; },
                                                [this] { bench.board.manualSleepWasConnected = true; },
                                                [this] { stop.request_stop(); }};
  for (const auto &end : ends) {
    bench.board.isCancel = false;
    bench.board.manualSleepWasConnected = false;
    bench.clock.sleeps.clear();
    bench.clock.onSleep = [&] {
      ASSERT_LE(bench.clock.sleeps.size(), 3);
      if (bench.clock.sleeps.size() == 3) {
        end();
      }
    };
    place();
    EXPECT_EQ(bench.clock.sleeps.size(), 3);
    EXPECT_TRUE(bench.processes.requests.isEmpty());
    EXPECT_TRUE(bench.view.asked.empty()) << "nobody waits for an answer any more";
  }
}

} // namespace sonorel::test
