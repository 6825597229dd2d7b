// A user whose own settings of Samba are strange: the mount program does as it does without them.
#include "mount/share/PlainServer.h"

namespace sonorel::test {

namespace fs = std::filesystem;

namespace {

class SambaSettings : public ShareFixture {
protected:
  [[nodiscard]] Ended mountWith(const std::string &options, const std::string &url) const {
    const fs::path home = folder() / "home";
    fs::create_directories(home / ".smb");
    put(home / ".smb/smb.conf", "[global]\n" + options + '\n');
    return run({"/usr/bin/env", "HOME=" + home.string(), SONOREL_BIN "/sonorel-mount", point().string()}, url);
  }
};

} // namespace

TEST_F(SambaSettings, OfThisMachineSendNoPasswordInClear) {
  const PlainServer server;
  server.expectNoPassword(mountWith("client ntlmv2 auth = no\n"
                                    "client lanman auth = yes\n"
                                    "client plaintext auth = yes",
                                    server.url()));
}

TEST_F(SambaSettings, OfThisMachineRefuseNoProductAndGarbleNoName) {
  const std::vector<std::string> strange{
      "unix charset = ISO8859-1",
      "dos charset = ISO8859-1",
      "unicode = no",
      "client signing = required\nclient ipc signing = required",
      "client smb encrypt = required",
      "client protection = encrypt",
      "client use kerberos = required",
      "client min protocol = SMB3_11\nclient ipc min protocol = SMB3_11",
      "client max protocol = LANMAN1\nclient ipc max protocol = LANMAN1",
      "client ntlmv2 auth = no",
      "log level = 10",
  };
  // As a product that knows nothing of newer protocols, and can neither sign nor encrypt.
  const StandIn old(folder() / "old", {"server max protocol = NT1", "server signing = disabled"});
  put(old.tree() / "Music/\u00dcber.mp3", "song");
  for (const std::string &options : strange) {
    const Ended result = mountWith(options, old.url());
    ASSERT_EQ(result.status, 0) << options << '\n' << result.output;
    EXPECT_EQ(result.output, "") << options;
    EXPECT_EQ(bytes(point() / "Music/\u00dcber.mp3"), "song") << options;
    put(point() / "Music/\u00e4\u20ac.mp3", options);
    EXPECT_EQ(unmount().status, 0);
    EXPECT_EQ(bytes(old.tree() / "Music/\u00e4\u20ac.mp3"), options);
  }
}

} // namespace sonorel::test
