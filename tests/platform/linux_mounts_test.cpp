// Real mounts, in a mount namespace of this process alone: what the mount table says, full disks, trees that hold a
// mount. Skipped where such a namespace cannot be had.
#include "platform/linux/CopyTool.h"
#include "platform/linux/LinuxFileSystem.h"

#include <gtest/gtest.h>

#include "ContractRegistration.h"
#include "support/Printers.h"
#include "support/TemporaryRoots.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kPoint = u"/Volumes/VB-SHARE$"_s;

class LinuxMounts : public testing::Test {
protected:
  void SetUp() override {
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
      GTEST_SKIP() << "no mount namespace for this user";
    }
    std::filesystem::create_directory(point());
  }
  void TearDown() override {
    for (const std::string &path : m_mounted) {
      ::umount2(path.c_str(), MNT_DETACH);
    }
  }

  [[nodiscard]] std::string point() const { return temporary.base() / "runtime/Volumes/VB-SHARE$"; }
  void mountDisk(const std::string &path, const char *options = "size=1m") {
    ASSERT_EQ(::mount("tmpfs", path.c_str(), "tmpfs", 0, options), 0);
    m_mounted.push_back(path);
  }
  void mountFolder(const std::string &shown, const std::string &path) {
    ASSERT_EQ(::mount(shown.c_str(), path.c_str(), nullptr, MS_BIND, nullptr), 0);
    m_mounted.push_back(path);
  }

  TemporaryRoots temporary;
  LinuxFileSystem files{temporary.roots};

private:
  std::vector<std::string> m_mounted;
};

} // namespace

TEST_F(LinuxMounts, SeeAVolumeComeAndGo) {
  EXPECT_EQ(failureOf([&] { files.write(kPoint + u"/a"_s, "x"); }), FailureKind::Unknown);
  mountDisk(point());
  files.write(kPoint + u"/a"_s, "on the disk");
  const auto volume = files.volume(kPoint + u"/a"_s);
  ASSERT_TRUE(volume);
  EXPECT_EQ(volume->mountRoot, kPoint);
  EXPECT_EQ(volume->typeName, u"tmpfs"_s);
  EXPECT_GT(volume->freeBytes, 900'000U);
  EXPECT_LT(volume->freeBytes, 1'048'577U);
  ASSERT_EQ(::umount2(point().c_str(), 0), 0);
  EXPECT_EQ(files.presence(kPoint + u"/a"_s), Presence::Absent);
  EXPECT_EQ(failureOf([&] { files.write(kPoint + u"/a"_s, "x"); }), FailureKind::Unknown);
  EXPECT_FALSE(temporary.exists("runtime/Volumes/VB-SHARE$/a"));
}

TEST_F(LinuxMounts, KeepTheOldFileWhenTheDiskIsFull) {
  mountDisk(point(), "size=64k");
  const QString path = kPoint + u"/list"_s;
  files.writeAtomically(path, "the old list");
  EXPECT_EQ(failureOf([&] { files.writeAtomically(path, QByteArray(100'000, 'x')); }), FailureKind::DiskFull);
  EXPECT_EQ(files.read(path), QByteArray("the old list"));
  EXPECT_EQ(files.list(kPoint), QStringList{u"list"_s});
  EXPECT_EQ(failureOf([&] { files.createExclusively(kPoint + u"/new"_s, QByteArray(100'000, 'x')); }),
            FailureKind::DiskFull);
  EXPECT_EQ(files.list(kPoint), QStringList{u"list"_s});
  EXPECT_EQ(failureOf([&] { files.write(path, QByteArray(100'000, 'x')); }), FailureKind::DiskFull);
  EXPECT_LT(files.volume(kPoint)->freeBytes, 8192U);
}

TEST_F(LinuxMounts, FindAPointBehindALinkedFolder) {
  std::filesystem::create_directory_symlink(temporary.base() / "runtime", temporary.base() / "linked");
  Roots roots = temporary.roots;
  roots.runtime = temporary.below("linked");
  mountDisk(point());
  LinuxFileSystem linked(roots);
  linked.write(kPoint + u"/a"_s, "x");
  EXPECT_EQ(linked.volume(kPoint)->mountRoot, kPoint);
}

TEST_F(LinuxMounts, StopTheRemovalOfATree) {
  const QString tree = temporary.below("outside/tree");
  temporary.put("outside/tree/a/file", "x");
  temporary.put("outside/tree/b/covered", "x");
  temporary.put("outside/shown/precious", "x");
  mountFolder(temporary.base() / "outside/shown", temporary.base() / "outside/tree/b");
  EXPECT_NE(failureOf([&] { files.removeTree(tree); }), std::nullopt);
  EXPECT_TRUE(temporary.exists("outside/shown/precious"));
  EXPECT_TRUE(temporary.exists("outside/tree/a/file")) << "nothing is begun that cannot be finished";
  EXPECT_NE(failureOf([&] { files.removeTree(tree + u"/b"_s); }), std::nullopt);
  EXPECT_TRUE(temporary.exists("outside/shown/precious")) << "nor is the mount itself emptied";
}

TEST_F(LinuxMounts, StopTheRemovalOfATreeOnAVolume) {
  mountDisk(point());
  files.createFolder(kPoint + u"/tree"_s, 0777);
  files.createFolder(kPoint + u"/tree/b"_s, 0777);
  temporary.put("outside/shown/precious", "x");
  mountFolder(temporary.base() / "outside/shown", point() + "/tree/b");
  EXPECT_NE(failureOf([&] { files.removeTree(kPoint + u"/tree"_s); }), std::nullopt);
  EXPECT_TRUE(temporary.exists("outside/shown/precious"));
}

TEST_F(LinuxMounts, CopyNothingIntoTheFolderBehindAVolumeThatGoesAway) {
  mountDisk(point());
  temporary.put("outside/a", "music");
  temporary.putScript("bin/cp", "umount -l '" + point() + "' || exit 9\nexec /bin/cp \"$@\"");
  Volumes volumes(temporary.roots);
  CopyTool tool(volumes, temporary.below("bin/cp").toUtf8());
  const ToolResult result = tool.copy({{}, {u"-p"_s, temporary.below("outside/a"), kPoint + u"/a"_s}, {}, {}}, {});
  EXPECT_EQ(result.status, 1) << result.output.toStdString();
  EXPECT_FALSE(temporary.exists("runtime/Volumes/VB-SHARE$/a"));
}

TEST_F(LinuxMounts, CountNoCopyOntoAVolumeThatWasMountedAnew) {
  mountDisk(point());
  temporary.put("outside/a", "music");
  temporary.putScript("bin/cp", "umount -l '" + point() + "' && mount -t tmpfs tmpfs '" + point() +
                                    "' || exit 9\nexec /bin/cp \"$@\"");
  Volumes volumes(temporary.roots);
  CopyTool tool(volumes, temporary.below("bin/cp").toUtf8());
  const ToolResult result = tool.copy({{}, {u"-p"_s, temporary.below("outside/a"), kPoint + u"/a"_s}, {}, {}}, {});
  EXPECT_EQ(result.status, 1) << result.output.toStdString();
  EXPECT_EQ(result.output, QByteArray("cp: the volume went away during the copy\n"));
  EXPECT_FALSE(temporary.exists("runtime/Volumes/VB-SHARE$/a"));
}

} // namespace sonorel::test
