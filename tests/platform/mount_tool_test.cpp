#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/MountTool.h"

#include <gtest/gtest.h>

#include "support/Printers.h"
#include "support/TemporaryRoots.h"

#include <csignal>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace sonorel::test {

namespace {

const QString kPoint = u"/Volumes/VB-SHARE$/"_s;

class MountTools : public testing::Test {
protected:
  TemporaryRoots temporary;
  Volumes volumes{temporary.roots};
  QStringList lines;
  MountTool tool{volumes, u"Auracore 5"_s, [this](const QString &line) { lines.append(line); }};
  LinuxFileSystem files{temporary.roots};

  void makePoint() const { std::filesystem::create_directory(temporary.base() / "runtime/Volumes/VB-SHARE$"); }
  [[nodiscard]] ToolResult mount(const QString &url, std::chrono::milliseconds deadline = 20s,
                                 const std::stop_token &stop = {}) {
    return tool.mount({u"/sbin/mount"_s, {u"-t"_s, u"smbfs"_s, url, kPoint}, {}, deadline}, stop);
  }
  [[nodiscard]] ToolResult unmount(const QStringList &arguments) {
    return tool.unmount({u"/sbin/umount"_s, arguments, {}, 20s}, {});
  }
};

} // namespace

TEST(ShareUrl, EndsTheCredentialsAtTheLastAt) {
  const auto plain = parseShareUrl(u"//vb:pw@192.168.1.20/VB-SHARE$"_s);
  ASSERT_TRUE(plain);
  EXPECT_EQ(plain->address, u"192.168.1.20"_s);
  EXPECT_EQ(plain->share, u"VB-SHARE$"_s);
  EXPECT_EQ(parseShareUrl(u"//vb:p@ss/w@rd@nas:4450/VB-SHARE$"_s)->address, u"nas:4450"_s);
  EXPECT_EQ(parseShareUrl(u"//vb:p%40@EMBEDDED/VB-SHARE%24/"_s)->address, u"EMBEDDED"_s);
  EXPECT_EQ(parseShareUrl(u"//vb:p%40@EMBEDDED/VB-SHARE%24/"_s)->share, u"VB-SHARE$"_s);
  EXPECT_EQ(parseShareUrl(u"//nas/share"_s)->address, u"nas"_s);
  EXPECT_FALSE(parseShareUrl(u"smb://nas/share"_s));
  EXPECT_FALSE(parseShareUrl(u"//vb:pw@nas"_s));
  EXPECT_FALSE(parseShareUrl(u"//vb:pw@/share"_s));
}

TEST_F(MountTools, MountTheEmbeddedProductWithAnyPassword) {
  for (const QString &url : {u"//vb:secret@embedded/VB-SHARE$"_s, u"//vb:@Embedded/VB-SHARE$"_s,
                             u"//vb:e@mbedded%2F@embedded/VB-SHARE$"_s}) {
    makePoint();
    EXPECT_TRUE(succeeded(mount(url))) << url.toStdString();
    EXPECT_EQ(files.read(u"/Volumes/VB-SHARE$/System/OrvProductName.orv"_s), QByteArray("Auracore 5\n"));
    EXPECT_TRUE(succeeded(unmount({u"/Volumes/VB-SHARE$"_s})));
    EXPECT_TRUE(temporary.exists("data/Embedded/VB-SHARE$/System/OrvProductName.orv"));
  }
}

TEST_F(MountTools, KnowOneShareOfTheEmbeddedProduct) {
  makePoint();
  const ToolResult result = mount(u"//vb:pw@embedded/OTHER"_s);
  EXPECT_EQ(result.status, 71);
  EXPECT_EQ(result.output, QByteArray("mount: no such share\n"));
  EXPECT_FALSE(volumes.mounted(u"VB-SHARE$"_s));
}

TEST_F(MountTools, SetALeftoverAsideWithALine) {
  temporary.put("runtime/Volumes/VB-SHARE$/System/old", "what a crash left");
  EXPECT_TRUE(succeeded(mount(u"//vb:pw@embedded/VB-SHARE$"_s)));
  EXPECT_EQ(temporary.bytes("runtime/Volumes/VB-SHARE$.aside-1/System/old"), "what a crash left");
  EXPECT_EQ(files.presence(u"/Volumes/VB-SHARE$/System/old"_s), Presence::Absent);
  ASSERT_EQ(lines.size(), 1);
  EXPECT_EQ(lines.first(), u"/Volumes/VB-SHARE$ was not mounted and not empty; what was there is now "_s +
                               temporary.below("runtime/Volumes/VB-SHARE$.aside-1"));
}

TEST_F(MountTools, GiveTheMountProgramThePointAndTheUrlOnItsInput) {
  makePoint();
  temporary.putScript("bin/sonorel-mount", "cat > '" + temporary.below("url").toStdString() +
                                               "'\nprintf '%s\\n' \"$@\" > '" +
                                               temporary.below("arguments").toStdString() +
                                               "'\necho 'Authentication error: refused'; exit 2");
  const ToolResult result = mount(u"//vb:p%40ss@nas/VB-SHARE$"_s);
  EXPECT_EQ(result.ending, ToolEnding::Exited);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, QByteArray("Authentication error: refused\n"));
  EXPECT_EQ(temporary.bytes("url"), "//vb:p%40ss@nas/VB-SHARE$");
  EXPECT_EQ(temporary.bytes("arguments"), temporary.below("runtime/Volumes/VB-SHARE$").toStdString() + "\n");
}

