// The whole client when the machine sleeps and wakes: idle, connecting, and in a transfer.
#include "ControllerFixture.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

class ControllerSleepTest : public ControllerTest {
protected:
  void sleep() {
    fakes.power.send(PowerMessage::SystemWillSleep);
    fakes.loop.runPosted();
  }
  void wake() {
    fakes.power.wake();
    fakes.loop.runPosted();
  }
  UserInterfaceState shown() { return fakes.userInterface.last(); }
};

} // namespace

TEST_F(ControllerSleepTest, DisconnectsBeforeTheMachineSleepsAndDoesNotReconnect) {
  startConnected();
  bool wasDelayed = false;
  fakes.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    wasDelayed = wasDelayed || (request.program == u"/sbin/umount"_s && fakes.power.isDelayed);
    return std::nullopt;
  };
  sleep();
  EXPECT_TRUE(wasDelayed) << "the machine waits for the unmount";
  EXPECT_FALSE(fakes.power.isDelayed);
  EXPECT_FALSE(fakes.files.isMounted(kPoint));
  EXPECT_TRUE(fakes.files.stored(kSystemFolder + u"ClientDisconnected.orv"_s));
  fakes.processes.requests.clear();
  wake();
  fakes.loop.advance(600s);
  EXPECT_EQ(fakes.processes.programs().count(u"/sbin/mount"_s), 0);
  EXPECT_EQ(shown().currentTab, 2);
  EXPECT_EQ(shown().dockImage, u"Disconnect"_s);
  controller->connect();
  fakes.loop.runPosted();
  EXPECT_TRUE(shown().connected);
}

TEST_F(ControllerSleepTest, ConnectAfterTheWakeLeavesTheLogAsItWas) {
  startConnected();
  sleep();
  wake();
  const QString before = shown().messageLog;
  const QVariantMap product{{u"Is Selected"_s, u"Yes"_s},
                            {u"Detection Type"_s, u"1"_s},
                            {u"IP Address"_s, u"192.168.1.20"_s},
                            {u"Mac Address"_s, u"02-00-5E-10-20-30"_s},
                            {u"Password"_s, fakes.propertyLists.archive(u"p@ss"_s)}};
  fakes.putDictionary(fakes.paths.productsDetailsDictFilePath, {{u"Selected Devices"_s, QVariantList{product}}});
  fakes.processes.mountAnswers = {{1, "no route", false}, {1, "no route", false}, {1, "no route", false}};
  QStringList waited;
  fakes.clock.onSleep = [&] { waited.append(shown().messageLog); };
  controller->connect();
  fakes.loop.runPosted();
  EXPECT_TRUE(waited.contains(u"The product was woken. It may take a minute until it answers."_s))
      << qPrintable(waited.join(u'|'));
  EXPECT_FALSE(shown().connected);
  EXPECT_EQ(shown().messageLog, before) << "nothing stands there that the user did not see before";
}

TEST_F(ControllerSleepTest, EndsThePausesOfAConnectAndLeavesTheWindowQuiet) {
  selectProduct(u"p@ss"_s);
  fakes.processes.mountAnswers = {{1, "no route", false}, {1, "no route", false}, {1, "no route", false}};
  controller = std::make_unique<ApplicationController>(fakes.platform, values);
  bool first = true;
  fakes.clock.onSleep = [this, &first] {
    if (std::exchange(first, false)) {
      fakes.power.announce();
      fakes.loop.post([this] { fakes.power.send(PowerMessage::SystemWillSleep); });
    }
  };
  controller->start();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.processes.programs().count(u"/sbin/mount"_s), 1) << "no further attempt";
  EXPECT_TRUE(fakes.userInterface.questions.isEmpty());
  EXPECT_FALSE(shown().busy);
  wake();
  EXPECT_EQ(shown().currentTab, 2);
}

TEST_F(ControllerSleepTest, ListsWhatWasNotTransferredAndCarriesItWhenItIsDroppedAgain) {
  startConnected();
  const QStringList songs{song(u"One"_s), song(u"Two"_s), song(u"Three"_s)};
  deliver(u"@~Evening@~"_s, songs);
  sleepInTheSecondCopy();
  EXPECT_EQ(fakes.worker.limits, QList<std::chrono::milliseconds>{1500ms});
  EXPECT_FALSE(fakes.files.isMounted(kPoint));
  EXPECT_FALSE(shown().transferring);
  EXPECT_EQ(finished, 1U);
  wake();
  EXPECT_EQ(shown().messageLog, u"The connection to the product was lost. These items were not transferred:\n"
                                u"Two.mp3\nThree.mp3\n"_s);
  EXPECT_EQ(shown().currentTab, 1);
  EXPECT_EQ(shown().progress, 0);
  EXPECT_FALSE(shown().cancelEnabled);
  EXPECT_FALSE(shown().cancelHighlighted);
  EXPECT_TRUE(shown().languageEnabled);
  controller->connect();
  fakes.loop.runPosted();
  ASSERT_TRUE(shown().connected);
  deliver(u"@~Evening@~"_s, songs);
  carry();
  EXPECT_EQ(copiesSeen, 4) << "what stands on the share is not copied again";
  EXPECT_EQ(finished, 2U);
  EXPECT_EQ(shown().messageLog, u"The transfer has ended."_s);
}

