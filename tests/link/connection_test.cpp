#include "link/Connection.h"

#include "platform/Failure.h"
#include "platform/linux/LibplistPropertyLists.h"
#include "support/FakeClock.h"
#include "support/FakeDesktop.h"
#include "support/FakeProcesses.h"
#include "support/Fixtures.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

const auto kPoint = u"/Volumes/VB-SHARE$"_s;
const QStringList kMountArguments{u"-t"_s, u"smbfs"_s, u"//vaultbox:p%40ss@192.168.1.20/VB-SHARE$"_s,
                                  u"/Volumes/VB-SHARE$/"_s};

class ConnectionTest : public testing::Test {
protected:
  ConnectionTest() {
    files.makeFolders(u"/Volumes"_s);
    settings.set(u"Volume"_s, u"/Volumes/"_s);
    settings.set(u"Shared Folder"_s, u"VB-SHARE$"_s);
    settings.set(u"Username"_s, u"vaultbox"_s);
    processes.onHang = [this](std::chrono::milliseconds deadline) { clock.advance(deadline); };
  }

  Connection connection() {
    return Connection({files, processes, clock, desktop, settings, [this] { return stop.get_token(); }, flag});
  }
  bool connect() { return connection().connectToVaultbox(u"p%40ss"_s, u"192.168.1.20"_s); }
  // The share, known to the tools from an earlier mount.
  void prepareShare() {
    mountShare(files);
    files.unmount(kPoint);
    files.erase(kPoint);
  }
  QStringList runs() {
    QStringList lines;
    for (const ToolRequest &request : processes.requests) {
      lines.append((QStringList{request.program} + request.arguments).join(u' '));
    }
    return lines;
  }

  FakeFileSystem files;
  FakeProcesses processes{files};
  FakeClock clock{&files};
  FakeDesktop desktop;
  LibplistPropertyLists lists;
  Settings settings{files, lists, u"/unused"_s};
  std::stop_source stop;
  std::atomic<bool> flag{false};
};

} // namespace

TEST_F(ConnectionTest, MountsWithExactlyFourArguments) {
  prepareShare();
  EXPECT_TRUE(connect());
  ASSERT_EQ(processes.programs(), QStringList({u"/bin/rmdir"_s, u"/sbin/mount"_s}));
  EXPECT_EQ(processes.requests.at(1).arguments, kMountArguments);
  EXPECT_EQ(processes.requests.at(1).deadline, 20s);
  EXPECT_FALSE(processes.requests.at(1).input.has_value());
  EXPECT_TRUE(connection().isConnected());
}

TEST_F(ConnectionTest, MakesTheMountPointForEverybody) {
  processes.mountAnswers = {{1, "no\n", false}};
  EXPECT_FALSE(connect());
  EXPECT_EQ(files.mode(kPoint), 0777U);
}

TEST_F(ConnectionTest, MountsAShareAfreshThatIsMountedAlready) {
  mountShare(files);
  EXPECT_TRUE(connect());
  EXPECT_EQ(runs(), QStringList({u"/sbin/umount /Volumes/VB-SHARE$"_s, u"/bin/rmdir /Volumes/VB-SHARE$"_s,
                                 u"/sbin/mount "_s + kMountArguments.join(u' ')}));
}

TEST_F(ConnectionTest, TakesAReachableVolumeOfAnotherTypeAsItIs) {
  files.mount(kPoint, u"hfs"_s);
  files.makeFolders(kPoint + u"/System"_s);
  EXPECT_TRUE(connect());
  EXPECT_FALSE(processes.programs().contains(u"/sbin/mount"_s));
  EXPECT_FALSE(processes.programs().contains(u"/sbin/umount"_s));
}

TEST_F(ConnectionTest, DoesNotTakeALeftoverFolderForTheShare) {
  files.makeFolders(kPoint + u"/System"_s);
  EXPECT_FALSE(connection().isConnected());
  EXPECT_FALSE(connection().isVolumeForAutomounted());
  processes.mountAnswers = {{1, "mount: something lies there\n", false}};
  EXPECT_FALSE(connect());
  EXPECT_TRUE(processes.programs().contains(u"/sbin/mount"_s));
}

TEST_F(ConnectionTest, DoesNotTakeARememberedFolderForAServerThatAnswers) {
  mountShare(files);
  EXPECT_TRUE(connection().isConnected());
  files.setRemembered(kPoint, true);
  EXPECT_FALSE(connection().isConnected());
  EXPECT_TRUE(connection().isVolumeForAutomounted());
}

