#include "ConnectFixture.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

class QuitAndReopenTest : public ConnectTest {
protected:
  QuitAndReopenTest() {
    fakes.putDictionary(
        fakes.paths.preferences,
        {{u"Language"_s, u"StringsDansk"_s}, {u"ArtworkOption"_s, 1}, {u"UserFirstLaunch"_s, u"Yes"_s}});
    prepareShare();
  }
  void connectForTest() {
    connect();
    did.clear();
    pauses().clear();
  }
  TerminateReply quit() {
    const TerminateReply reply = events.applicationShouldTerminate();
    fakes.loop.runPosted();
    return reply;
  }
  void reopen(bool visible = false) {
    EXPECT_FALSE(events.applicationShouldHandleReopen(visible));
    fakes.loop.runPosted();
  }

  std::function<void()> onFirstLaunchCheck;
  ApplicationEvents events{flow,
                           parts,
                           preferences,
                           fakes.clock,
                           fakes.desktop,
                           {[this] {
                              did.append(u"performFirstLaunchCheck"_s);
                              if (onFirstLaunchCheck) {
                                onFirstLaunchCheck();
                              }
                            },
                            [this] { did.append(u"killTrackChuteAndLaunch"_s); },
                            [this] {
                              did.append(u"awaitTransfer"_s);
                              EXPECT_FALSE(sent(u"ClientDisconnected.orv"_s));
                            },
                            [this] { did.append(u"stopObservingSpaces"_s); }, [this] { return stop.get_token(); }}};
};

} // namespace

TEST_F(QuitAndReopenTest, QuitSaysGoodbyeBeforeItUnmounts) {
  connectForTest();
  bool goodbyeBeforeUnmount = false;
  QStringList images;
  fakes.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program == u"/sbin/umount"_s) {
      goodbyeBeforeUnmount = sent(u"ClientDisconnected.orv"_s);
      images.append(shown().dockImage);
    }
    return std::nullopt;
  };
  EXPECT_EQ(quit(), TerminateReply::Now);
  EXPECT_TRUE(goodbyeBeforeUnmount);
  EXPECT_EQ(images, QStringList({u"NewAppIcon"_s}));
  EXPECT_EQ(pauses(), QList<std::chrono::milliseconds>({1s, 1s, 2s, 2s}));
  EXPECT_EQ(did, QStringList({u"awaitTransfer"_s, u"stopObservingSpaces"_s}));
  EXPECT_FALSE(fakes.files.isMounted(point));
  EXPECT_EQ(fakes.loop.timerCount(), 0);
}

TEST_F(QuitAndReopenTest, QuitIsRefusedDuringATransfer) {
  connectForTest();
  beginTransfer();
  EXPECT_EQ(quit(), TerminateReply::Cancel);
  EXPECT_EQ(questions(),
            QStringList({u"Sonorel cannot quit now.|Files are still being transferred to Auracore 5. Wait "
                         u"until the transfer has finished, or cancel it, and then quit."_s}));
  EXPECT_TRUE(fakes.files.isMounted(point));
  EXPECT_EQ(shown().dockImage, u"Connect"_s);
  EXPECT_EQ(fakes.dictionary(fakes.paths.preferences).value(u"Language"_s), QVariant(u"StringsEnglish"_s));
}

TEST_F(QuitAndReopenTest, QuitWithoutAShareIsGrantedDuringATransfer) {
  beginTransfer();
  EXPECT_EQ(quit(), TerminateReply::Now);
  EXPECT_EQ(shown().dockImage, u"NewAppIcon"_s);
  EXPECT_EQ(pauses(), QList<std::chrono::milliseconds>({1s}));
}

TEST_F(QuitAndReopenTest, QuitLeavesAShareThatDoesNotAnswer) {
  connectForTest();
  fakes.files.setUnknown(point, true);
  beginTransfer();
  EXPECT_EQ(quit(), TerminateReply::Now);
  EXPECT_FALSE(fakes.files.isMounted(point)) << "a mount program would go on without the client";
  EXPECT_EQ(pauses(), QList<std::chrono::milliseconds>({1s}));
}

TEST_F(QuitAndReopenTest, UnmountThatThrowsKeepsNobodyFromQuitting) {
  connectForTest();
  fakes.files.setUnknown(point, true);
  fakes.processes.onRun = [](const ToolRequest &) -> std::optional<ToolResult> { throw Failure(u"no pipe"_s); };
  EXPECT_EQ(quit(), TerminateReply::Now);
  EXPECT_TRUE(fakes.desktop.logged(u"no pipe"_s));
}

TEST_F(QuitAndReopenTest, TransferThatASleepHasBrokenOffKeepsNobodyFromQuitting) {
  connectForTest();
  beginTransfer();
  static_cast<void>(board.abort());
  EXPECT_EQ(quit(), TerminateReply::Now);
  EXPECT_FALSE(fakes.files.isMounted(point));
}

