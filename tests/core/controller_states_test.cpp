// What is asked of the client in a state that does not expect it.
#include "ControllerFixture.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

class ControllerStatesTest : public ControllerTest {
protected:
  UserInterfaceState shown() { return fakes.userInterface.last(); }
  qsizetype mounts() { return fakes.processes.programs().count(u"/sbin/mount"_s); }
  void expectOneMountAndAnotherForALaterConnect() {
    EXPECT_EQ(mounts(), 1);
    EXPECT_TRUE(shown().connected);
    controller->connect();
    fakes.loop.runPosted();
    EXPECT_EQ(mounts(), 2);
  }
  // Runs what is asked while the controller's thread is in a pause: it waits for its turn.
  void atThePause(const std::function<void()> &asked) {
    fakes.clock.onSleep = [this, asked] {
      const auto now = asked; // the hook goes
      fakes.clock.onSleep = {};
      now();
    };
  }
  void failMounts(int times) {
    fakes.processes.mountAnswers.insert(fakes.processes.mountAnswers.end(), times, MountAnswer{1, "no route", false});
  }
};

} // namespace

TEST_F(ControllerStatesTest, TwoConnectsAtOnceAreOne) {
  startConnected();
  controller->disconnect();
  fakes.loop.runPosted();
  fakes.processes.requests.clear();
  controller->connect();
  controller->connect();
  fakes.loop.runPosted();
  expectOneMountAndAnotherForALaterConnect();
}

TEST_F(ControllerStatesTest, ConnectPressedBesideAPasswordIsTheSameConnect) {
  selectProduct({});
  start();
  ASSERT_TRUE(shown().passwordWanted);
  controller->enterPassword(u"secret"_s);
  controller->connect();
  fakes.loop.runPosted();
  expectOneMountAndAnotherForALaterConnect();
}

TEST_F(ControllerStatesTest, ConnectThatFailsDoesNotBlockTheNext) {
  startConnected();
  controller->disconnect();
  fakes.loop.runPosted();
  fakes.processes.requests.clear();
  fakes.processes.onRun = [](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program == u"/sbin/mount"_s) {
      throw Failure(u"no pipe"_s);
    }
    return std::nullopt;
  };
  controller->connect();
  fakes.loop.runPosted();
  EXPECT_FALSE(shown().connected);
  fakes.processes.onRun = {};
  controller->connect();
  fakes.loop.runPosted();
  EXPECT_TRUE(shown().connected);
}

TEST_F(ControllerStatesTest, DropWhileConnectingIsCarriedAfterwards) {
  selectProduct(u"p@ss"_s);
  failMounts(1);
  const QString one = song(u"One"_s);
  atThePause([this, one] { fakes.loop.post([this, one] { deliver(u"@~Evening@~"_s, {one}); }); });
  start();
  ASSERT_TRUE(shown().connected);
  EXPECT_TRUE(fakes.worker.hasBody());
  carry();
  EXPECT_TRUE(fakes.files.exists(u"/Volumes/VB-SHARE$/Music/Mac/anna/Music/The Band-The Album-One.mp3"_s));
  EXPECT_EQ(finished, 1U);
}

TEST_F(ControllerStatesTest, DropWhileAConnectFailsIsToldThatNothingIsConnected) {
  selectProduct(u"p@ss"_s);
  failMounts(3);
  const QString one = song(u"One"_s);
  atThePause([this, one] { fakes.loop.post([this, one] { deliver(u"@~Evening@~"_s, {one}); }); });
  start();
  EXPECT_FALSE(fakes.worker.hasBody());
  EXPECT_EQ(finished, 1U);
  EXPECT_EQ(shown().currentTab, 2);
}

TEST_F(ControllerStatesTest, QuitWhileConnectingEndsTheWaitAndTheClient) {
  selectProduct(u"p@ss"_s);
  failMounts(3);
  controller = std::make_unique<ApplicationController>(fakes.platform, values);
  atThePause([this] { controller->quit(); });
  controller->start();
  fakes.loop.runPosted();
  EXPECT_EQ(mounts(), 1);
  EXPECT_TRUE(fakes.userInterface.questions.isEmpty());
  EXPECT_EQ(fakes.userInterface.quitStatus, 0);
}

