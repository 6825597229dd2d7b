#include "ControllerFixture.h"
#include "link/Connection.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

TEST_F(ControllerTest, ConnectsToTheSelectedProductWhenItStarts) {
  selectProduct(u"p@ss"_s);
  start();
  EXPECT_EQ(initialisations, QList<bool>({true}));
  EXPECT_TRUE(wasBusy) << "the door opens on a client that is connecting";
  const UserInterfaceState state = fakes.userInterface.last();
  EXPECT_TRUE(state.connected);
  EXPECT_FALSE(state.busy);
  EXPECT_FALSE(state.connectionIndicator);
  EXPECT_EQ(state.dockImage, u"Connect"_s);
  EXPECT_EQ(state.deviceName, u"Auracore 5"_s);
  EXPECT_EQ(fakes.dictionary(fakes.paths.dropperPropertyFilePath).value(u"DeviceConnected"_s), u"Auracore 5"_s);
  EXPECT_EQ(fakes.dictionary(fakes.paths.PFPath).value(u"ProductName"_s), u"Auracore 5"_s);
  EXPECT_TRUE(fakes.files.exists(kSystemFolder + u"ClientConnected.orv"_s));
  EXPECT_FALSE(fakes.files.exists(kSystemFolder + u"ClientAlive.orv"_s));
  const auto mounts = fakes.processes.programs().count(u"/sbin/mount"_s);
  EXPECT_EQ(mounts, 1);
  ASSERT_NE(controller->getConnectionObject(), nullptr);
  EXPECT_TRUE(controller->getConnectionObject()->isConnected());
}

TEST_F(ControllerTest, EscapesThePasswordForTheUrlOnce) {
  selectProduct(u"p@ss;100%"_s);
  start();
  for (const ToolRequest &request : fakes.processes.requests) {
    if (request.program == u"/sbin/mount"_s) {
      EXPECT_EQ(request.arguments.at(2), u"//vaultbox:p%40ss%3B100%25@192.168.1.20/VB-SHARE$"_s);
    }
  }
  const QVariantMap record =
      fakes.dictionary(fakes.paths.productsDetailsDictFilePath).value(u"Selected Devices"_s).toList().first().toMap();
  EXPECT_EQ(fakes.propertyLists.unarchive(record.value(u"Password"_s).toByteArray()), u"p@ss;100%"_s);
}

TEST_F(ControllerTest, SaysThatItIsAliveEveryTwoMinutes) {
  startConnected();
  fakes.loop.advance(119s);
  EXPECT_FALSE(fakes.files.exists(kSystemFolder + u"ClientAlive.orv"_s));
  fakes.loop.advance(1s);
  EXPECT_EQ(fakes.files.bytes(kSystemFolder + u"ClientAlive.orv"_s).size(), 66);
}

TEST_F(ControllerTest, TriesThreeTimesWithPausesBeforeItShowsAFailure) {
  selectProduct(u"p@ss"_s);
  fakes.processes.mountAnswers = {{1, "no route", false}, {1, "no route", false}, {1, "no route", false}};
  start();
  EXPECT_EQ(fakes.processes.programs().count(u"/sbin/mount"_s), 3);
  EXPECT_EQ(fakes.clock.sleeps.count(2s), 2);
  const UserInterfaceState state = fakes.userInterface.last();
  EXPECT_FALSE(state.connected);
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(state.dockImage, u"Disconnect"_s);
  EXPECT_EQ(state.currentTab, 2);
  ASSERT_EQ(fakes.userInterface.questions.size(), 1);
  EXPECT_EQ(fakes.userInterface.questions.first().message, u"Could not connect to the product."_s);
  EXPECT_FALSE(state.passwordWanted);
}

TEST_F(ControllerTest, AsksForThePasswordThatWasRefusedAndConnectsWithTheNewOne) {
  selectProduct(u"wrong"_s);
  for (int i = 0; i < 3; ++i) {
    fakes.processes.mountAnswers.push_back({2, "Authentication error", false});
  }
  start();
  EXPECT_TRUE(fakes.userInterface.last().passwordWanted);
  EXPECT_TRUE(fakes.userInterface.questions.isEmpty());
  controller->enterPassword(u"right"_s);
  fakes.loop.runPosted();
  EXPECT_TRUE(fakes.userInterface.last().connected);
  EXPECT_FALSE(fakes.userInterface.last().passwordWanted);
  EXPECT_EQ(fakes.propertyLists.unarchive(controller->getAppProperty().value(u"Password"_s).toByteArray()),
            u"right"_s);
}

