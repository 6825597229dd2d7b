#include "mount/share/ShareFixture.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <thread>

namespace sonorel::test {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

bool holds(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

// Something that listens but is no product.
class Listener {
public:
  Listener() : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(m_socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address);
    ::listen(m_socket.get(), 8);
  }
  [[nodiscard]] std::string url() const {
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    ::getsockname(m_socket.get(), reinterpret_cast<sockaddr *>(&address), &size);
    return "//vaultbox:secret@localhost:" + std::to_string(ntohs(address.sin_port)) + "/VB-SHARE$";
  }
  // Says a few words to everyone who comes, and hangs up.
  void sayAndHangUp(const std::stop_token &stop) const {
    while (!stop.stop_requested()) {
      const FileDescriptor guest(::accept4(m_socket.get(), nullptr, nullptr, SOCK_CLOEXEC));
      const std::string words = "HTTP/1.0 400 Bad request\r\n\r\n";
      static_cast<void>(::send(guest.get(), words.data(), words.size(), MSG_NOSIGNAL));
    }
  }
  void stop() const { ::shutdown(m_socket.get(), SHUT_RDWR); }

private:
  FileDescriptor m_socket;
};

class Mounting : public ShareFixture {
protected:
  void expectPlainFailure(const Ended &result, int status) const {
    EXPECT_EQ(result.status, status) << result.output;
    EXPECT_TRUE(result.output.starts_with("sonorel-mount: ")) << result.output;
    EXPECT_FALSE(holds(result.output, "Authentication") || holds(result.output, "Permission")) << result.output;
    EXPECT_EQ(mountType(), "");
    EXPECT_TRUE(allEndWithin(2s));
  }
};

} // namespace

TEST_F(Mounting, EndsWhenTheShareAnswers) {
  mounted();
  EXPECT_EQ(bytes(point() / "System/OrvProductName.orv"), "Auralis 5\n5.03.00.2387\n");
  EXPECT_EQ(programs().size(), 1U);
}

// As every product is addressed. The namespace of this program is a machine of its own, where the port is free.
TEST_F(Mounting, UsesTheUsualPortWithoutOneInTheUrl) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only root can make a product on the usual port";
  }
  const StandIn usual(folder() / "usual", {"--port", "445", "--name", "Usual 1"});
  const Ended result = mount("//vaultbox:p%40ss%3B100%25:x@127.0.0.1/VB-SHARE$");
  ASSERT_EQ(result.status, 0) << result.output;
  EXPECT_EQ(bytes(point() / "System/OrvProductName.orv"), "Usual 1\n5.03.00.2387\n");
}

TEST_F(Mounting, KeepsNothingOpenThatItWasStartedWith) {
  put(folder() / "file", "x");
  const Ended result = run({"/bin/sh", "-c", R"(exec 9<"$0"; exec "$@")", (folder() / "file").string(),
                            SONOREL_BIN "/sonorel-mount", point().string()},
                           product().url());
  ASSERT_EQ(result.status, 0) << result.output;
  ASSERT_EQ(programs().size(), 1U);
  std::error_code error;
  for (const auto &entry : fs::directory_iterator("/proc/" + std::to_string(programs().front()) + "/fd")) {
    EXPECT_NE(fs::read_symlink(entry.path(), error), folder() / "file");
  }
}

TEST_F(Mounting, NamesRefusedCredentialsWithinASecond) {
  for (const char *login : {"vaultbox:wrong", "vaultbox:", "nobody%20there:p%40ss%3B100%25:x"}) {
    const Ended result = mount(product().url(login));
    EXPECT_EQ(result.status, 2) << login;
    EXPECT_TRUE(holds(result.output, "Authentication")) << result.output;
    EXPECT_FALSE(holds(result.output, "Permission")) << result.output;
    EXPECT_LT(result.time, 1s);
    EXPECT_EQ(mountType(), "");
  }
}

TEST_F(Mounting, TakesALockedAccountForRefusedCredentials) {
  product().tell("lock");
  const Ended result = mount(product().url());
  product().tell("unlock");
  EXPECT_EQ(result.status, 2) << result.output;
  EXPECT_TRUE(holds(result.output, "Authentication")) << result.output;
  mounted();
}

TEST_F(Mounting, NamesRefusedAccess) {
  const Ended result = mount(product().url("vaultbox:p%40ss%3B100%25:x", "SECOND$"));
  EXPECT_EQ(result.status, 3);
  EXPECT_TRUE(holds(result.output, "Permission")) << result.output;
  EXPECT_FALSE(holds(result.output, "Authentication")) << result.output;
  EXPECT_EQ(mount(product().url("second:plain", "SECOND$")).status, 0);
}

TEST_F(Mounting, SaysPlainlyWhatElseIsWrong) {
  expectPlainFailure(mount("//vaultbox:x@localhost:1/VB-SHARE$"), 4);
  expectPlainFailure(mount("//vaultbox:x@host.invalid/VB-SHARE$"), 5);
  expectPlainFailure(mount(product().url("vaultbox:p%40ss%3B100%25:x", "NONE")), 6);
  expectPlainFailure(mount("vaultbox:x@localhost"), 64);
}

