#include "mount/SharePath.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace sonorel::test {

TEST(SharePath, WritesEveryOddByteAsANumber) {
  EXPECT_EQ(encodedPath("/Music/a-b_c.mp3"), "/Music/a-b_c.mp3");
  EXPECT_EQ(encodedPath("/[a] 100%&#?;@$"), "/%5Ba%5D%20100%25%26%23%3F%3B%40%24");
  EXPECT_EQ(encodedPath("/\xc3\xa4"), "/%C3%A4");
}

TEST(SharePath, RefusesNamesThatMeanSomethingElseToAServer) {
  EXPECT_EQ(nameError("/Music/track.mp3"), 0);
  EXPECT_EQ(nameError("/Music/a\\b"), EINVAL);
  EXPECT_EQ(nameError("/Music/a:b"), EINVAL);
  EXPECT_EQ(nameError("/wh*t?"), EINVAL);
}

TEST(SharePath, RefusesNamesAbove255Bytes) {
  EXPECT_EQ(nameError("/Music/" + std::string(255, 'x') + "/" + std::string(255, 'y')), 0);
  EXPECT_EQ(nameError("/Music/" + std::string(256, 'x')), ENAMETOOLONG);
  EXPECT_EQ(nameError("/" + std::string(256, 'x') + "/a"), ENAMETOOLONG);
}

} // namespace sonorel::test
