#include "mount/MountUrl.h"

#include <gtest/gtest.h>

namespace sonorel::test {

TEST(MountUrl, HasFiveParts) {
  const auto url = parseMountUrl("//vaultbox:secret@192.168.1.20:4450/VB-SHARE$");
  ASSERT_TRUE(url);
  EXPECT_EQ(url->user, "vaultbox");
  EXPECT_EQ(url->password, "secret");
  EXPECT_EQ(url->host, "192.168.1.20");
  EXPECT_EQ(url->port, 4450);
  EXPECT_EQ(url->share, "VB-SHARE$");
  EXPECT_EQ(parseMountUrl("//vaultbox:secret@nas/VB-SHARE$")->port, 0);
}

TEST(MountUrl, TakesBytesOutOfTheirEscapeSequences) {
  const auto url = parseMountUrl("//an%2Fna:p%40ss%3B100%25%3Ax@n%61s/VB%2dSHARE%24/");
  ASSERT_TRUE(url);
  EXPECT_EQ(url->user, "an/na");
  EXPECT_EQ(url->password, "p@ss;100%:x");
  EXPECT_EQ(url->host, "nas");
  EXPECT_EQ(url->share, "VB-SHARE$");
}

TEST(MountUrl, LeavesAPercentThatIsNone) {
  EXPECT_EQ(parseMountUrl("//u:100%@h/s")->password, "100%");
  EXPECT_EQ(parseMountUrl("//u:100%:x@h/s")->password, "100%:x");
  EXPECT_EQ(parseMountUrl("//u:%4@h/s")->password, "%4");
  EXPECT_EQ(parseMountUrl("//u:%+1%-1% 1@h/s")->password, "%+1%-1% 1");
}

TEST(MountUrl, EndsTheUserAtTheFirstColonAndThePasswordAtTheLastAt) {
  const auto url = parseMountUrl("//u:a:b@c/d@e@h/s");
  ASSERT_TRUE(url);
  EXPECT_EQ(url->user, "u");
  EXPECT_EQ(url->password, "a:b@c/d@e");
  EXPECT_EQ(url->host, "h");
}

TEST(MountUrl, MayHaveAnEmptyPassword) {
  EXPECT_EQ(parseMountUrl("//u:@h/s")->password, "");
  EXPECT_EQ(parseMountUrl("//u@h/s")->password, "");
}

TEST(MountUrl, KnowsAddressesWithColons) {
  EXPECT_EQ(parseMountUrl("//u:p@[fe80::1]:4450/s")->host, "fe80::1");
  EXPECT_EQ(parseMountUrl("//u:p@[fe80::1]:4450/s")->port, 4450);
  EXPECT_EQ(parseMountUrl("//u:p@[fe80::1]/s")->host, "fe80::1");
  EXPECT_EQ(parseMountUrl("//u:p@fe80::1/s")->host, "fe80::1");
}

TEST(MountUrl, RefusesWhatIsNone) {
  for (const char *text :
       {"", "nas", "smb://u:p@h/s", "//h/s", "//u:p@h", "//u:p@/s", "//u:p@h/", "//:p@h/s", "//u:p@h:/s",
        "//u:p@h:0/s", "//u:p@h:65536/s", "//u:p@h:4x/s", "//u:p@h/s/t", "//u:p@h/s%5Ct", "//u:p%00@h/s"}) {
    EXPECT_FALSE(parseMountUrl(text)) << text;
  }
}

} // namespace sonorel::test