TEST_F(MountTools, SayPlainlyThatTheProgramIsMissing) {
  makePoint();
  const ToolResult result = mount(u"//vb:pw@nas/VB-SHARE$"_s);
  EXPECT_EQ(result.ending, ToolEnding::Exited);
  EXPECT_EQ(result.status, 127);
  EXPECT_EQ(result.output, QByteArray("mount: the mount program cannot be started\n"));
  EXPECT_EQ(lines, QStringList{u"The mount program cannot be started: "_s + temporary.roots.mountProgram});
}

TEST_F(MountTools, DoNotBelieveAProgramThatMountedNothing) {
  makePoint();
  temporary.putScript("bin/sonorel-mount", "exit 0");
  EXPECT_EQ(mount(u"//vb:pw@nas/VB-SHARE$"_s).output, QByteArray("mount: nothing was mounted\n"));
}

TEST_F(MountTools, EndAHangingMountAtItsDeadline) {
  makePoint();
  temporary.putScript("bin/sonorel-mount", "echo 'Authentication error'; sleep 60");
  const ToolResult result = mount(u"//vb:pw@nas/VB-SHARE$"_s, 200ms);
  EXPECT_EQ(result.ending, ToolEnding::DeadlinePassed);
}

TEST_F(MountTools, RefuseWhatIsNoMountPoint) {
  const auto status = [this](const QString &point) {
    return tool.mount({{}, {u"-t"_s, u"smbfs"_s, u"//v:p@embedded/VB-SHARE$"_s, point}, {}, {}}, {}).status;
  };
  EXPECT_EQ(status(u"/Volumes"_s), 66);
  EXPECT_EQ(status(u"/Volumes/../etc"_s), 66);
  EXPECT_EQ(status(u"/Volumes/VB-SHARE$/System"_s), 66);
  EXPECT_EQ(status(u"/Volumes/VB-SHARE$"_s), 66) << "there is no such folder";
  EXPECT_EQ(tool.mount({{}, {u"-t"_s, u"smbfs"_s, u"//v:p@embedded/VB-SHARE$"_s}, {}, {}}, {}).status, 64);
}

TEST_F(MountTools, TakeALinkToElsewhereForALeftover) {
  std::filesystem::create_directory_symlink(temporary.base() / "outside",
                                            temporary.base() / "runtime/Volumes/VB-SHARE$");
  EXPECT_EQ(unmount({u"-f"_s, u"/Volumes/VB-SHARE$"_s}).output, QByteArray("umount: not currently mounted\n"));
  EXPECT_TRUE(succeeded(mount(u"//vb:pw@embedded/VB-SHARE$"_s)));
  EXPECT_TRUE(temporary.exists("runtime/Volumes/VB-SHARE$.aside-1"));
}

TEST_F(MountTools, CloseTheCoveredFolderWhileItIsCovered) {
  if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
    GTEST_SKIP() << "no mount namespace for this user";
  }
  makePoint();
  temporary.putScript("bin/sonorel-mount", "exec mount -t tmpfs tmpfs \"$1\"");
  temporary.putScript("bin/sonorel-umount", "[ \"$1\" = -f ] && shift; exec umount \"$1\"");
  ASSERT_TRUE(succeeded(mount(u"//vb:pw@nas/VB-SHARE$"_s)));
  EXPECT_EQ(mount(u"//vb:pw@nas/VB-SHARE$"_s).status, 64);
  const std::string point = temporary.base() / "runtime/Volumes/VB-SHARE$";
  struct stat facts = {};
  ASSERT_EQ(::umount2(point.c_str(), 0), 0);
  ASSERT_EQ(::stat(point.c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777U, 0555U);
  ASSERT_TRUE(succeeded(mount(u"//vb:pw@nas/VB-SHARE$"_s)));
  EXPECT_TRUE(succeeded(unmount({u"-f"_s, u"/Volumes/VB-SHARE$"_s})));
  ASSERT_EQ(::stat(point.c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777U, 0777U);
}

TEST_F(MountTools, UndoAMountThatCameTooLate) {
  if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
    GTEST_SKIP() << "no mount namespace for this user";
  }
  makePoint();
  temporary.putScript("bin/sonorel-mount", "mount -t tmpfs tmpfs \"$1\"; sleep 60");
  temporary.putScript("bin/sonorel-umount", "shift; exec umount \"$1\"");
  EXPECT_EQ(mount(u"//vb:pw@nas/VB-SHARE$"_s, 500ms).ending, ToolEnding::DeadlinePassed);
  EXPECT_FALSE(volumes.mounted(u"VB-SHARE$"_s));
}

} // namespace sonorel::test
