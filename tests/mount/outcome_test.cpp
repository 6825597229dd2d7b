#include "mount/Outcome.h"

#include <gtest/gtest.h>

namespace sonorel::test {

TEST(Outcome, NamesARefusalByItsWord) {
  EXPECT_EQ(printedLine({ExitStatus::RefusedCredentials, "no such user"}, "sonorel-mount"),
            "sonorel-mount: Authentication error: no such user\n");
  EXPECT_EQ(printedLine({ExitStatus::RefusedAccess, "not for you"}, "sonorel-mount"),
            "sonorel-mount: Permission error: not for you\n");
}

TEST(Outcome, LetsNoOtherEndPassForARefusal) {
  EXPECT_EQ(printedLine({ExitStatus::NoFuse, "Permission denied"}, "sonorel-mount"),
            "sonorel-mount: it was not allowed\n");
  EXPECT_EQ(printedLine({ExitStatus::Unreachable, "Authentication server is down"}, "sonorel-mount"),
            "sonorel-mount: it was not allowed\n");
  EXPECT_EQ(printedLine({ExitStatus::Unreachable, "no answer"}, "sonorel-mount"), "sonorel-mount: no answer\n");
}

} // namespace sonorel::test