TEST_F(Mounting, RefusesAPointThatIsNoEmptyFolder) {
  const auto at = [this](const fs::path &path) {
    return run({SONOREL_BIN "/sonorel-mount", path.string()}, product().url());
  };
  put(point() / "file", "x");
  expectPlainFailure(at(point()), 8);
  expectPlainFailure(at(point() / "file"), 8);
  expectPlainFailure(at(point() / "none"), 8);
  expectPlainFailure(at(point() / "none" / "at all"), 8);
  fs::remove(point() / "file");
  mounted();
  EXPECT_EQ(mount(product().url()).status, 8) << "it is mounted already";
  EXPECT_EQ(bytes(point() / "System/MacIPAdress.orv"), "127.0.0.1\n02-00-5E-10-20-30\n") << "and stays so";
}

TEST_F(Mounting, NeedsFuse) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only root can hide /dev/fuse";
  }
  put(folder() / "nothing", "");
  const std::string hide = "mount --bind '" + (folder() / "nothing").string() + "' /dev/fuse && exec \"$@\"";
  expectPlainFailure(run({"/usr/bin/unshare", "--mount", "/bin/sh", "-c", hide, "sh", SONOREL_BIN "/sonorel-mount",
                          point().string()},
                         product().url()),
                     9);
}

TEST_F(Mounting, TellsWhatIsNoFileServer) {
  const Listener listener;
  std::jthread server([&](const std::stop_token &stop) { listener.sayAndHangUp(stop); });
  const Ended result = mount(listener.url());
  server.request_stop();
  listener.stop();
  expectPlainFailure(result, 7);
}

TEST_F(Mounting, GivesUpBeforeTheClientDoes) {
  const Listener silent;
  const Ended result = mount(silent.url(), 20s);
  EXPECT_EQ(result.ending, ToolEnding::Exited);
  EXPECT_LT(result.time, 17s);
  expectPlainFailure(result, 4);
}

TEST_F(Mounting, DoesNotMountLaterWhenItWasEnded) {
  product().tell("pause");
  const Ended result = mount(product().url(), 1s);
  product().tell("resume");
  EXPECT_EQ(result.ending, ToolEnding::DeadlinePassed);
  EXPECT_TRUE(allEndWithin(500ms));
  std::this_thread::sleep_for(500ms);
  EXPECT_EQ(mountType(), "");
}

TEST_F(Mounting, SpeaksEveryDialectDownToTheOldest) {
  for (const char *dialect : {"NT1", "SMB2_02", "SMB2_10", "SMB3_00", "SMB3_11"}) {
    product().tell("restart", {std::string("server max protocol = ") + dialect});
    mounted();
    put(folder() / "song", noise(400'000));
    fs::last_write_time(folder() / "song", fs::file_time_type::clock::now() - 1000h);
    EXPECT_EQ(copy(folder() / "song", point() / "Music/song").status, 0) << dialect;
    EXPECT_EQ(bytes(tree() / "Music/song"), noise(400'000)) << dialect;
    EXPECT_EQ(std::chrono::floor<std::chrono::seconds>(fs::last_write_time(tree() / "Music/song")),
              std::chrono::floor<std::chrono::seconds>(fs::last_write_time(folder() / "song")))
        << dialect;
    EXPECT_EQ(unmount().status, 0);
    EXPECT_EQ(mount(product().url("vaultbox:wrong")).status, 2) << dialect;
    fs::remove(tree() / "Music/song");
  }
  product().tell("restart", {"server min protocol = SMB3_11"});
  mounted();
  EXPECT_EQ(unmount().status, 0);
  product().tell("restart", {"server max protocol = LANMAN2", "server min protocol = LANMAN1"});
  expectPlainFailure(mount(product().url()), 7);
  product().tell("restart", {"server min protocol = NT1"});
}

TEST_F(Mounting, ExplainsItsExitStatuses) {
  const Ended help = run({SONOREL_BIN "/sonorel-mount", "--help"});
  EXPECT_EQ(help.status, 0);
  for (const char *status :
       {"  0 ", "  1 ", "  2 ", "  3 ", "  4 ", "  5 ", "  6 ", "  7 ", "  8 ", "  9 ", "  64 "}) {
    EXPECT_TRUE(holds(help.output, std::string("\n") + status)) << status;
  }
  EXPECT_EQ(run({SONOREL_BIN "/sonorel-mount"}).status, 64);
  EXPECT_EQ(run({SONOREL_BIN "/sonorel-mount", "-x", "/mnt"}).status, 64);
  EXPECT_EQ(run({SONOREL_BIN "/sonorel-umount", "--help"}).status, 0);
  EXPECT_EQ(run({SONOREL_BIN "/sonorel-umount", "-f"}).status, 64);
}

} // namespace sonorel::test
