#include "StartUpFixture.h"

#include <stdexcept>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

const auto kSupport = u"/Users/anna/Library/Application Support/Sonorel"_s;
const auto kMachine = u"/Library/Application Support/Sonorel"_s;
const auto kUserPreferences = u"/Users/anna/Library/Application Support/Sonorel/LastPreferences.plist"_s;
const auto kMachinePreferences = u"/Library/Application Support/Sonorel/LastPreferences.plist"_s;
const auto kProperties = u"/Applications/Sonorel/App Data/MacClientProperty"_s;

} // namespace

TEST_F(StartUpTest, FormsThePathsOfTheInstallation) {
  EXPECT_EQ(fakes.paths.PFPath, kProperties);
  EXPECT_EQ(fakes.paths.dropperPropertyFilePath, u"/Applications/Sonorel/App Data/DropperPropertyListFile"_s);
  EXPECT_EQ(fakes.paths.mainDictPath, kSupport + u"/mainDict.xml"_s);
  EXPECT_EQ(fakes.paths.productsDetailsDictFilePath, kSupport + u"/DevicesDetails.xml"_s);
  EXPECT_EQ(fakes.paths.tempFileLocation, kSupport + u'/');
  EXPECT_EQ(fakes.paths.resourceFilePath, u"/Applications/Sonorel/Sonorel.app/Contents/Resources/"_s);
  EXPECT_EQ(fakes.paths.agentExecutable,
            u"/Applications/Sonorel/Sonorel.app/Contents/Resources/TrackChute.app/Contents/MacOS/TrackChute"_s);
}

TEST_F(StartUpTest, MakesTheSupportFoldersForEverybody) {
  fakes.install();
  ASSERT_TRUE(startUp.init());
  for (const QString &folder :
       {u"/Library/Application Support"_s, kMachine, u"/Users/anna/Library/Application Support"_s, kSupport}) {
    EXPECT_EQ(fakes.files.mode(folder), 0777U) << folder.toStdString();
  }
  EXPECT_EQ(fakes.files.mode(kMachinePreferences), 0777U);
  EXPECT_EQ(fakes.dictionary(kMachinePreferences), QVariantMap());
}

TEST_F(StartUpTest, LeavesExistingFoldersAndPreferencesAsTheyAre) {
  fakes.install();
  fakes.change(kProperties, {{u"FirstLaunch"_s, u"No"_s}, {u"GUID"_s, u"{KEPT}"_s}});
  fakes.files.makeFolders(kMachine);
  fakes.putDictionary(kMachinePreferences, {{u"Username"_s, u"x"_s}});
  const quint32 mode = fakes.files.mode(kMachinePreferences);
  fakes.putDictionary(kUserPreferences, {{u"Language"_s, u"StringsKorean"_s}, {u"UserFirstLaunch"_s, u"No"_s}});
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(fakes.dictionary(kMachinePreferences), QVariantMap({{u"Username"_s, u"x"_s}}));
  EXPECT_EQ(fakes.files.mode(kMachinePreferences), mode);
  EXPECT_EQ(fakes.dictionary(kUserPreferences),
            QVariantMap({{u"Language"_s, u"StringsKorean"_s}, {u"UserFirstLaunch"_s, u"No"_s}}));
  EXPECT_EQ(strings.languageFile(), u"StringsKorean"_s);
}

TEST_F(StartUpTest, WritesNoMachineWidePreferencesWhenItIsUnknownWhetherTheyAreThere) {
  fakes.install();
  fakes.files.makeFolders(kMachine);
  fakes.putDictionary(kMachinePreferences, {{u"Username"_s, u"x"_s}});
  fakes.files.failPath(kMachinePreferences, FailureKind::Unknown);
  EXPECT_TRUE(startUp.init());
}

TEST_F(StartUpTest, LeavesPreferencesAloneWhenItIsUnknownWhetherTheyAreThere) {
  fakes.install();
  fakes.putDictionary(kUserPreferences, {{u"Language"_s, u"StringsKorean"_s}, {u"UserFirstLaunch"_s, u"No"_s}});
  fakes.files.failPath(kUserPreferences, FailureKind::Unknown);
  EXPECT_TRUE(startUp.init());
  EXPECT_TRUE(fakes.desktop.logged(kUserPreferences));
  fakes.files.clearFailures();
  EXPECT_EQ(fakes.dictionary(kUserPreferences),
            QVariantMap({{u"Language"_s, u"StringsKorean"_s}, {u"UserFirstLaunch"_s, u"No"_s}}));
  EXPECT_TRUE(fakes.desktop.items.empty());
}

TEST_F(StartUpTest, WritesThePreferencesOfAFirstStartWithTheSystemLanguage) {
  fakes.install();
  fakes.desktop.language = u"sv-SE"_s;
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(fakes.dictionary(kUserPreferences),
            QVariantMap(
                {{u"Language"_s, u"StringsSvenska"_s}, {u"ArtworkOption"_s, 0LL}, {u"UserFirstLaunch"_s, u"Yes"_s}}));
}