TEST_F(ControllerTest, AddsSelectsAndConnectsToAProductByHand) {
  start();
  EXPECT_EQ(fakes.userInterface.last().currentTab, 2);
  controller->addManualProduct({}, u"kitchen"_s);
  fakes.loop.runPosted();
  const QStringList added = fakes.userInterface.last().addedProducts;
  ASSERT_EQ(added.size(), 1);
  controller->addAddedProduct(0, added.first());
  fakes.loop.runPosted();
  const QStringList selected = fakes.userInterface.last().selectedProducts;
  ASSERT_EQ(selected.size(), 1);
  controller->selectProduct(0, u"something else"_s);
  fakes.loop.runPosted();
  EXPECT_FALSE(fakes.userInterface.last().passwordWanted) << "a row that shows something else is left alone";
  controller->selectProduct(0, selected.first());
  fakes.loop.runPosted();
  EXPECT_TRUE(fakes.userInterface.last().passwordWanted);
  controller->enterPassword(u"secret"_s);
  fakes.loop.runPosted();
  EXPECT_TRUE(fakes.userInterface.last().connected);
}

TEST_F(ControllerTest, DisconnectsAndConnectsAgain) {
  startConnected();
  controller->disconnect();
  fakes.loop.runPosted();
  EXPECT_FALSE(fakes.userInterface.last().connected);
  EXPECT_FALSE(fakes.files.isMounted(kPoint));
  controller->connect();
  fakes.loop.runPosted();
  EXPECT_TRUE(fakes.userInterface.last().connected);
  EXPECT_TRUE(fakes.files.exists(kSystemFolder + u"ClientDisconnected.orv"_s));
}

TEST_F(ControllerTest, LetsPeopleActWhenPowerNotificationsAreRefused) {
  selectProduct(u"p@ss"_s);
  fakes.power.refuses = true;
  start();
  EXPECT_EQ(fakes.desktop.errors, QStringList({u"IORegisterForSystemPower failed\n"_s}));
  EXPECT_EQ(controller->getConnectionObject(), nullptr);
  EXPECT_FALSE(fakes.userInterface.last().busy);
  EXPECT_TRUE(fakes.userInterface.last().connectionIndicator);
}

TEST_F(ControllerTest, ShowsTheTrueStateWhenTheShareIsGoneAfterAFailureOfTheStart) {
  selectProduct(u"p@ss"_s);
  fakes.processes.onRun = [this](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program != u"/sbin/mount"_s) {
      return std::nullopt;
    }
    fakes.files.setFreeBytes(u"/"_s, 0); // the drop agent cannot be told
    return exited(0);                    // and the share is gone again
  };
  start();
  EXPECT_TRUE(fakes.desktop.logged(u"<AppController><awakeFromNib>"_s));
  EXPECT_FALSE(fakes.userInterface.last().connected);
  EXPECT_EQ(fakes.userInterface.last().dockImage, u"Disconnect"_s);
  EXPECT_EQ(fakes.userInterface.questions.size(), 1);
}

TEST_F(ControllerTest, EndsWhenTheStartFails) {
  fakes.files.failPath(fakes.paths.supportFolder, FailureKind::Other);
  start();
  EXPECT_EQ(initialisations, QList<bool>({false}));
  ASSERT_EQ(fakes.userInterface.questions.size(), 1);
  EXPECT_EQ(fakes.userInterface.questions.first().message, u"Something went wrong"_s);
  EXPECT_FALSE(fakes.userInterface.last().busy);
  controller->answerAlert(fakes.userInterface.questions.first().serial, 0);
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.quitStatus, 1);
}

TEST_F(ControllerTest, SelectsALanguageAndShowsTabsAndHelp) {
  start();
  controller->preferences();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.last().currentTab, 3);
  EXPECT_TRUE(fakes.userInterface.last().windowVisible) << "asked for while the window is hidden";
  EXPECT_EQ(fakes.userInterface.raises, 1);
  controller->products();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.last().currentTab, 2);
  EXPECT_EQ(fakes.userInterface.raises, 2);
  controller->selectLanguage(9);
  fakes.loop.runPosted();
  EXPECT_EQ(controller->getCurrentLanguage(), u"StringsKorean"_s);
  fakes.files.put(resourceFolder() + u"SonorelHelp.html"_s, shipped(u"SonorelHelp.html"_s));
  controller->help();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.desktop.opened, QStringList({resourceFolder() + u"SonorelHelp.html"_s}));
}