// Both products stand on one disk of the test; what tells them apart is the address that their share holds.
TEST_F(ControllerSleepTest, WhatWasCarriedBeforeItIsListedOnItsOwnProductOnly) {
  const auto becomes = [this](const QByteArray &hardwareAddress) {
    fakes.files.mount(kPoint);
    fakes.files.put(kSystemFolder + u"MacIPAdress.orv"_s, "192.168.1.20\n" + hardwareAddress + '\n');
    fakes.files.unmount(kPoint);
  };
  const auto connect = [this] {
    controller->connect();
    fakes.loop.runPosted();
    ASSERT_TRUE(shown().connected);
  };
  becomes("00-1A-2B-3C-4D-0A");
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s), song(u"Two"_s)});
  sleepInTheSecondCopy();
  wake();
  becomes("00-1A-2B-3C-4D-0B");
  connect();
  deliver(u"@~Night@~"_s, {song(u"Three"_s)});
  carry();
  EXPECT_EQ(lists(), QStringList({u"@~Night@~: 1"_s}));
  controller->disconnect();
  fakes.loop.runPosted();
  becomes("00-1A-2B-3C-4D-0A");
  connect();
  EXPECT_EQ(lists(), QStringList({u"@~Night@~: 1"_s, u"@~Evening@~: 1"_s}));
}

TEST_F(ControllerSleepTest, WhatWasCarriedBeforeItIsListedByTheNextRunWhenTheProgramEnds) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s), song(u"Two"_s)});
  sleepInTheSecondCopy();
  wake();
  controller->quit();
  fakes.loop.runPosted();
  controller.reset();
  start();
  ASSERT_TRUE(shown().connected);
  EXPECT_EQ(lists(), QStringList({u"@~Evening@~: 1"_s}));
}

TEST_F(ControllerSleepTest, TransferThatDoesNotEndInTimeIsLeft) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  fakes.worker.hangs = true;
  sleep();
  EXPECT_FALSE(fakes.files.isMounted(kPoint));
  EXPECT_TRUE(fakes.desktop.logged(u"the transfer did not end before the machine sleeps"_s));
  wake();
  carry(); // the copy that hung goes on
  EXPECT_TRUE(fakes.files.tree(kPoint).isEmpty()) << "nothing is written where the share was";
  EXPECT_EQ(finished, 1U);
  controller->connect();
  fakes.loop.runPosted();
  EXPECT_TRUE(shown().connected);
}

TEST_F(ControllerSleepTest, TransferOntoAShareThatDoesNotAnswerIsBrokenOffAndTheShareLeft) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s), song(u"Two"_s)});
  fakes.files.setUnknown(kPoint, true);
  sleep();
  EXPECT_FALSE(fakes.files.isMounted(kPoint)) << "it would be served again after the wake";
  EXPECT_FALSE(shown().transferring);
  EXPECT_EQ(finished, 1U);
  wake();
  EXPECT_EQ(shown().messageLog, u"The connection to the product was lost. These items were not transferred:\n"
                                u"One.mp3\nTwo.mp3\n"_s);
  EXPECT_EQ(shown().currentTab, 1);
}

TEST_F(ControllerSleepTest, ShareThatDoesNotAnswerIsLeftAlsoUnderATransferThatDoesNotEndInTime) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  fakes.files.setUnknown(kPoint, true);
  fakes.worker.hangs = true;
  sleep();
  EXPECT_FALSE(fakes.files.isMounted(kPoint));
}

TEST_F(ControllerSleepTest, MachineThatSleepsWhileTheClientEndsIsNotDelayed) {
  startConnected();
  controller->quit();
  fakes.loop.runPosted();
  fakes.processes.requests.clear();
  sleep();
  wake();
  EXPECT_EQ(fakes.processes.requests.size(), 0);
  EXPECT_FALSE(fakes.userInterface.last().connected);
}
