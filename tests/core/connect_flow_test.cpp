#include "ConnectFixture.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

TEST_F(ConnectTest, ConnectsAndTellsEverybody) {
  prepareShare();
  log.append(u"of the last transfer"_s);
  log.show();
  connect();
  EXPECT_EQ(mounts(), 1);
  EXPECT_EQ(pauses(), QList<std::chrono::milliseconds>());
  EXPECT_EQ(did, QStringList({u"eject"_s, u"wake 10.0.0.2"_s, u"updateDeviceName"_s, u"cleanShare"_s,
                              u"checkAU5SoftwareVersion"_s, u"validateOrvFile"_s}));
  const UserInterfaceState state = shown();
  EXPECT_TRUE(state.connected);
  EXPECT_FALSE(state.busy);
  EXPECT_FALSE(state.connectionIndicator);
  EXPECT_EQ(state.dockImage, u"Connect"_s);
  EXPECT_EQ(state.deviceName, u"Auracore 5"_s);
  EXPECT_EQ(state.messageLog, QString());
  EXPECT_EQ(log.fileInvalid(), QString());
  EXPECT_EQ(session.isAU5UTF8Compliant(), u"YES"_s);
  EXPECT_TRUE(sent(u"ClientConnected.orv"_s));
  EXPECT_FALSE(fakes.files.exists(fakes.paths.mainDictPath)) << "also after a success";
  EXPECT_EQ(questions(), QStringList());
}

TEST_F(ConnectTest, StoresAddressPasswordAndNameInTheirFiles) {
  prepareShare();
  // Of another product: the machine-wide file is begun anew.
  fakes.putDictionary(fakes.paths.machinePreferences, {{u"MACAdress"_s, QByteArray("\n00-1A-2B-3C-4D-5E")}});
  connect();
  const QByteArray password = fakes.propertyLists.archive(u"secret"_s);
  const QVariantMap property = fakes.dictionary(fakes.paths.PFPath);
  EXPECT_EQ(property.value(u"IPAddress"_s), QVariant(u"10.0.0.2"_s));
  EXPECT_EQ(property.value(u"Password"_s), QVariant(password));
  EXPECT_EQ(property.value(u"ProductName"_s), QVariant(u"Auracore 5"_s));
  EXPECT_EQ(
      fakes.dictionary(fakes.paths.machinePreferences),
      QVariantMap({{u"IPAddress"_s, u"10.0.0.2"_s}, {u"Password"_s, password}, {u"Username"_s, u"vaultbox"_s}}));
  EXPECT_EQ(fakes.dictionary(fakes.paths.dropperPropertyFilePath).value(u"DeviceConnected"_s),
            QVariant(u"Auracore 5"_s));
  const QVariantMap earlier = fakes.dictionary(fakes.paths.productsDetailsDictFilePath)
                                  .value(u"Earlier Connected Devices"_s)
                                  .toList()
                                  .value(0)
                                  .toMap();
  EXPECT_EQ(earlier, QVariantMap({{u"IP Address"_s, u"10.0.0.2"_s},
                                  {u"Password"_s, password},
                                  {u"Mac Address"_s, u"NOMACADDRESS"_s},
                                  {u"Detection Type"_s, u"1"_s}}));
}

TEST_F(ConnectTest, ProductConnectedIsKnownAlsoWhenNothingCanBeStored) {
  prepareShare();
  session.setHardwareAddress(u"00-1A-2B-3C-4D-5E"_s); // of the product before
  fakes.files.failPath(fakes.paths.PFPath, FailureKind::DiskFull);
  connect();
  EXPECT_TRUE(fakes.files.isMounted(point));
  EXPECT_EQ(session.connectedAddress(), u"10.0.0.2"_s);
  EXPECT_EQ(session.hardwareAddress(), QString());
}

TEST_F(ConnectTest, EscapesForTheUrlAndStoresTheTextItself) {
  prepareShare();
  session.setPasswordString(u"p@ss;100%"_s);
  session.setIPAddressString(u"box%1"_s);
  connect();
  EXPECT_EQ(mountUrl(), u"//vaultbox:p%40ss%3B100%25@box%251/VB-SHARE$"_s);
  EXPECT_EQ(settings.text(u"IPAddress"_s), u"box%1"_s);
  EXPECT_EQ(fakes.propertyLists.unarchive(settings.data(u"Password"_s)), u"p@ss;100%"_s);
}