TEST_F(ConnectionTest, IsTrueForASuccessfulMountWithoutASystemFolder) {
  files.mount(kPoint);
  files.unmount(kPoint);
  files.erase(kPoint);
  EXPECT_TRUE(connect());
  EXPECT_FALSE(connection().isConnected());
  EXPECT_TRUE(connection().isVolumeForAutomounted());
}

TEST_F(ConnectionTest, ReadsAnAuthenticationFailureFromTheOutput) {
  for (const char *output :
       {"mount: Authentication error\n", "mount_smbfs: Permission denied\n", "\xFF\xFE Authentication \xC3"}) {
    flag = true;
    processes.mountAnswers = {{2, output, false}};
    EXPECT_FALSE(connect());
    EXPECT_TRUE(connection().getConnectionFailureReason()) << output;
  }
}

TEST_F(ConnectionTest, TakesEveryOtherOutputForAnotherFailure) {
  for (const char *output : {"", "mount: No route to host\n", "authentication", "PERMISSION"}) {
    flag = false;
    processes.mountAnswers = {{2, output, false}};
    EXPECT_FALSE(connect());
    EXPECT_FALSE(connection().getConnectionFailureReason()) << output;
  }
}

TEST_F(ConnectionTest, DoesNotReadTheOutputOfAToolThatWasEnded) {
  processes.mountAnswers = {{0, "Authentication error\n", true}};
  EXPECT_FALSE(connect());
  EXPECT_FALSE(connection().getConnectionFailureReason());
  EXPECT_EQ(clock.monotonicNow(), 20s);
  EXPECT_TRUE(desktop.logged(u"did not end within 20 seconds"_s));
}