TEST_F(StartUpTest, RegistersAsALoginItemOnTheFirstStartOnly) {
  fakes.install();
  fakes.desktop.items = {{u"/Old/Sonorel.app"_s, true}, {u"/Applications/Other.app"_s, false}};
  ASSERT_TRUE(startUp.init());
  ASSERT_EQ(fakes.desktop.items.size(), 2U);
  EXPECT_EQ(fakes.desktop.items.at(0).path, u"/Applications/Other.app"_s);
  EXPECT_EQ(fakes.desktop.items.at(1).path, u"/Applications/Sonorel/Sonorel.app"_s);
  EXPECT_FALSE(fakes.desktop.items.at(1).hide);
  startUp.performFirstLaunchCheck();
  fakes.desktop.items.clear();
  ASSERT_TRUE(startUp.init());
  EXPECT_TRUE(fakes.desktop.items.empty());
}

TEST_F(StartUpTest, MakesAGuidOf38CharactersWhileTheFirstLaunchLasts) {
  fakes.install();
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(session.UUID(), u"{00000000-0000-0000-0000-000000000001}"_s);
  EXPECT_EQ(session.UUID().size(), 38);
  EXPECT_EQ(fakes.dictionary(kProperties).value(u"GUID"_s), u"{00000000-0000-0000-0000-000000000001}"_s);
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(session.UUID(), u"{00000000-0000-0000-0000-000000000002}"_s);
  startUp.performFirstLaunchCheck();
  EXPECT_EQ(fakes.dictionary(kProperties).value(u"FirstLaunch"_s), u"No"_s);
  EXPECT_EQ(fakes.dictionary(kUserPreferences).value(u"UserFirstLaunch"_s), u"No"_s);
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(session.UUID(), u"{00000000-0000-0000-0000-000000000002}"_s);
}

TEST_F(StartUpTest, KeepsTheSpaceNumberAndTheLastLanguageInMemory) {
  fakes.install();
  fakes.change(kProperties, {{u"FirstLaunch"_s, u"No"_s}});
  fakes.putDictionary(kUserPreferences, {{u"Language"_s, u"StringsDansk"_s}, {u"UserFirstLaunch"_s, u"No"_s}});
  fakes.desktop.space = 3;
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(settings.number(u"SpaceNumber"_s, -1), 3);
  EXPECT_EQ(settings.text(u"LastLanguage"_s), u"StringsDansk"_s);
  EXPECT_EQ(fakes.dictionary(kProperties).value(u"SpaceNumber"_s), 0);
  EXPECT_EQ(fakes.dictionary(kProperties).value(u"LastLanguage"_s), u"StringsEnglish"_s);
}

TEST_F(StartUpTest, ReadsWhatIsKnownOfTheProduct) {
  fakes.install();
  fakes.change(kProperties, {{u"ProductName"_s, u"Auracore 5"_s}, {u"AU5SupportsUnicode"_s, u"YES"_s}});
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(session.deviceName(), u"Auracore 5"_s);
  EXPECT_EQ(session.isAU5UTF8Compliant(), u"YES"_s);
  EXPECT_EQ(startUp.checkMarkString(), u"✓"_s);
}

TEST_F(StartUpTest, GoesOnWithEmptySettingsWithoutAPropertyFile) {
  installStrings(fakes.files);
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(session.UUID(), QString());
  EXPECT_EQ(session.isAU5UTF8Compliant(), u"NO"_s);
  EXPECT_FALSE(fakes.files.exists(kProperties));
  EXPECT_EQ(shareFoldersOf(settings).system(), QString());
  EXPECT_TRUE(fakes.desktop.logged(kProperties)) << "the missing file is named in the log";
}

TEST_F(StartUpTest, StartsAnewWithDamagedPreferences) {
  fakes.install();
  fakes.files.makeFolders(kSupport);
  fakes.files.put(kUserPreferences, "<plist><dict><key>Language");
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(preferences.text(u"Language"_s), u"StringsEnglish"_s);
  EXPECT_EQ(fakes.files.tree(kSupport).keys().filter(u"LastPreferences"_s).size(), 2) << "the damaged one is kept";
  EXPECT_TRUE(fakes.desktop.logged(u"is damaged"_s)) << "and named in the log";
}

TEST_F(StartUpTest, EndsOtherCopiesAndEjectsTheirDisk) {
  fakes.install();
  fakes.runningApplications.applications = {
      {u"Sonorel"_s, u"/Elsewhere/Sonorel.app"_s, u"com.orv.Sonorel"_s, 11},
      {u"Sonorel"_s, u"/Applications/Sonorel/Sonorel.app"_s, u"com.orv.Sonorel"_s, 12},
      {u"iTunes"_s, u"/Applications/iTunes.app"_s, u"com.apple.iTunes"_s, 13}};
  ASSERT_TRUE(startUp.init());
  ASSERT_EQ(fakes.runningApplications.ended.size(), 1U);
  EXPECT_EQ(fakes.runningApplications.ended.at(0).processId, 11);
  EXPECT_EQ(fakes.scripts.ejected, QStringList({u"VB-SHARE$"_s}));
}

