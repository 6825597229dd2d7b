#include "core/AwaitTransfer.h"

#include "support/FakeWorker.h"

#include <gtest/gtest.h>

using namespace sonorel;
using namespace sonorel::test;

namespace {

class AwaitTransferTest : public testing::Test {
protected:
  FakeWorker worker;
  Interruption interruption;
  std::stop_source forcedEnd;
};

} // namespace

TEST_F(AwaitTransferTest, EndsTheTransferWithoutHurry) {
  bool ended = false;
  worker.start([&](const std::stop_token &stop) {
    EXPECT_TRUE(stop.stop_requested());
    EXPECT_FALSE(forcedEnd.stop_requested()) << "it may wait for its turn to write";
    ended = true;
  });
  awaitTransfer(worker, interruption, forcedEnd);
  EXPECT_TRUE(ended);
  EXPECT_FALSE(forcedEnd.stop_requested());
}

TEST_F(AwaitTransferTest, FurtherRequestPutsItInAHurry) {
  bool hurried = false;
  worker.start([&](const std::stop_token &) {
    interruption.interrupt();
    hurried = forcedEnd.stop_requested();
  });
  awaitTransfer(worker, interruption, forcedEnd);
  EXPECT_TRUE(hurried);
}

TEST_F(AwaitTransferTest, RequestAfterwardsChangesNothing) {
  awaitTransfer(worker, interruption, forcedEnd);
  interruption.interrupt();
  EXPECT_FALSE(forcedEnd.stop_requested());
}
