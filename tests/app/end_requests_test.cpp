#include "app/EndRequests.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

namespace sonorel {

namespace {

bool waitUntil(const std::function<bool()> &done) {
  QElapsedTimer time;
  time.start();
  while (!done() && time.elapsed() < 5000) {
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return done();
}

} // namespace

TEST(EndRequests, EachSignalIsOneRequest) {
  EndRequests requests;
  int asked = 0;
  requests.observe(QDBusConnection::sessionBus(), [&asked] { ++asked; });
  ::raise(SIGTERM);
  ASSERT_TRUE(waitUntil([&asked] { return asked == 1; }));
  ::raise(SIGINT);
  ASSERT_TRUE(waitUntil([&asked] { return asked == 2; }));
  EXPECT_GT(::alarm(0), 0U); // after the second one the end comes by itself; not for this test
}

TEST(EndRequests, FurtherSignalsDoNotProlongTheTimeToTheEnd) {
  EndRequests requests;
  int asked = 0;
  requests.observe(QDBusConnection::sessionBus(), [&asked] { ++asked; });
  for (const int count : {1, 2}) {
    ::raise(SIGTERM);
    ASSERT_TRUE(waitUntil([&] { return asked == count; }));
  }
  EXPECT_EQ(::alarm(300), 15U); // as if most of the time had passed already
  ::raise(SIGTERM);
  ASSERT_TRUE(waitUntil([&asked] { return asked == 3; }));
  EXPECT_GT(::alarm(0), 15U);
}

TEST(EndRequests, AreSeenByAStartThatWaitsAndAreNotLost) {
  EndRequests requests;
  EXPECT_FALSE(requests.arrivesWithin(std::chrono::milliseconds(0)));
  ::raise(SIGTERM);
  EXPECT_TRUE(requests.arrivesWithin(std::chrono::milliseconds(5000)));
  int asked = 0;
  requests.observe(QDBusConnection::sessionBus(), [&asked] { ++asked; });
  EXPECT_TRUE(waitUntil([&asked] { return asked == 1; }));
}

} // namespace sonorel
