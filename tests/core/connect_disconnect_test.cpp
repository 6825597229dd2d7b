#include "ConnectFixture.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

class DisconnectTest : public ConnectTest {
protected:
  DisconnectTest() {
    prepareShare();
    connect();
    pauses().clear();
    interface.setProgressBar(40);
    log.append(u"messages"_s);
    log.show();
    fakes.loop.runPosted();
  }
  // Deletes what the connection wrote, to see whether it is written again.
  void forgetMessages() {
    for (const QString &name : {u"ClientConnected.orv"_s, u"ClientAlive.orv"_s}) {
      fakes.files.erase(point + u"/System/"_s + name);
    }
  }
  // The product received the message although the share has gone by now.
  bool wasSent(const QString &message) { return fakes.files.stored(point + u"/System/"_s + message).has_value(); }
};

} // namespace

TEST_F(DisconnectTest, SaysGoodbyeAndUnmounts) {
  disconnect();
  EXPECT_FALSE(fakes.files.isMounted(point));
  EXPECT_TRUE(wasSent(u"ClientDisconnected.orv"_s));
  EXPECT_EQ(pauses(), QList<std::chrono::milliseconds>({2s}));
  const UserInterfaceState state = shown();
  EXPECT_FALSE(state.connected);
  EXPECT_FALSE(state.connectionIndicator);
  EXPECT_EQ(state.dockImage, u"Disconnect"_s);
  EXPECT_EQ(state.progress, 0);
  EXPECT_EQ(state.messageLog, QString());
  EXPECT_EQ(log.fileInvalid(), QString());
  EXPECT_EQ(fakes.loop.timerCount(), 0);
}

TEST_F(DisconnectTest, IsRefusedDuringATransfer) {
  beginTransfer();
  disconnect();
  EXPECT_EQ(questions(), QStringList({u"Auracore 5 cannot be disconnected now.|A transfer is running. Wait until it "
                                      u"has finished, or cancel it, and then disconnect."_s}));
  EXPECT_TRUE(fakes.files.isMounted(point));
  EXPECT_FALSE(wasSent(u"ClientDisconnected.orv"_s));
  EXPECT_EQ(shown().messageLog, u"messages"_s);
  EXPECT_EQ(fakes.loop.timerCount(), 1);
}

TEST_F(DisconnectTest, SleepThatTheUserChoseDisconnectsATransferAndKeepsTheLog) {
  beginTransfer();
  board.manualSleepWasConnected = true;
  disconnect();
  EXPECT_FALSE(fakes.files.isMounted(point));
  EXPECT_TRUE(wasSent(u"ClientDisconnected.orv"_s));
  EXPECT_EQ(shown().dockImage, u"Disconnect"_s);
  EXPECT_EQ(shown().progress, 40);
  EXPECT_EQ(shown().messageLog, u"messages"_s);
  EXPECT_EQ(questions(), QStringList());
}

TEST_F(DisconnectTest, LogOfADropThatWaitedInVainStays) {
  beginTransfer();
  board.isCancel = true;
  toldOfWaitingDrop = true;
  disconnect();
  EXPECT_FALSE(fakes.files.isMounted(point));
  EXPECT_EQ(shown().messageLog, u"messages"_s);
  EXPECT_EQ(shown().progress, 0);
  connect();
  fakes.files.erase(point + u"/System/ClientDisconnected.orv"_s);
  disconnect();
  EXPECT_EQ(shown().messageLog, QString()) << "it stays over that disconnect, not over every later one";
}

TEST_F(DisconnectTest, CancelledTransferKeepsNobodyConnectedButHandsInWhatItHasPlaced) {
  beginTransfer();
  board.isCancel = true;
  did.clear();
  disconnect();
  EXPECT_EQ(did, QStringList({u"awaitTransfer"_s})) << "before the farewell and the unmount";
  EXPECT_FALSE(fakes.files.isMounted(point));
}

TEST_F(DisconnectTest, SleepDoesNotWaitForACancelledTransferOnceMore) {
  beginTransfer();
  board.isCancel = true;
  board.manualSleepWasConnected = true;
  did.clear();
  disconnect();
  EXPECT_EQ(did, QStringList());
  EXPECT_FALSE(fakes.files.isMounted(point));
}

TEST_F(DisconnectTest, WithoutAConnectionOnlyTheLookChanges) {
  fakes.files.unmount(point);
  disconnect();
  EXPECT_EQ(shown().progress, 0);
  EXPECT_EQ(shown().dockImage, u"Disconnect"_s);
  EXPECT_EQ(shown().messageLog, u"messages"_s);
  EXPECT_FALSE(wasSent(u"ClientDisconnected.orv"_s));
}

TEST_F(DisconnectTest, LeavesAShareThatDoesNotAnswerButNotDuringATransfer) {
  fakes.files.setUnknown(point, true);
  beginTransfer();
  disconnect();
  EXPECT_TRUE(fakes.files.isMounted(point));
  board.resetToIdle();
  disconnect();
  EXPECT_FALSE(fakes.files.isMounted(point)) << "it would be served again when the product is back";
  EXPECT_FALSE(wasSent(u"ClientDisconnected.orv"_s));
  EXPECT_EQ(shown().messageLog, u"messages"_s);
}