TEST_F(StartUpTest, ObservesSpacesAndRestartsTheAgentAtTheEnd) {
  fakes.install();
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(ran, QStringList({u"createRoles"_s, u"observeNotifications"_s}));
  EXPECT_EQ(fakes.processes.detached, QStringList({fakes.paths.agentExecutable}));
  EXPECT_EQ(fakes.desktop.agentRemovals, 1);
  fakes.desktop.space = 2;
  fakes.loop.advance(999ms);
  EXPECT_EQ(fakes.processes.detached.size(), 1);
  fakes.loop.advance(1ms);
  EXPECT_EQ(fakes.processes.detached.size(), 2);
}

TEST_F(StartUpTest, TellsAFailureAndTerminatesWhenItHasBeenRead) {
  fakes.install();
  fakes.files.failPath(kMachine, FailureKind::Other);
  EXPECT_FALSE(startUp.init());
  ASSERT_EQ(fakes.desktop.lines.size(), 1);
  EXPECT_TRUE(fakes.desktop.lines.first().startsWith(u"Exception in ---> <AppController><init> "_s));
  ASSERT_EQ(view.asked.size(), 1U);
  EXPECT_EQ(view.asked.front().message, u"Something went wrong"_s);
  EXPECT_EQ(view.asked.front().informativeText, u"Sonorel could not start because its settings could not be "
                                                u"prepared. The program will now close."_s);
  EXPECT_EQ(view.asked.front().buttons, QStringList({u"OK"_s}));
  EXPECT_FALSE(ran.contains(u"terminate"_s));
  view.answer(0);
  EXPECT_TRUE(ran.contains(u"terminate"_s));
}

TEST_F(StartUpTest, TellsAFailureInTheLanguageOfTheUserOnceItIsLoaded) {
  fakes.install();
  fakes.files.put(resourceFolder() + u"StringsDeutsch"_s, shipped(u"StringsDeutsch"_s));
  fakes.putDictionary(kUserPreferences, {{u"Language"_s, u"StringsDeutsch"_s}, {u"UserFirstLaunch"_s, u"No"_s}});
  onObserveNotifications = [] { throw std::runtime_error("no bus"); };
  EXPECT_FALSE(startUp.init());
  ASSERT_EQ(view.asked.size(), 1U);
  EXPECT_EQ(view.asked.front().message, u"Es ist ein Fehler aufgetreten"_s);
  EXPECT_EQ(
      view.asked.front().informativeText,
      u"Sonorel konnte nicht starten, weil sich die Einstellungen nicht vorbereiten ließen. Das Programm wird jetzt beendet."_s);
}

TEST_F(StartUpTest, AwakesInTheWrittenOrder) {
  fakes.install();
  ASSERT_TRUE(startUp.init());
  ran.clear();
  startUp.awakeFromNib();
  EXPECT_EQ(ran, QStringList({u"indicator on"_s, u"prepareProducts"_s, u"updateDeviceName"_s, u"registerForPower"_s,
                              u"connectAutomatically"_s, u"createDiscovery"_s, u"indicator off"_s}));
}

TEST_F(StartUpTest, StopsAwakingWhenPowerNotificationsAreRefused) {
  fakes.install();
  ASSERT_TRUE(startUp.init());
  ran.clear();
  powerRegisters = false;
  startUp.awakeFromNib();
  EXPECT_EQ(fakes.desktop.errors, QStringList({u"IORegisterForSystemPower failed\n"_s}));
  EXPECT_EQ(ran, QStringList({u"indicator on"_s, u"prepareProducts"_s, u"updateDeviceName"_s, u"registerForPower"_s}))
      << "a window with its texts and products";
}

TEST_F(StartUpTest, KeepsRunningAfterAFailureWhileAwaking) {
  fakes.install();
  fakes.change(kProperties, {{u"ProductName"_s, u"Auralis 5"_s}});
  ASSERT_TRUE(startUp.init());
  onPrepareProducts = [] { throw std::runtime_error("broken"); };
  startUp.awakeFromNib();
  EXPECT_EQ(fakes.desktop.lines, QStringList({u"Exception in ---> <AppController><awakeFromNib> broken"_s}));
  EXPECT_EQ(view.calls, QStringList({u"alert Something went wrong|An unexpected problem occurred while connecting to "
                                     u"the product (Auralis 5). Please try again."_s}));
  EXPECT_EQ(ran.mid(ran.size() - 3), QStringList({u"showTrueState"_s, u"createDiscovery"_s, u"indicator off"_s}));
}

TEST_F(StartUpTest, LooksForProductsAlsoAfterAConnectionThatFailedByException) {
  fakes.install();
  ASSERT_TRUE(startUp.init());
  ran.clear();
  onConnectAutomatically = [] { throw std::runtime_error("no pipe"); };
  startUp.awakeFromNib();
  EXPECT_EQ(ran,
            QStringList({u"indicator on"_s, u"prepareProducts"_s, u"updateDeviceName"_s, u"registerForPower"_s,
                         u"connectAutomatically"_s, u"showTrueState"_s, u"createDiscovery"_s, u"indicator off"_s}));
  EXPECT_EQ(fakes.desktop.lines, QStringList({u"Exception in ---> <AppController><awakeFromNib> no pipe"_s}));
}