TEST_F(ControllerTest, EndsTheFirstLaunchAtTheFirstReopen) {
  start();
  EXPECT_EQ(controller->getAppProperty().value(u"FirstLaunch"_s), u"Yes"_s);
  controller->reopen(false);
  fakes.loop.runPosted();
  EXPECT_EQ(controller->getAppProperty().value(u"FirstLaunch"_s), u"No"_s);
  EXPECT_EQ(fakes.processes.detached.size(), 2) << "the agent is restarted";
}

TEST_F(ControllerTest, HidesTheWindowThatIsClosedAndShowsItAgain) {
  startConnected();
  controller->reopen(false);
  fakes.loop.runPosted();
  EXPECT_TRUE(fakes.userInterface.last().windowVisible);
  controller->windowWillClose();
  fakes.loop.runPosted();
  EXPECT_FALSE(fakes.userInterface.last().windowVisible);
  EXPECT_TRUE(fakes.userInterface.last().connected) << "only the window is gone";
  EXPECT_EQ(fakes.userInterface.quitStatus, std::nullopt);
  controller->reopen(false);
  fakes.loop.runPosted();
  EXPECT_TRUE(fakes.userInterface.last().windowVisible);
}

TEST_F(ControllerTest, TellsWhichSelectedProductIsTheActiveOne) {
  start();
  EXPECT_EQ(fakes.userInterface.last().activeProduct, -1);
  controller->addManualProduct({}, u"kitchen"_s);
  controller->addManualProduct({}, u"study"_s);
  controller->addAddedProduct(0, u"kitchen"_s);
  controller->addAddedProduct(1, u"study"_s);
  controller->selectProduct(1, u"study * "_s);
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.last().selectedProducts, QStringList({u"kitchen * "_s, u"study * "_s}));
  EXPECT_EQ(fakes.userInterface.last().activeProduct, 1);
}

TEST_F(ControllerTest, ForwardsTheClassGetters) {
  start();
  EXPECT_EQ(controller->getResourcePath(), resourceFolder());
  EXPECT_EQ(controller->getInvalidChars(), u"/\\:*?\"<>|"_s);
  EXPECT_EQ(controller->getCurrentLanguage(), u"StringsEnglish"_s);
  EXPECT_TRUE(controller->getPlaylistArray(false).isEmpty());
  EXPECT_TRUE(controller->getPlaylistArray(true).isEmpty());
  EXPECT_EQ(controller->getTitle() + controller->getAuthor() + controller->getAlbum(), u""_s);
}

TEST_F(ControllerTest, LeavesTheProductAlsoWhenASecondRequestCutsTheUnmountShort) {
  startConnected();
  bool first = true;
  fakes.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program != u"/sbin/umount"_s || !std::exchange(first, false)) {
      return std::nullopt;
    }
    controller->endRequested();
    return ToolResult{ToolEnding::Stopped, 0, {}};
  };
  controller->endRequested();
  fakes.loop.runPosted();
  EXPECT_FALSE(first);
  EXPECT_FALSE(fakes.files.isMounted(kPoint));
  EXPECT_EQ(fakes.userInterface.quitStatus, 0);
}

TEST_F(ControllerTest, GivesUpConnectingWhenItIsInterrupted) {
  selectProduct(u"p@ss"_s);
  fakes.processes.mountAnswers = {{1, "no route", false}, {1, "no route", false}, {1, "no route", false}};
  controller = std::make_unique<ApplicationController>(fakes.platform, values);
  std::stop_token waiting = controller->interruption();
  fakes.clock.onSleep = [this] { controller->interrupt(); };
  controller->start();
  fakes.loop.runPosted();
  EXPECT_TRUE(waiting.stop_requested());
  EXPECT_EQ(fakes.processes.programs().count(u"/sbin/mount"_s), 1);
  EXPECT_TRUE(fakes.userInterface.questions.isEmpty());
}

TEST_F(ControllerTest, PasswordAfterCancelIsNotTaken) {
  selectProduct({});
  start();
  ASSERT_TRUE(fakes.userInterface.last().passwordWanted);
  controller->cancelPassword();
  controller->enterPassword(u"too late"_s);
  fakes.loop.runPosted();
  EXPECT_FALSE(fakes.userInterface.last().connected);
  EXPECT_FALSE(fakes.userInterface.last().passwordWanted);
  EXPECT_EQ(fakes.processes.programs().count(u"/sbin/mount"_s), 0);
}

TEST_F(ControllerTest, AskedToEndAfterAFailedStartStillSaysThatItFailed) {
  fakes.files.failPath(fakes.paths.supportFolder, FailureKind::Other);
  start();
  controller->endRequested();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.quitStatus, 1);
}