TEST_F(DisconnectTest, UnmountThatFailsIsLoggedAndStillConnected) {
  fakes.processes.onRun = [](const ToolRequest &request) -> std::optional<ToolResult> {
    return request.program == u"/sbin/umount"_s ? std::optional(exited(1, "busy\n")) : std::nullopt;
  };
  disconnect();
  EXPECT_EQ(shown().dockImage, u"Disconnect"_s);
  EXPECT_TRUE(shown().connected);
  EXPECT_TRUE(fakes.desktop.logged(u"the share could not be unmounted"_s));
}

TEST_F(DisconnectTest, IndicatorIsShownWhileTheUnmountWaits) {
  bool indicator = false;
  fakes.clock.onSleep = [&] { indicator = shown().connectionIndicator && !shown().busy; };
  disconnect();
  EXPECT_TRUE(indicator);
}

TEST_F(DisconnectTest, ClientIsAliveEveryTwoMinutesUntilTheShareGoes) {
  forgetMessages();
  fakes.loop.advance(119'999ms);
  EXPECT_FALSE(sent(u"ClientAlive.orv"_s));
  fakes.loop.advance(1ms);
  EXPECT_TRUE(sent(u"ClientAlive.orv"_s));
  fakes.files.unmount(point);
  forgetMessages();
  fakes.loop.advance(120s);
  EXPECT_EQ(fakes.loop.timerCount(), 0);
  EXPECT_FALSE(shown().connected);
  fakes.loop.advance(240s);
  EXPECT_FALSE(sent(u"ClientAlive.orv"_s));
}

TEST_F(DisconnectTest, ReconnectingLeavesOneAliveTimer) {
  connect();
  EXPECT_EQ(fakes.loop.timerCount(), 1);
}

TEST_F(DisconnectTest, CancelStopsTheTransferAtItsNextLook) {
  beginTransfer();
  interface.setEnableDisableCancelBtn(true);
  interface.setHighlightCancelBtn(true);
  interface.setDockIcon(u"Transfer"_s);
  fakes.loop.advance(600ms);
  ASSERT_TRUE(shown().cancelEnabled);
  flow.onCancel();
  interface.setEnableDisableCancelBtn(true); // of the worker, for the item that was just begun
  fakes.loop.runPosted();
  EXPECT_TRUE(board.isCancel);
  const UserInterfaceState state = shown();
  EXPECT_FALSE(state.cancelEnabled);
  EXPECT_FALSE(state.cancelHighlighted);
  EXPECT_EQ(state.progress, 0);
  EXPECT_EQ(state.messageLog, u"messagesCancelling the transfer. Please wait...\n"_s);
  EXPECT_EQ(state.dockImage, u"Connect"_s);
  EXPECT_EQ(fakes.loop.timerCount(), 1) << "the pulse has stopped, the alive timer has not";
}

TEST_F(DisconnectTest, CancelledTransferIsCancelledOnce) {
  beginTransfer();
  flow.onCancel();
  flow.onCancel();
  fakes.loop.runPosted();
  EXPECT_EQ(shown().messageLog, u"messagesCancelling the transfer. Please wait...\n"_s);
}

TEST_F(DisconnectTest, TransferThatASleepHasBrokenOffCannotBeCancelled) {
  beginTransfer();
  static_cast<void>(board.abort());
  interface.setDockIcon(u"Disconnect"_s);
  flow.onCancel();
  fakes.loop.runPosted();
  EXPECT_FALSE(board.isCancel);
  EXPECT_EQ(shown().dockImage, u"Disconnect"_s);
  EXPECT_EQ(shown().messageLog, u"messages"_s);
}

// The share that could not be left before the sleep is still there, and nothing is carried any more.
TEST_F(DisconnectTest, TransferThatASleepHasBrokenOffKeepsNobodyConnected) {
  beginTransfer();
  static_cast<void>(board.abort());
  EXPECT_FALSE(flow.transferRuns());
  disconnect();
  EXPECT_EQ(questions(), QStringList());
  EXPECT_FALSE(fakes.files.isMounted(point));
}

TEST_F(DisconnectTest, SleepKeepsTheLogOfTheTransferThatItHasBrokenOff) {
  beginTransfer();
  board.manualSleepWasConnected = true;
  static_cast<void>(board.abort());
  disconnect();
  EXPECT_FALSE(fakes.files.isMounted(point));
  EXPECT_EQ(shown().messageLog, u"messages"_s);
  EXPECT_EQ(shown().progress, 40);
}

TEST_F(DisconnectTest, CancelWithoutATransferDoesNothing) {
  flow.onCancel();
  fakes.loop.runPosted();
  EXPECT_FALSE(board.isCancel);
  EXPECT_EQ(shown().messageLog, u"messages"_s);
}