TEST_F(ConnectionTest, DoesNotReadTheOutputAfterTwentySeconds) {
  const auto answerAfter = [this](std::chrono::milliseconds time) {
    processes.onRun = [this, time](const ToolRequest &request) -> std::optional<ToolResult> {
      if (request.program != u"/sbin/mount"_s) {
        return std::nullopt;
      }
      clock.advance(time);
      return exited(1, "Permission denied");
    };
    EXPECT_FALSE(connect());
    return connection().getConnectionFailureReason();
  };
  EXPECT_FALSE(answerAfter(20'000ms));
  EXPECT_TRUE(answerAfter(19'999ms));
}

TEST_F(ConnectionTest, SaysAuthenticationBeforeAnyFailureAndKeepsTheLastOneAfterASuccess) {
  EXPECT_TRUE(connection().getConnectionFailureReason());
  processes.mountAnswers = {{1, "no route", false}};
  EXPECT_FALSE(connect());
  prepareShare();
  EXPECT_TRUE(connect());
  EXPECT_FALSE(connection().getConnectionFailureReason());
}

TEST_F(ConnectionTest, TakesAToolThatCannotBeStartedForAnotherFailure) {
  processes.onRun = [](const ToolRequest &) { return ToolResult(); };
  EXPECT_FALSE(connect());
  EXPECT_FALSE(connection().getConnectionFailureReason());
  EXPECT_TRUE(desktop.logged(u"/sbin/mount could not be started"_s));
}

TEST_F(ConnectionTest, EndsAtOnceWhenStopped) {
  stop.request_stop();
  EXPECT_FALSE(connect());
  EXPECT_EQ(clock.monotonicNow(), 0ms);
}

TEST_F(ConnectionTest, LogsAnExceptionAndIsNotConnected) {
  processes.onRun = [](const ToolRequest &) -> std::optional<ToolResult> { throw Failure(u"no pipe"_s); };
  EXPECT_FALSE(connect());
  EXPECT_EQ(desktop.lines, QStringList({u"<Connection><connectToVaultbox> no pipe"_s}));
  EXPECT_TRUE(connection().getConnectionFailureReason()) << "the flag is left alone";
}

TEST_F(ConnectionTest, NeverLogsThePassword) {
  processes.mountAnswers = {{0, {}, true}};
  EXPECT_FALSE(connect());
  processes.mountAnswers = {{1, "no", false}};
  EXPECT_FALSE(connect());
  EXPECT_FALSE(desktop.logged(u"p%40ss"_s));
}

TEST_F(ConnectionTest, UnmountsByForceAndPauses) {
  mountShare(files);
  EXPECT_TRUE(connection().disconnectFromVaultbox());
  EXPECT_EQ(runs().first(), u"/sbin/umount -f /Volumes/VB-SHARE$"_s);
  EXPECT_EQ(clock.sleeps, QList<std::chrono::milliseconds>({2s}));
  EXPECT_FALSE(files.isMounted(kPoint));
  EXPECT_FALSE(files.exists(kPoint)) << "the empty point is removed";
}

TEST_F(ConnectionTest, LeavesThePointWhenTheUnmountFails) {
  mountShare(files);
  processes.failAt(1, exited(16, "umount: busy\n"));
  EXPECT_FALSE(connection().disconnectFromVaultbox());
  EXPECT_EQ(runs(), QStringList({u"/sbin/umount -f /Volumes/VB-SHARE$"_s}));
  EXPECT_EQ(clock.sleeps, QList<std::chrono::milliseconds>({2s}));
  EXPECT_TRUE(connection().isConnected());
}

TEST_F(ConnectionTest, DisconnectsWithNothingMounted) {
  EXPECT_TRUE(connection().disconnectFromVaultbox());
  EXPECT_EQ(runs(), QStringList({u"/bin/rmdir /Volumes/VB-SHARE$"_s}));
  EXPECT_EQ(clock.sleeps, QList<std::chrono::milliseconds>());
}

TEST_F(ConnectionTest, UnmountsAShareThatDoesNotAnswer) {
  mountShare(files);
  files.setUnknown(kPoint, true);
  EXPECT_FALSE(connection().isConnected());
  EXPECT_TRUE(connection().disconnectFromVaultbox());
  EXPECT_EQ(runs().first(), u"/sbin/umount /Volumes/VB-SHARE$"_s);
}

TEST_F(ConnectionTest, LeavesALostShareByForceAndNothingElse) {
  connection().leaveLostVolume();
  EXPECT_EQ(runs(), QStringList()) << "nothing is mounted";
  mountShare(files);
  files.setUnknown(kPoint, true);
  connection().leaveLostVolume();
  EXPECT_EQ(runs().first(), u"/sbin/umount -f /Volumes/VB-SHARE$"_s);
  EXPECT_FALSE(files.isMounted(kPoint));
  EXPECT_FALSE(files.exists(kPoint));
  EXPECT_EQ(desktop.lines, QStringList());
}

TEST_F(ConnectionTest, LogsALostShareThatStaysMounted) {
  mountShare(files);
  files.setUnknown(kPoint, true);
  processes.onRun = [](const ToolRequest &) { return ToolResult{ToolEnding::Exited, 1, {}}; };
  connection().leaveLostVolume();
  EXPECT_EQ(desktop.lines, QStringList{u"The lost share could not be unmounted."_s});
}

TEST_F(ConnectionTest, LogsAnExceptionWhileDisconnecting) {
  processes.onRun = [](const ToolRequest &) -> std::optional<ToolResult> { throw Failure(u"no pipe"_s); };
  EXPECT_FALSE(connection().disconnectFromVaultbox());
  EXPECT_EQ(desktop.lines, QStringList({u"<Connection><disconnectFromVaultbox> no pipe"_s}));
  EXPECT_THROW(connection().volumeClean(), Failure) << "passed on to the caller";
}

TEST_F(ConnectionTest, RemovesALeftoverPointThatHoldsOnlyTheMarker) {
  files.put(kPoint + u"/.autodiskmounted"_s, "");
  connection().volumeClean();
  EXPECT_FALSE(files.exists(kPoint));
  EXPECT_EQ(runs(), QStringList({u"/bin/rm /Volumes/VB-SHARE$/.autodiskmounted"_s, u"/bin/rmdir /Volumes/VB-SHARE$"_s,
                                 u"/bin/rmdir /Volumes/VB-SHARE$"_s}));
}

TEST_F(ConnectionTest, LeavesAPointThatHoldsMore) {
  files.put(kPoint + u"/.autodiskmounted"_s, "");
  files.put(kPoint + u"/Music/kept.mp3"_s, "kept");
  connection().volumeClean();
  EXPECT_EQ(files.bytes(kPoint + u"/Music/kept.mp3"_s), QByteArray("kept"));
}

TEST_F(ConnectionTest, TouchesNothingWithoutSettings) {
  settings.remove(u"Volume"_s);
  settings.remove(u"Shared Folder"_s);
  files.put(u"/.autodiskmounted"_s, "");
  files.makeFolders(u"/System"_s);
  EXPECT_FALSE(connection().isConnected());
  EXPECT_FALSE(connection().isVolumeForAutomounted());
  connection().volumeClean();
  EXPECT_TRUE(files.exists(u"/.autodiskmounted"_s));
}