TEST_F(ControllerStatesTest, QuitWhileAnAlertIsOpenClosesIt) {
  selectProduct(u"p@ss"_s);
  failMounts(3);
  start();
  ASSERT_EQ(fakes.userInterface.questions.size(), 1);
  const quint32 serial = fakes.userInterface.questions.first().serial;
  controller->quit();
  controller->answerAlert(serial, 0);
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.quitStatus, 0);
  EXPECT_TRUE(fakes.userInterface.questions.isEmpty());
}

TEST_F(ControllerStatesTest, QuitWhileARemovalIsAskedForRemovesNothing) {
  startConnected();
  controller->removeProduct(0, shown().selectedProducts.first());
  fakes.loop.runPosted();
  ASSERT_EQ(fakes.userInterface.questions.size(), 1);
  controller->quit();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.quitStatus, 0);
  EXPECT_EQ(fakes.dictionary(fakes.paths.productsDetailsDictFilePath).value(u"Selected Devices"_s).toList().size(),
            1);
}

TEST_F(ControllerStatesTest, NothingIsDoneAfterTheEnd) {
  startConnected();
  controller->quit();
  fakes.loop.runPosted();
  fakes.processes.requests.clear();
  controller->connect();
  controller->disconnect();
  controller->reopen(false);
  controller->quit();
  controller->endRequested();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.processes.requests.size(), 0);
  EXPECT_EQ(fakes.processes.detached.size(), 1) << "the agent of the start";
}

// The share could not be left: nothing is put onto it all the same.
TEST_F(ControllerStatesTest, DropAfterTheEndIsNotCarried) {
  startConnected();
  fakes.processes.onRun = [](const ToolRequest &request) -> std::optional<ToolResult> {
    return request.program == u"/sbin/umount"_s ? std::optional(exited(1, "busy\n")) : std::nullopt;
  };
  controller->quit();
  fakes.loop.runPosted();
  ASSERT_EQ(fakes.userInterface.quitStatus, 0);
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  EXPECT_FALSE(fakes.worker.hasBody());
  EXPECT_EQ(finished, 1U);
}

TEST_F(ControllerStatesTest, TellsThatItIsAskedToQuitUntilItRefuses) {
  startConnected();
  EXPECT_FALSE(controller->isQuitting());
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  controller->quit();
  EXPECT_TRUE(controller->isQuitting()) << "from the request on, whatever the controller's thread does";
  fakes.loop.runPosted();
  EXPECT_FALSE(controller->isQuitting()) << "refused: a transfer runs";
  controller->endRequested();
  EXPECT_TRUE(controller->isQuitting());
  fakes.loop.runPosted();
  EXPECT_FALSE(controller->isQuitting());
  carry();
  controller->quit();
  controller->quit();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.quitStatus, 0);
  EXPECT_TRUE(controller->isQuitting()) << "for good";
}

TEST_F(ControllerStatesTest, ReopenIsTrueToTheStateItFinds) {
  startConnected();
  controller->preferences();
  controller->windowWillClose();
  controller->reopen(false);
  fakes.loop.runPosted();
  EXPECT_EQ(shown().currentTab, 0);
  EXPECT_EQ(shown().dockImage, u"Connect"_s);
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  controller->reopen(false);
  fakes.loop.runPosted();
  EXPECT_EQ(shown().currentTab, 1);
  controller->cancel();
  controller->reopen(false);
  fakes.loop.runPosted();
  EXPECT_EQ(shown().currentTab, 0) << "a cancelled transfer does not run";
  EXPECT_EQ(shown().dockImage, u"Connect"_s);
  carry();
  controller->disconnect();
  controller->reopen(false);
  fakes.loop.runPosted();
  EXPECT_EQ(shown().currentTab, 0);
  EXPECT_EQ(shown().dockImage, u"Disconnect"_s);
  EXPECT_EQ(fakes.processes.detached.size(), 5) << "the agent is restarted each time";
}