TEST_F(ConnectTest, IsShownAsBusyWhileTheMountWaits) {
  prepareShare();
  std::optional<UserInterfaceState> whileMounting;
  fakes.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program == u"/sbin/mount"_s) {
      whileMounting = shown();
    }
    return std::nullopt;
  };
  connect();
  ASSERT_TRUE(whileMounting);
  EXPECT_TRUE(whileMounting->busy);
  EXPECT_TRUE(whileMounting->connectionIndicator);
}

TEST_F(ConnectTest, ThreeAttemptsWithTwoPausesThenAnAlert) {
  prepareShare();
  failMounts(3, "no route to host\n");
  connect();
  EXPECT_EQ(mounts(), 3);
  EXPECT_EQ(pauses(), QList<std::chrono::milliseconds>({2s, 2s}));
  EXPECT_EQ(questions(), QStringList({kErrorConnect}));
  const UserInterfaceState state = shown();
  EXPECT_EQ(state.dockImage, u"Disconnect"_s);
  EXPECT_EQ(state.currentTab, 2);
  EXPECT_FALSE(state.connected);
  EXPECT_FALSE(state.busy);
  EXPECT_FALSE(state.passwordWanted);
  EXPECT_EQ(fakes.userInterface.raises, 1);
  EXPECT_FALSE(fakes.files.exists(fakes.paths.mainDictPath));
}

TEST_F(ConnectTest, LaterAttemptSucceeds) {
  prepareShare();
  failMounts(2, "no route to host\n");
  connect();
  EXPECT_EQ(mounts(), 3);
  EXPECT_TRUE(shown().connected);
  EXPECT_EQ(questions(), QStringList());
}

TEST_F(ConnectTest, RefusedPasswordOpensThePanel) {
  prepareShare();
  failMounts(3, "mount: Authentication error\n");
  connect();
  EXPECT_TRUE(shown().passwordWanted);
  EXPECT_EQ(shown().currentTab, 2);
  EXPECT_EQ(questions(), QStringList());
  connect();
  EXPECT_FALSE(shown().passwordWanted) << "closed when the next connection begins";
  EXPECT_TRUE(shown().connected);
}

TEST_F(ConnectTest, MountThatHangsIsNoMatterOfThePassword) {
  prepareShare();
  fakes.processes.mountAnswers.assign(3, {0, "Authentication\n", true});
  fakes.processes.onHang = [this](std::chrono::milliseconds deadline) { fakes.clock.advance(deadline); };
  connect();
  EXPECT_EQ(questions(), QStringList({kErrorConnect}));
  EXPECT_FALSE(shown().passwordWanted);
}

TEST_F(ConnectTest, WithoutAddressOrPasswordNothingIsMounted) {
  const QString alert = u"Attention|An address or a password is missing. Select a product on the Connection tab and "
                        u"enter its password."_s;
  prepareShare();
  session.setPasswordString({});
  connect();
  EXPECT_EQ(questions(), QStringList({alert}));
  EXPECT_FALSE(fakes.files.exists(fakes.paths.mainDictPath));
  session.setPasswordString(u"secret"_s);
  session.setIPAddressString({});
  connect();
  EXPECT_EQ(questions(), QStringList({alert, alert}));
  EXPECT_EQ(mounts(), 0);
  EXPECT_EQ(did, QStringList({u"eject"_s, u"eject"_s}));
  EXPECT_FALSE(shown().busy);
}

TEST_F(ConnectTest, ExceptionIsLoggedAndTheLookIsTheTrueOne) {
  prepareShare();
  onValidate = [] { throw Failure(u"the reason"_s); };
  connect();
  EXPECT_TRUE(fakes.desktop.logged(u"Exception in ---> <AppController><onConnect> the reason"_s));
  EXPECT_EQ(questions(), QStringList({u"Something went wrong|An unexpected problem occurred while connecting to the "
                                      u"product (Auracore 5). Please try again."_s}));
  EXPECT_TRUE(shown().connected);
  EXPECT_EQ(shown().dockImage, u"Connect"_s);
  EXPECT_FALSE(shown().busy);
  EXPECT_TRUE(fakes.files.exists(fakes.paths.mainDictPath));
}

TEST_F(ConnectTest, ExceptionWithoutAShareShowsDisconnected) {
  prepareShare();
  onValidate = [this] {
    fakes.files.unmount(point);
    throw Failure(u"gone"_s);
  };
  connect();
  EXPECT_FALSE(shown().connected);
  EXPECT_EQ(shown().dockImage, u"Disconnect"_s);
}