TEST_F(QuitAndReopenTest, QuitSavesTheLanguageAndKeepsTheOtherPreferences) {
  EXPECT_EQ(quit(), TerminateReply::Now);
  EXPECT_EQ(fakes.dictionary(fakes.paths.preferences),
            QVariantMap(
                {{u"Language"_s, u"StringsEnglish"_s}, {u"ArtworkOption"_s, 0LL}, {u"UserFirstLaunch"_s, u"Yes"_s}}));
}

TEST_F(QuitAndReopenTest, QuitForgetsTheDetectedProducts) {
  fakes.change(fakes.paths.productsDetailsDictFilePath, {{u"Detected Devices"_s, QVariantList{}}});
  EXPECT_EQ(quit(), TerminateReply::Now);
  EXPECT_EQ(fakes.dictionary(fakes.paths.productsDetailsDictFilePath).keys(), QStringList({u"Selected Devices"_s}));
}

TEST_F(QuitAndReopenTest, DiskThatTakesNothingKeepsNobodyFromQuitting) {
  fakes.files.failPath(fakes.paths.preferences, FailureKind::Other);
  EXPECT_EQ(quit(), TerminateReply::Now);
  EXPECT_TRUE(fakes.desktop.logged(u"<AppController><applicationShouldTerminate>"_s));
}

TEST_F(QuitAndReopenTest, EachActionReadsTheTextsAnew) {
  const auto put = [this](const QString &key, const QString &text) {
    fakes.change(resourceFolder() + u"StringsEnglish"_s, {{key, text}});
  };
  session.setPasswordString({});
  put(u"ErrorIp"_s, u"no password"_s);
  connect();
  session.setPasswordString(u"secret"_s);
  connectForTest();
  beginTransfer();
  put(u"ErrorDisconnect2"_s, u"not now"_s);
  disconnect();
  put(u"ErrorQuit2"_s, u"not yet"_s);
  EXPECT_EQ(quit(), TerminateReply::Cancel);
  put(u"Message4"_s, u"one moment"_s);
  flow.onCancel();
  EXPECT_EQ(questions(), QStringList({u"Attention|no password"_s, u"Auracore 5 cannot be disconnected now.|not now"_s,
                                      u"Sonorel cannot quit now.|not yet"_s}));
  EXPECT_EQ(shown().messageLog, u"one moment"_s);
}

TEST_F(QuitAndReopenTest, VisibleWindowIsLeftAlone) {
  const auto before = fakes.userInterface.states.size();
  reopen(true);
  EXPECT_EQ(did, QStringList());
  EXPECT_EQ(fakes.userInterface.states.size(), before);
  EXPECT_EQ(fakes.userInterface.raises, 0);
}

TEST_F(QuitAndReopenTest, ReopenShowsTheFirstTabAndTheTrueIcon) {
  interface.selectTab(Tab::Preferences);
  reopen();
  EXPECT_EQ(shown().currentTab, 0);
  EXPECT_EQ(shown().dockImage, u"Disconnect"_s);
  EXPECT_TRUE(shown().windowVisible);
  EXPECT_EQ(did, QStringList({u"performFirstLaunchCheck"_s, u"killTrackChuteAndLaunch"_s}));
  connectForTest();
  reopen();
  EXPECT_EQ(shown().dockImage, u"Connect"_s);
  EXPECT_EQ(fakes.userInterface.raises, 2);
}

TEST_F(QuitAndReopenTest, ReopenDuringATransferShowsIt) {
  connectForTest();
  beginTransfer();
  interface.setDockIcon(u"Transfer"_s);
  fakes.loop.advance(600ms);
  reopen();
  EXPECT_EQ(shown().currentTab, 1);
  EXPECT_EQ(fakes.loop.timerCount(), 2) << "the icon goes on pulsing";
  EXPECT_EQ(did, QStringList({u"performFirstLaunchCheck"_s, u"killTrackChuteAndLaunch"_s}));
}

TEST_F(QuitAndReopenTest, FailingFirstLaunchCheckIsLoggedAndTheWindowShown) {
  onFirstLaunchCheck = [] { throw Failure(u"no disk"_s); };
  reopen();
  EXPECT_TRUE(fakes.desktop.logged(u"<AppController><applicationShouldHandleReopen> no disk"_s));
  EXPECT_EQ(fakes.userInterface.raises, 1);
}

TEST_F(QuitAndReopenTest, ClosedWindowIsHidden) {
  reopen();
  events.windowWillClose();
  fakes.loop.runPosted();
  EXPECT_FALSE(shown().windowVisible);
}
