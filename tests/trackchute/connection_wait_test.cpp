#include "trackchute/ConnectionWait.h"

#include "platform/Failure.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace sonorel::trackchute {

namespace {

// A client that is done with connecting after some pauses.
class ConnectionWaitTest : public testing::Test {
protected:
  void await() {
    awaitConnection({[this] { return paused < busyFor; }, [this] { return products; },
                     [this](std::chrono::milliseconds time) {
                       EXPECT_EQ(told, 1);
                       paused += time;
                     },
                     [this] { ++told; }});
  }

  std::chrono::milliseconds busyFor = 0ms;
  std::chrono::milliseconds paused = 0ms;
  qsizetype products = 2;
  int told = 0;
};

} // namespace

TEST_F(ConnectionWaitTest, ClientThatIsNotConnectingIsNotWaitedFor) {
  await();
  EXPECT_EQ(paused, 0ms);
  EXPECT_EQ(told, 0);
}

TEST_F(ConnectionWaitTest, ClientWithoutAChoiceIsNotWaitedFor) {
  busyFor = 10min;
  for (const qsizetype count : {0, 1}) {
    products = count;
    await();
  }
  EXPECT_EQ(paused, 0ms);
  EXPECT_EQ(told, 0);
}

TEST_F(ConnectionWaitTest, WaitsUntilTheClientIsNoMoreConnecting) {
  busyFor = 900ms;
  await();
  EXPECT_EQ(paused, 1000ms);
  EXPECT_EQ(told, 1);
}

TEST_F(ConnectionWaitTest, ClientThatIsConnectedInTheLastMomentIsServed) {
  busyFor = 60s;
  await();
  EXPECT_EQ(paused, 60s);
  EXPECT_EQ(told, 1);
}

TEST_F(ConnectionWaitTest, GivesUpAfterAMinute) {
  busyFor = 10min;
  QString reason;
  try {
    await();
  } catch (const Failure &failure) {
    reason = failure.reason();
  }
  EXPECT_EQ(reason, u"the client is still connecting; drop again when it is connected"_s);
  EXPECT_EQ(paused, 60s);
  EXPECT_EQ(told, 1);
}

} // namespace sonorel::trackchute