TEST_F(ConnectTest, MessageLogStaysAfterASleepThatTheUserChose) {
  prepareShare();
  board.manualSleepWasConnected = true;
  log.append(u"left over"_s);
  log.show();
  connect();
  EXPECT_EQ(shown().messageLog, u"left over"_s);
}

TEST_F(ConnectTest, UnknownProductNameIsToldButNotStored) {
  prepareShare(u"Something else"_s);
  connect();
  EXPECT_EQ(session.deviceName(), u"0"_s);
  EXPECT_EQ(shown().deviceName, u"0"_s);
  EXPECT_FALSE(settings.contains(u"ProductName"_s));
  EXPECT_FALSE(did.contains(u"updateDeviceName"_s));
  EXPECT_EQ(fakes.dictionary(fakes.paths.dropperPropertyFilePath).value(u"DeviceConnected"_s), QVariant(u"0"_s));
}

TEST_F(ConnectTest, DropAgentsFileIsNotMadeAndNotWrittenInVain) {
  prepareShare();
  fakes.files.erase(fakes.paths.dropperPropertyFilePath);
  connect();
  EXPECT_FALSE(fakes.files.exists(fakes.paths.dropperPropertyFilePath));
  fakes.putDictionary(fakes.paths.dropperPropertyFilePath, {{u"DeviceConnected"_s, u"Auracore 5"_s}});
  fakes.files.clearLog();
  connect();
  EXPECT_EQ(fakes.files.log().filter(u"write"_s).filter(fakes.paths.dropperPropertyFilePath), QStringList());
}

TEST_F(ConnectTest, MachineWidePreferencesThatAreMissingAreMadeForEverybody) {
  prepareShare();
  fakes.files.erase(fakes.paths.machinePreferences);
  connect();
  EXPECT_EQ(fakes.files.mode(fakes.paths.machinePreferences), 0777U);
}

TEST_F(ConnectTest, NothingConnectsWhileATransferRuns) {
  prepareShare();
  beginTransfer();
  workerRuns = true;
  connect();
  EXPECT_EQ(did, QStringList());
  EXPECT_EQ(mounts(), 0);
  EXPECT_EQ(board.state(), TransferState::Running);
  EXPECT_TRUE(fakes.desktop.logged(u"Connect has no effect while a transfer runs"_s));
}

TEST_F(ConnectTest, TransferThatEndedInASleepCountsAsComplete) {
  prepareShare();
  beginTransfer();
  board.isCancel = true;
  connect();
  EXPECT_EQ(board.state(), TransferState::Idle);
  EXPECT_FALSE(board.isCancel);
  EXPECT_FALSE(shown().transferring);
  EXPECT_TRUE(shown().connected);
}

TEST_F(ConnectTest, StopRequestEndsThePausesWithoutAnAlert) {
  prepareShare();
  failMounts(3, "no route to host\n");
  fakes.clock.onSleep = [this] { stop.request_stop(); };
  connect();
  EXPECT_EQ(mounts(), 1);
  EXPECT_EQ(pauses().size(), 1);
  EXPECT_EQ(questions(), QStringList());
  EXPECT_FALSE(shown().busy);
  EXPECT_EQ(shown().dockImage, u"Disconnect"_s);
}

TEST_F(ConnectTest, ConnectsAlsoWhenTheStartMadeNoConnection) {
  prepareShare();
  ConnectFlow fresh(tools, parts, fakes.paths.mainDictPath,
                    {[] {}, [](const QString &) {}, [] { return false; }, [] {}, [] {}});
  ASSERT_EQ(fresh.checkConnection(), nullptr);
  fresh.onConnect();
  fakes.loop.runPosted();
  EXPECT_TRUE(shown().connected);
}

TEST_F(ConnectTest, AutomaticConnectionStoresNoCredentials) {
  prepareShare();
  ASSERT_TRUE(flow.connectToVaultbox(u"secret"_s, u"10.0.0.2"_s));
  flow.connectedAutomatically();
  fakes.loop.runPosted();
  EXPECT_TRUE(shown().connected);
  EXPECT_TRUE(sent(u"ClientConnected.orv"_s));
  EXPECT_EQ(settings.text(u"ProductName"_s), u"Auracore 5"_s);
  EXPECT_FALSE(settings.contains(u"IPAddress"_s));
  EXPECT_TRUE(fakes.files.exists(fakes.paths.mainDictPath));
}
