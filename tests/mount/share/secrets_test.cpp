#include "mount/share/ShareFixture.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <thread>

namespace sonorel::test {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

// The password, as it is and as it stands in the URL.
const std::vector<std::string> kSecrets{"p@ss;100%:x", "p%40ss%3B100%25", "100%:x", "100%25:x"};

class Secrets : public ShareFixture {
protected:
  static std::string fileOfProcess(int process, const char *name) {
    return bytes("/proc/" + std::to_string(process) + '/' + name);
  }
  static void expectNone(const std::string &text, const std::string &where) {
    for (const std::string &secret : kSecrets) {
      EXPECT_EQ(text.find(secret), std::string::npos) << secret << " in " << where;
    }
  }
  // Every process of the mount, whatever it is doing.
  void expectNoneInProcesses() const {
    for (const int process : programs()) {
      const std::string who = std::to_string(process);
      expectNone(fileOfProcess(process, "cmdline"), "the arguments of " + who);
      expectNone(fileOfProcess(process, "environ"), "the environment of " + who);
      expectNone(fileOfProcess(process, "comm"), "the name of " + who);
      EXPECT_NE(fileOfProcess(process, "limits").find("Max core file size        0                    0 "),
                std::string::npos)
          << "a core dump of " + who;
    }
  }
};

} // namespace

TEST_F(Secrets, StandNowhereWhileMounted) {
  mounted();
  ASSERT_EQ(programs().size(), 1U);
  expectNoneInProcesses();
  expectNone(bytes("/proc/self/mounts"), "the mount table");
}

TEST_F(Secrets, StandNowhereWhileConnecting) {
  product().tell("pause");
  std::thread mounting([this] { static_cast<void>(mount(product().url(), 2s)); });
  const auto end = std::chrono::steady_clock::now() + 1500ms;
  while (programs().size() < 2 && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(10ms);
  }
  EXPECT_EQ(programs().size(), 2U) << "the one that was started and the one that connects";
  expectNoneInProcesses();
  mounting.join();
  product().tell("resume");
}

TEST_F(Secrets, StandInNoOutput) {
  product().tell("lock");
  expectNone(mount(product().url()).output, "the output");
  product().tell("unlock");
  expectNone(mount(product().url("vaultbox:p%40ss%3B100%25:x", "NONE")).output, "the output");
  expectNone(mount("//vaultbox:p%40ss%3B100%25:x@localhost").output, "the output");
  expectNone(mount("//vaultbox:p%40ss%3B100%25:x@localhost:1/VB-SHARE$").output, "the output");
}

TEST_F(Secrets, StandInNoFile) {
  const std::string home = (folder() / "home").string();
  fs::create_directory(home);
  const Ended result = run({"/usr/bin/env", "HOME=" + home, "XDG_CACHE_HOME=" + home, "XDG_RUNTIME_DIR=" + home,
                            "TMPDIR=" + home, SONOREL_BIN "/sonorel-mount", point().string()},
                           product().url());
  ASSERT_EQ(result.status, 0) << result.output;
  ASSERT_EQ(copy("/etc/hostname", point() / "Music/a").status, 0);
  for (const auto &entry : fs::recursive_directory_iterator(home)) {
    if (entry.is_regular_file()) {
      expectNone(bytes(entry.path()), entry.path().string());
    }
  }
}

TEST_F(Secrets, AreClosedToTheUsersOtherPrograms) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only root can be somebody else";
  }
  product().tell("pause");
  const fs::path own = folder() / "own";
  fs::create_directory(own);
  ASSERT_EQ(::chown(own.c_str(), 65534, 65534), 0);
  fs::permissions(folder(), fs::perms::all);
  fs::permissions(folder().parent_path(), fs::perms::all);
  std::thread mounting([&] {
    static_cast<void>(run({"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups",
                           SONOREL_BIN "/sonorel-mount", point().string()},
                          product().url(), 2s));
  });
  const auto end = std::chrono::steady_clock::now() + 1500ms;
  while (programs().size() < 2 && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(10ms);
  }
  EXPECT_EQ(programs().size(), 2U);
  for (const int process : programs()) {
    struct stat facts = {};
    ASSERT_EQ(::stat(("/proc/" + std::to_string(process) + "/environ").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_uid, 0U) << "a process that can be looked into belongs to its user";
  }
  mounting.join();
  product().tell("resume");
}

} // namespace sonorel::test
