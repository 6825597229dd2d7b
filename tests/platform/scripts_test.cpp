#include "platform/linux/LinuxScripts.h"
#include "support/FakeClock.h"
#include "support/FakeFileSystem.h"
#include "support/FakeProcesses.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace sonorel;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

class LinuxScriptsTest : public testing::Test {
protected:
  test::FakeFileSystem files;
  test::FakeProcesses processes{files};
  test::FakeClock clock;
  LinuxScripts scripts{files, processes, clock, [] { return std::stop_token(); }, u"/Resources/Convert.sh"_s};

  void answer(const ToolResult &result) {
    processes.onRun = [result](const ToolRequest &) { return std::optional(result); };
  }
};

} // namespace

TEST_F(LinuxScriptsTest, EjectsAMountedDiskAndPauses) {
  files.mount(u"/Volumes/VB-SHARE$"_s);
  scripts.ejectDisk(u"VB-SHARE$"_s);
  ASSERT_EQ(processes.requests.size(), 1);
  EXPECT_EQ(processes.requests[0].program, u"/sbin/umount"_s);
  EXPECT_EQ(processes.requests[0].arguments, QStringList{u"/Volumes/VB-SHARE$"_s});
  EXPECT_EQ(clock.sleeps, QList<std::chrono::milliseconds>{2000ms});
}

TEST_F(LinuxScriptsTest, DiskThatIsNotMountedIsLeftAlone) {
  files.makeFolders(u"/Volumes/VB-SHARE$"_s);
  scripts.ejectDisk(u"VB-SHARE$"_s);
  EXPECT_TRUE(processes.requests.isEmpty());
  EXPECT_TRUE(clock.sleeps.isEmpty());
}

TEST_F(LinuxScriptsTest, FailedEjectHasNoPause) {
  files.mount(u"/Volumes/VB-SHARE$"_s);
  answer({ToolEnding::Exited, 1, "busy"});
  scripts.ejectDisk(u"VB-SHARE$"_s);
  EXPECT_TRUE(clock.sleeps.isEmpty());
}

TEST_F(LinuxScriptsTest, ConvertsABookmark) {
  answer({ToolEnding::Exited, 0, {}});
  EXPECT_EQ(scripts.convertBookmark(u"/b/\"x\".webloc"_s, {}), std::nullopt);
  ASSERT_EQ(processes.requests.size(), 1);
  EXPECT_EQ(processes.requests[0].arguments, (QStringList{u"/Resources/Convert.sh"_s, u"/b/\"x\".webloc"_s}));
}

TEST_F(LinuxScriptsTest, AConversionEndsWithItsOwnTokenOnly) {
  std::stop_source others;
  LinuxScripts interrupted{files, processes, clock, [&] { return others.get_token(); }, u"/Resources/Convert.sh"_s};
  others.request_stop();
  std::stop_source own;
  EXPECT_EQ(interrupted.convertBookmark(u"/b.webloc"_s, own.get_token()), std::nullopt);
  own.request_stop();
  EXPECT_EQ(interrupted.convertBookmark(u"/b.webloc"_s, own.get_token()), u"the converter was stopped"_s);
}

TEST_F(LinuxScriptsTest, TellsWhyABookmarkWasNotConverted) {
  answer({ToolEnding::Exited, 3, "no address inside\n"});
  EXPECT_EQ(scripts.convertBookmark(u"/b.webloc"_s, {}), u"no address inside"_s);
  answer({ToolEnding::Exited, 3, {}});
  EXPECT_EQ(scripts.convertBookmark(u"/b.webloc"_s, {}), u"the converter ended with status 3"_s);
  answer({ToolEnding::NotStarted, -1, {}});
  EXPECT_EQ(scripts.convertBookmark(u"/b.webloc"_s, {}), u"the converter could not be started"_s);
}