TEST_F(ControllerStatesTest, DisconnectWaitsForACancelledTransferBeforeItUnmounts) {
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
  controller->disconnect();
  fakes.loop.runPosted();
  EXPECT_TRUE(workerEndedFirst);
  EXPECT_EQ(finished, 1U);
  EXPECT_FALSE(shown().connected);
  EXPECT_FALSE(shown().transferring);
}

// Its share answers no more; what the worker hands in is for the product that it was carried to all the same.
TEST_F(ControllerStatesTest, ProductCannotBeChangedUnderATransferWhoseShareDoesNotAnswer) {
  const auto product = [this](const QString &address, const QString &isSelected) {
    return QVariantMap{{u"Is Selected"_s, isSelected},
                       {u"Detection Type"_s, u"1"_s},
                       {u"IP Address"_s, address},
                       {u"Password"_s, fakes.propertyLists.archive(u"p@ss"_s)}};
  };
  fakes.putDictionary(fakes.paths.productsDetailsDictFilePath,
                      {{u"Selected Devices"_s,
                        QVariantList{product(u"192.168.1.20"_s, u"Yes"_s), product(u"192.168.1.30"_s, u"No"_s)}}});
  start();
  ASSERT_TRUE(shown().connected);
  deliver(u"@~Evening@~"_s, {song(u"One"_s), song(u"Two"_s)});
  int copies = 0;
  fakes.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program != u"/bin/cp"_s || ++copies != 2) {
      return std::nullopt;
    }
    fakes.files.setUnknown(kPoint, true);
    controller->selectProduct(1, shown().selectedProducts.value(1));
    fakes.loop.runPosted();
    return exited(1, "gone\n");
  };
  carry();
  ASSERT_EQ(fakes.userInterface.questions.size(), 1);
  EXPECT_EQ(fakes.userInterface.questions.first().message, u"Auracore 5 cannot be disconnected now."_s);
  EXPECT_EQ(mounts(), 1);
  const QStringList kept = fakes.files.tree(values.backupFolder).keys().filter(u"unwritten"_s);
  ASSERT_EQ(kept.size(), 1);
  EXPECT_TRUE(kept.first().startsWith(u"_192.168.1.20/"_s)) << qPrintable(kept.first());
}

TEST_F(ControllerStatesTest, FailureOfAnAnswerIsLogged) {
  startConnected();
  controller->removeProduct(0, shown().selectedProducts.first());
  fakes.loop.runPosted();
  ASSERT_EQ(fakes.userInterface.questions.size(), 1);
  fakes.files.failPath(fakes.paths.productsDetailsDictFilePath, FailureKind::DiskFull);
  controller->answerAlert(fakes.userInterface.questions.first().serial, 1);
  fakes.loop.runPosted();
  EXPECT_TRUE(fakes.desktop.logged(u"Exception in ---> <AppController><"_s));
  controller->reopen(false);
  fakes.loop.runPosted();
  EXPECT_TRUE(shown().windowVisible) << "the client goes on";
}

TEST_F(ControllerStatesTest, LanguageIsChosenAtOnceEverywhereAlsoWhileConnected) {
  fakes.files.put(resourceFolder() + u"StringsDeutsch"_s, shipped(u"StringsDeutsch"_s));
  startConnected();
  controller->selectLanguage(2);
  fakes.loop.runPosted();
  EXPECT_EQ(shown().languageFile, u"StringsDeutsch"_s);
  EXPECT_EQ(shown().labels.value(u"ConnectionTabText"_s), u"Verbindung"_s);
  EXPECT_EQ(shown().labels.value(u"AboutLabelText"_s).section(u": "_s, -1), u"Auracore 5"_s);
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  controller->disconnect();
  fakes.loop.runPosted();
  ASSERT_EQ(fakes.userInterface.questions.size(), 1);
  EXPECT_EQ(fakes.userInterface.questions.first().message,
            u"Die Verbindung zum Gerät Auracore 5 kann jetzt nicht getrennt werden."_s);
  carry();
  EXPECT_EQ(shown().messageLog, u"Die Übertragung ist beendet."_s);
}
