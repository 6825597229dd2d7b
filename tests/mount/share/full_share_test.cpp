#include "mount/share/ShareFixture.h"

#include "platform/linux/FileDescriptor.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/statvfs.h>

#include <cerrno>

namespace sonorel::test {

namespace fs = std::filesystem;

namespace {

// A product with a small disk.
class FullShare : public ShareFixture {
protected:
  void SetUp() override {
    ShareFixture::SetUp();
    if (HasFatalFailure() || IsSkipped()) {
      return;
    }
    if (::geteuid() != 0) {
      GTEST_SKIP() << "only root can mount a small disk";
    }
    fs::create_directories(disk());
    ASSERT_EQ(::mount("tmpfs", disk().c_str(), "tmpfs", 0, "size=4m"), 0);
    small = std::make_unique<StandIn>(folder() / "small");
    ASSERT_EQ(mount(small->url()).status, 0);
  }
  void TearDown() override {
    ShareFixture::TearDown();
    small.reset();
    ::umount2(disk().c_str(), MNT_DETACH);
  }
  [[nodiscard]] fs::path disk() const { return folder() / "small" / "share"; }
  static struct statvfs spaceOf(const fs::path &path) {
    struct statvfs facts = {};
    EXPECT_EQ(::statvfs(path.c_str(), &facts), 0);
    return facts;
  }
  std::unique_ptr<StandIn> small;
};

} // namespace

TEST_F(FullShare, TellsItsFreeSpaceExactlyAtOnce) {
  for (const size_t size : {0U, 1'000'000U, 400'000U}) {
    put(disk() / ("file " + std::to_string(size)), noise(size));
    const auto here = spaceOf(point());
    const auto there = spaceOf(disk());
    EXPECT_EQ(here.f_bavail * here.f_frsize, there.f_bavail * there.f_frsize);
    EXPECT_EQ(here.f_blocks * here.f_frsize, there.f_blocks * there.f_frsize);
    EXPECT_EQ(here.f_namemax, 255U);
  }
}

// An old server may have the UNIX extensions, which tell it in another way.
TEST_F(FullShare, TellsItsFreeSpaceInTheOldestDialectToo) {
  for (const char *extensions : {"yes", "no"}) {
    ASSERT_EQ(unmount().status, 0);
    small->tell("restart", {"server max protocol = NT1", std::string("unix extensions = ") + extensions});
    ASSERT_EQ(mount(small->url()).status, 0);
    const auto here = spaceOf(point());
    const auto there = spaceOf(disk());
    EXPECT_EQ(here.f_bavail * here.f_frsize, there.f_bavail * there.f_frsize) << extensions;
    EXPECT_EQ(here.f_blocks * here.f_frsize, there.f_blocks * there.f_frsize) << extensions;
  }
}

TEST_F(FullShare, SaysSoAtTheCloseAtTheLatest) {
  put(folder() / "song", noise(6'000'000));
  const Ended result = copy(folder() / "song", point() / "Music/song");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.output.find("No space left on device"), std::string::npos) << result.output;

  const FileDescriptor file(::open((point() / "Music/other").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666));
  ASSERT_TRUE(file.isOpen());
  const std::string block = noise(1 << 20);
  bool isTold = false;
  for (int i = 0; i < 6 && !isTold; ++i) {
    isTold = ::write(file.get(), block.data(), block.size()) < 0 && errno == ENOSPC;
  }
  EXPECT_TRUE(isTold || (::fsync(file.get()) == -1 && errno == ENOSPC));
}

} // namespace sonorel::test
