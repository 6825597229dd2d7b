#include "core/SystemIntegration.h"

#include "FakePlatform.h"
#include "core/EjectScript.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

class SystemIntegrationTest : public testing::Test {
protected:
  SystemIntegrationTest() {
    fakes.install();
    settings.load();
    settings.set(u"SpaceNumber"_s, 1LL);
  }

  FakePlatform fakes;
  Settings settings{fakes.files, fakes.propertyLists, fakes.paths.PFPath};
  SystemIntegration system{
      fakes.runningApplications, fakes.processes, fakes.scripts, fakes.desktop, fakes.loop, settings, fakes.paths};
};

} // namespace

TEST_F(SystemIntegrationTest, EndsOneAgentUnderEitherIdentifierAndStartsItAnew) {
  fakes.runningApplications.applications = {{u"Other"_s, {}, u"com.orv.Sonorel"_s, 1},
                                            {u"TrackChute"_s, {}, u"COM.YourCompany.trackchute"_s, 2},
                                            {u"TrackChute"_s, {}, u"com.orv.TrackChute"_s, 3}};
  system.killTrackChuteAndLaunch();
  ASSERT_EQ(fakes.runningApplications.ended.size(), 1U);
  EXPECT_EQ(fakes.runningApplications.ended.front().processId, 2);
  EXPECT_EQ(fakes.processes.detached,
            QStringList({u"/Applications/Sonorel/Sonorel.app/Contents/Resources/TrackChute.app/Contents/MacOS/"
                         u"TrackChute"_s}));
  system.killTrackChuteAndLaunch();
  EXPECT_EQ(fakes.runningApplications.ended.back().processId, 3);
}

TEST_F(SystemIntegrationTest, TellsOnceThatTheAgentIsNotInstalled) {
  fakes.processes.detachedStarts = false;
  system.killTrackChuteAndLaunch();
  system.spaceChanged();
  EXPECT_EQ(fakes.desktop.lines,
            QStringList({u"the drop agent could not be started: "
                         u"/Applications/Sonorel/Sonorel.app/Contents/Resources/TrackChute.app/Contents/MacOS/"
                         u"TrackChute"_s}));
}

TEST_F(SystemIntegrationTest, AddsALoginItemWithoutLookingForDuplicates) {
  EXPECT_TRUE(system.addLoginItem(u"/Applications/A.app"_s, true));
  EXPECT_TRUE(system.addLoginItem(u"/Applications/A.app"_s, false));
  ASSERT_EQ(fakes.desktop.items.size(), 2U);
  EXPECT_TRUE(fakes.desktop.items.at(0).hide);
  fakes.desktop.itemsCanBeSet = false;
  EXPECT_FALSE(system.addLoginItem(u"/Applications/B.app"_s, false));
}

TEST_F(SystemIntegrationTest, AddsNothingForAnEmptyPath) {
  EXPECT_FALSE(system.addLoginItem(QString(), false));
  EXPECT_TRUE(fakes.desktop.items.empty());
}

TEST_F(SystemIntegrationTest, RemovesTheFirstLoginItemOfThatPath) {
  fakes.desktop.items = {{u"/A.app"_s, false}, {u"/B.app"_s, false}, {u"/A.app"_s, true}};
  system.removeLoginItem(u"/A.app"_s);
  ASSERT_EQ(fakes.desktop.items.size(), 2U);
  EXPECT_EQ(fakes.desktop.items.at(0).path, u"/B.app"_s);
  EXPECT_EQ(fakes.desktop.lines, QStringList());
}

TEST_F(SystemIntegrationTest, LogsLoginItemsThatCannotBeRemoved) {
  system.removeLoginItem(u"/A.app"_s);
  fakes.desktop.items = {{u"/A.app"_s, false}};
  fakes.desktop.itemsCanBeSet = false;
  system.removeLoginItem(u"/A.app"_s);
  EXPECT_EQ(fakes.desktop.lines,
            QStringList({u"/A.app not found in login items array"_s, u"CFPreferencesSynchronize failed"_s}));
}

TEST_F(SystemIntegrationTest, RestartsTheAgentOnANewSpaceAndStoresIt) {
  fakes.desktop.space = 2;
  system.spaceChangeTimerFunction();
  system.spaceChangeTimerFunction();
  EXPECT_EQ(fakes.processes.detached.size(), 1);
  EXPECT_EQ(fakes.dictionary(fakes.paths.PFPath).value(u"SpaceNumber"_s), 2);
  fakes.desktop.space = -1;
  system.spaceChangeTimerFunction();
  EXPECT_EQ(fakes.processes.detached.size(), 2);
  EXPECT_EQ(fakes.dictionary(fakes.paths.PFPath).value(u"SpaceNumber"_s), -1);
}

TEST_F(SystemIntegrationTest, NeverStoresTheNumberOfARunningSwitch) {
  fakes.desktop.space = 65537;
  system.spaceChangeTimerFunction();
  EXPECT_EQ(fakes.processes.detached, QStringList());
  EXPECT_EQ(settings.number(u"SpaceNumber"_s, -1), 1);
}

TEST_F(SystemIntegrationTest, LogsAFailureOfThePoll) {
  fakes.desktop.space = 2;
  fakes.files.failPath(fakes.paths.PFPath, FailureKind::DiskFull);
  system.spaceChangeTimerFunction();
  EXPECT_TRUE(fakes.desktop.logged(u"Exception in ---> <AppController><spaceChangeTimerFunction> "_s));
}

TEST_F(SystemIntegrationTest, PollsOnceASecondUntilStopped) {
  system.startObservingSpaces();
  system.startObservingSpaces();
  EXPECT_EQ(fakes.loop.timerCount(), 1);
  fakes.desktop.space = 2;
  fakes.loop.advance(1s);
  EXPECT_EQ(fakes.processes.detached.size(), 1);
  system.stopObservingSpaces();
  EXPECT_EQ(fakes.loop.timerCount(), 0);
}

TEST_F(SystemIntegrationTest, EjectsTheServerDiskByName) {
  system.unmountVBShareUsingApplescript();
  EXPECT_EQ(fakes.scripts.ejected, QStringList({u"VB-SHARE$"_s}));
}

TEST(EjectScript, HasItsExactText) {
  EXPECT_EQ(ejectScript(), u"                tell application \"Finder\"\n"
                           u"                if (exists the disk \"VB-SHARE$\") then\n"
                           u"                eject \"VB-SHARE$\"\n"
                           u"                delay 2\n"
                           u"\t\t\t\tend if\n"
                           u"                end tell"_s);
}
