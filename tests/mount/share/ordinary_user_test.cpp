// The mount as somebody without rights has it: through fusermount3. Root plays that user, with a FUSE device that
// everybody may open in this program's own mount namespace where the machine's is root's alone.
#include "mount/share/ShareFixture.h"

#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace sonorel::test {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

constexpr uid_t kUser = 65534;
constexpr uid_t kOther = 65533;
constexpr mode_t kForEverybody = 0666;

class OrdinaryUser : public ShareFixture {
protected:
  void SetUp() override {
    ShareFixture::SetUp();
    if (HasFatalFailure() || IsSkipped()) {
      return;
    }
    if (::geteuid() != 0) {
      GTEST_SKIP() << "every other test is played by an ordinary user already";
    }
    offerFuse(kForEverybody);
    if (IsSkipped()) {
      return;
    }
    // Where the user may reach it, wherever this was built.
    fs::copy_file(SONOREL_BIN "/sonorel-mount", program("sonorel-mount"));
    fs::create_symlink("sonorel-mount", program("sonorel-umount"));
    fs::permissions(folder(), fs::perms::all);
    fs::permissions(folder().parent_path(), fs::perms(0755));
    ASSERT_EQ(::chown(point().c_str(), kUser, kUser), 0);
  }
  void TearDown() override {
    if (!point().empty()) {
      product().tell("resume");
    }
    ShareFixture::TearDown();
    while (m_devices-- > 0) {
      ::umount2("/dev/fuse", MNT_DETACH);
      ::umount2((folder() / "device").c_str(), MNT_DETACH);
    }
  }

  // A device of that mode in the place of the machine's.
  void offerFuse(mode_t mode) {
    const fs::path device = folder() / "device";
    fs::create_directories(device);
    ASSERT_EQ(::mount("tmpfs", device.c_str(), "tmpfs", 0, "mode=755"), 0);
    ++m_devices;
    if (::mknod((device / "fuse").c_str(), S_IFCHR | mode, makedev(10, 229)) != 0) {
      GTEST_SKIP() << "no device can be made here";
    }
    ASSERT_EQ(::chmod((device / "fuse").c_str(), mode), 0);
    ASSERT_EQ(::mount((device / "fuse").c_str(), "/dev/fuse", nullptr, MS_BIND, nullptr), 0);
  }
  [[nodiscard]] fs::path program(const char *name) const { return folder() / name; }
  static Ended as(uid_t user, std::vector<std::string> words, const std::string &input = {}) {
    const std::string number = std::to_string(user);
    words.insert(words.begin(), {"/usr/bin/setpriv", "--reuid=" + number, "--regid=" + number, "--clear-groups"});
    return run(words, input);
  }
  [[nodiscard]] Ended mountAsUser() const {
    return as(kUser, {program("sonorel-mount").string(), point().string()}, product().url());
  }
  [[nodiscard]] Ended unmountAsUser(bool isForced = false) const {
    return isForced ? as(kUser, {program("sonorel-umount").string(), "-f", point().string()})
                    : as(kUser, {program("sonorel-umount").string(), point().string()});
  }
  void mountedByUser() const {
    const Ended result = mountAsUser();
    ASSERT_EQ(result.status, 0) << result.output;
    ASSERT_EQ(result.output, "");
    ASSERT_EQ(mountType(), "fuse.sonorel");
  }

private:
  int m_devices = 0;
};

} // namespace

TEST_F(OrdinaryUser, MountsWritesAndUnmounts) {
  mountedByUser();
  put(folder() / "song", noise(400'000));
  fs::permissions(folder() / "song", fs::perms(0644));
  fs::last_write_time(folder() / "song", fs::file_time_type::clock::now() - 1000h);
  const std::string target = (point() / "Music/song").string();
  const Ended copied = as(kUser, {"/bin/cp", "-p", (folder() / "song").string(), target});
  EXPECT_EQ(copied.status, 0) << copied.output;
  EXPECT_EQ(copied.output, "");
  EXPECT_EQ(bytes(tree() / "Music/song"), noise(400'000));
  EXPECT_EQ(std::chrono::floor<std::chrono::seconds>(fs::last_write_time(tree() / "Music/song")),
            std::chrono::floor<std::chrono::seconds>(fs::last_write_time(folder() / "song")));
  EXPECT_EQ(as(kUser, {"/usr/bin/stat", "-c", "%u %a", target}).output, "65534 666\n");
  const Ended unmounted = unmountAsUser();
  EXPECT_EQ(unmounted.status, 0) << unmounted.output;
  EXPECT_EQ(mountType(), "");
  EXPECT_TRUE(allEndWithin(2s));
  EXPECT_TRUE(fs::is_empty(point()));
}

TEST_F(OrdinaryUser, SharesTheMountWithNobody) {
  mountedByUser();
  for (const uid_t stranger : {kOther, uid_t(0)}) {
    EXPECT_NE(as(stranger, {"/bin/ls", (point() / "System").string()}).status, 0) << stranger;
  }
  EXPECT_EQ(as(kOther, {program("sonorel-umount").string(), "-f", point().string()}).status, 1);
  EXPECT_EQ(mountType(), "fuse.sonorel");
}

TEST_F(OrdinaryUser, IsToldThatFuseIsNotForHim) {
  offerFuse(0600);
  const Ended result = mountAsUser();
  EXPECT_EQ(result.status, 9);
  EXPECT_EQ(result.output, "sonorel-mount: this machine or this user has no FUSE: /dev/fuse cannot be opened\n");
  EXPECT_EQ(mountType(), "");
  EXPECT_TRUE(allEndWithin(2s));
}

TEST_F(OrdinaryUser, ForceUnmountsWithADeadServer) {
  mountedByUser();
  product().tell("pause");
  std::thread asking([this] { static_cast<void>(as(kUser, {"/usr/bin/stat", (point() / "Music/a").string()})); });
  std::this_thread::sleep_for(300ms);
  const Ended result = unmountAsUser(true);
  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_LT(result.time, 2s);
  EXPECT_EQ(mountType(), "");
  EXPECT_TRUE(allEndWithin(1s));
  asking.join();
}

TEST_F(OrdinaryUser, EndsItBySignals) {
  mountedByUser();
  ASSERT_EQ(programs().size(), 1U);
  EXPECT_EQ(as(kUser, {"/bin/kill", std::to_string(programs().front())}).status, 0);
  EXPECT_TRUE(allEndWithin(2s));
  EXPECT_EQ(mountType(), "");
}

TEST_F(OrdinaryUser, ClearsAwayWhatAKilledProgramLeft) {
  for (const bool isUnmountedFirst : {false, true}) {
    mountedByUser();
    ::kill(programs().front(), SIGKILL);
    EXPECT_TRUE(allEndWithin(2s));
    if (isUnmountedFirst) {
      EXPECT_EQ(unmountAsUser().status, 0);
      EXPECT_EQ(mountType(), "");
    }
  }
  mountedByUser();
  EXPECT_EQ(unmountAsUser().status, 0);
}

} // namespace sonorel::test
