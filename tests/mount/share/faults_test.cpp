#include "mount/share/ShareFixture.h"

#include <fcntl.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <thread>

namespace sonorel::test {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

constexpr auto kLongestCall = 12s;
constexpr auto kLongestStat = 6s;
constexpr size_t kBig = 60'000'000;

void setLoopback(bool isUp) {
  const FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  ifreq request = {};
  std::strcpy(request.ifr_name, "lo");
  request.ifr_flags = isUp ? static_cast<short>(IFF_UP) : static_cast<short>(0);
  ASSERT_EQ(::ioctl(socket.get(), SIOCSIFFLAGS, &request), 0);
}

class Faults : public ShareFixture {
protected:
  void SetUp() override {
    ShareFixture::SetUp();
    if (!HasFatalFailure() && !IsSkipped()) {
      mounted();
    }
  }
  void TearDown() override {
    if (!point().empty()) {
      product().tell("resume");
    }
    ShareFixture::TearDown();
  }

  [[nodiscard]] fs::path music(const std::string &name) const { return point() / "Music" / name; }
  [[nodiscard]] int statError(const std::string &name) const {
    struct stat facts = {};
    return ::stat(music(name).c_str(), &facts) == 0 ? 0 : errno;
  }
  // Copies a big file and lets something happen when a part of it is on the server.
  Ended copyWhile(const std::function<void()> &happening) {
    put(folder() / "big", noise(kBig));
    Ended result;
    std::thread copying([&] { result = copy(folder() / "big", music("big")); });
    std::error_code error;
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (fs::file_size(tree() / "Music/big", error) < kBig / 20 || error) {
      if (std::chrono::steady_clock::now() > end) {
        break;
      }
      std::this_thread::yield();
    }
    happening();
    copying.join();
    return result;
  }
  void expectServesAgain() const {
    const auto end = std::chrono::steady_clock::now() + 6s;
    while (statError("") != 0 && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(50ms);
    }
    put(folder() / "again", noise(400'000));
    EXPECT_EQ(copy(folder() / "again", music("again")).status, 0);
    EXPECT_EQ(bytes(tree() / "Music/again"), noise(400'000));
  }
};

} // namespace

TEST_F(Faults, ServerHangsWhileIdle) {
  put(music("a"), "x");
  std::this_thread::sleep_for(1100ms); // what the kernel remembers is forgotten
  product().tell("pause");
  int error = 0;
  EXPECT_LT(timeOf([&] { error = statError("a"); }), kLongestStat);
  EXPECT_EQ(error, EIO);
  EXPECT_LT(timeOf([&] { error = statError("b"); }), 100ms) << "the next question is not asked at once again";
  EXPECT_EQ(error, EIO) << "not known is not absent";
  std::this_thread::sleep_for(3100ms);
  EXPECT_LT(timeOf([&] { error = statError("a"); }), kLongestStat);
  EXPECT_EQ(error, EIO);
  product().tell("resume");
  expectServesAgain();
  EXPECT_EQ(bytes(music("a")), "x");
}

TEST_F(Faults, ServerTakesTheShareAwayAndKeepsTheConnection) {
  put(music("a"), "x");
  std::this_thread::sleep_for(1100ms); // what the kernel remembers is forgotten
  product().tell("close-share");
  std::this_thread::sleep_for(200ms);
  EXPECT_EQ(statError("a"), 0) << "the share is opened again by itself";
  expectServesAgain();
}

TEST_F(Faults, ServerThatHangsHasNoFreeSpaceToTell) {
  product().tell("pause");
  struct statvfs facts = {};
  int result = 0;
  EXPECT_LT(timeOf([&] { result = ::statvfs(point().c_str(), &facts); }), kLongestStat);
  EXPECT_EQ(result, -1);
  EXPECT_EQ(errno, EIO);
  EXPECT_LT(timeOf([&] { static_cast<void>(statError("b")); }), 100ms)
      << "the next question is not asked at once again";
  product().tell("resume");
  expectServesAgain();
  EXPECT_EQ(::statvfs(point().c_str(), &facts), 0);
  EXPECT_GT(facts.f_bavail, 0U);
}

TEST_F(Faults, ServerHangsInACopy) {
  const Ended result = copyWhile([] { product().tell("pause"); });
  EXPECT_NE(result.status, 0);
  EXPECT_LT(result.time, kLongestCall);
  EXPECT_LT(timeOf([&] { static_cast<void>(statError("b")); }), kLongestStat);
  product().tell("resume");
  expectServesAgain();
}

TEST_F(Faults, BlockOnItsWayIsNotForgotten) {
  const int file = ::open(music("a").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  const std::string block = noise(1 << 20);
  ASSERT_EQ(::write(file, block.data(), block.size()), static_cast<ssize_t>(block.size()));
  product().tell("pause");
  EXPECT_LT(timeOf([&] { static_cast<void>(::write(file, block.data(), block.size())); }), 2s)
      << "whoever writes need not wait for the server";
  int result = 0;
  EXPECT_LT(timeOf([&] { result = ::close(file); }), kLongestCall);
  EXPECT_EQ(result, -1) << "but learns in the end that it did not arrive";
  product().tell("resume");
  expectServesAgain();
}

TEST_F(Faults, ManyWaitNoLongerThanOne) {
  std::this_thread::sleep_for(1100ms);
  product().tell("pause");
  std::vector<std::thread> callers;
  const auto time = timeOf([&] {
    for (int i = 0; i < 8; ++i) {
      callers.emplace_back([this, i] { EXPECT_EQ(statError("file " + std::to_string(i)), EIO); });
    }
    for (std::thread &caller : callers) {
      caller.join();
    }
  });
  EXPECT_LT(time, kLongestStat);
}

TEST_F(Faults, ServerIsKilledInACopy) {
  const Ended result = copyWhile([] { product().tell("kill"); });
  EXPECT_NE(result.status, 0);
  EXPECT_LT(result.time, kLongestCall);
  EXPECT_NE(statError("big"), 0);
  EXPECT_NE(statError("big"), ENOENT) << "nobody knows whether it is there";
  product().tell("restart");
  expectServesAgain();
}

TEST_F(Faults, ServerIsRestartedWhileIdle) {
  put(music("a"), "x");
  product().tell("restart");
  std::this_thread::sleep_for(1100ms);
  EXPECT_EQ(bytes(music("a")), "x") << "the first call already";
  ASSERT_EQ(::mkdir(music("folder").c_str(), 0777), 0);
  product().tell("restart");
  EXPECT_EQ(::rmdir(music("folder").c_str()), 0);
}

TEST_F(Faults, ServerIsKilledInAFileThatIsWritten) {
  const int server = std::stoi(bytes(tree().parent_path() / "pid"));
  const int file = ::open(music("a").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  ASSERT_EQ(::write(file, "first", 5), 5);
  // Not by a program of ours, whose copy of the open file would be closed in good order.
  ASSERT_EQ(::kill(-server, SIGKILL), 0);
  std::this_thread::sleep_for(100ms);
  EXPECT_EQ(::write(file, "second", 6), -1);
  EXPECT_EQ(::close(file), -1) << "what was written before may be lost: it must not count as done";
  product().tell("restart");
  expectServesAgain();
}

TEST_F(Faults, ServerIsRestartedInAFileThatIsRead) {
  put(tree() / "Music/a", noise(3'000'000));
  const FileDescriptor file(::open(music("a").c_str(), O_RDONLY));
  std::string block(1000, '\0');
  ASSERT_EQ(::pread(file.get(), block.data(), block.size(), 0), 1000);
  product().tell("restart");
  ASSERT_EQ(::pread(file.get(), block.data(), block.size(), 2'500'000), 1000) << "nothing is lost by reading on";
  EXPECT_EQ(block, noise(3'000'000).substr(2'500'000, 1000));
}

TEST_F(Faults, NetworkIsCutInACopy) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only root has a network that may be cut";
  }
  const Ended result = copyWhile([] { setLoopback(false); });
  EXPECT_NE(result.status, 0);
  EXPECT_LT(result.time, kLongestCall);
  EXPECT_LT(timeOf([&] { EXPECT_EQ(statError("b"), EIO); }), kLongestStat);
  setLoopback(true);
  expectServesAgain();
}

TEST_F(Faults, AccountIsLockedWhileMounted) {
  product().tell("lock");
  product().tell("restart");
  EXPECT_EQ(statError("a"), EACCES);
  EXPECT_LT(timeOf([&] { EXPECT_EQ(statError("a"), EIO); }), 100ms) << "the login is not tried at every question";
  product().tell("unlock");
}

TEST_F(Faults, ForceUnmountsWithADeadServer) {
  Ended result;
  const Ended copied = copyWhile([&] {
    product().tell("pause");
    std::this_thread::sleep_for(200ms);
    result = unmount(true);
  });
  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_LT(result.time, 2s);
  EXPECT_EQ(mountType(), "");
  EXPECT_NE(copied.status, 0);
  EXPECT_TRUE(allEndWithin(1s));
  EXPECT_TRUE(fs::is_empty(point()));
}

TEST_F(Faults, UnmountsWithAServerThatHangsWhileIdle) {
  product().tell("pause");
  const Ended result = unmount();
  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_LT(result.time, 2s);
  EXPECT_TRUE(allEndWithin(1s));
}

TEST_F(Faults, UnmountsOnlyWhatIsIdleUnlessForced) {
  const FileDescriptor file(::open(music("a").c_str(), O_WRONLY | O_CREAT, 0666));
  const Ended refused = unmount();
  EXPECT_EQ(refused.status, 11);
  EXPECT_EQ(refused.output, "sonorel-umount: it is in use\n");
  EXPECT_EQ(mountType(), "fuse.sonorel");
  ASSERT_EQ(::write(file.get(), "x", 1), 1);
  EXPECT_EQ(unmount(true).status, 0);
  EXPECT_EQ(mountType(), "");
  EXPECT_TRUE(allEndWithin(1s)) << "also when somebody still has a file open";
  EXPECT_EQ(::write(file.get(), "y", 1), -1);
  EXPECT_EQ(unmount().status, 10);
}

TEST_F(Faults, AreEndedBySignals) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    ASSERT_EQ(programs().size(), 1U);
    const auto time = timeOf([&] {
      ::kill(programs().front(), number);
      EXPECT_TRUE(allEndWithin(2s));
    });
    EXPECT_LT(time, 2s);
    EXPECT_EQ(mountType(), "");
    mounted();
  }
  product().tell("pause");
  std::thread asking([this] { static_cast<void>(statError("asked before")); });
  std::this_thread::sleep_for(200ms);
  ::kill(programs().front(), SIGTERM);
  EXPECT_TRUE(allEndWithin(2s)) << "in the middle of a question that nobody answers";
  asking.join();
  EXPECT_EQ(mountType(), "");
}

TEST_F(Faults, KilledProgramIsClearedAwayByTheNext) {
  for (const bool isUnmountedFirst : {false, true}) {
    ::kill(programs().front(), SIGKILL);
    EXPECT_TRUE(allEndWithin(2s));
    const int error = statError("a");
    EXPECT_TRUE(error == ENOTCONN || error == ECONNABORTED) << error;
    EXPECT_EQ(mountType(), "fuse.sonorel");
    if (isUnmountedFirst) {
      EXPECT_EQ(unmount(true).status, 0);
      EXPECT_EQ(mountType(), "");
    }
    mounted();
    EXPECT_EQ(statError(""), 0);
  }
}

TEST_F(Faults, KilledProgramIsUnmountedWhateverIsOpen) {
  put(music("a"), "x");
  const FileDescriptor file(::open(music("a").c_str(), O_RDONLY));
  ::kill(programs().front(), SIGKILL);
  EXPECT_TRUE(allEndWithin(2s));
  const Ended result = unmount();
  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_EQ(mountType(), "");
  mounted();
}

} // namespace sonorel::test
