// What everybody relies on in a clock, for the real one and the fake.
#include "platform/linux/LinuxClock.h"
#include "support/FakeClock.h"

#include <gtest/gtest.h>

#include <thread>

using namespace sonorel;
using std::chrono::milliseconds;

namespace {

template <typename Type> class ClockContract : public testing::Test {
protected:
  Type clock;
};

using Clocks = testing::Types<test::FakeClock, LinuxClock>;
TYPED_TEST_SUITE(ClockContract, Clocks);

} // namespace

TYPED_TEST(ClockContract, SleepLetsItsTimePass) {
  const milliseconds before = this->clock.monotonicNow();
  EXPECT_TRUE(this->clock.sleep(milliseconds(30), {}));
  EXPECT_GE(this->clock.monotonicNow() - before, milliseconds(30));
}

TYPED_TEST(ClockContract, RequestedStopEndsAPauseAtOnce) {
  std::stop_source stop;
  stop.request_stop();
  const milliseconds before = this->clock.monotonicNow();
  EXPECT_FALSE(this->clock.sleep(std::chrono::hours(1), stop.get_token()));
  EXPECT_LT(this->clock.monotonicNow() - before, std::chrono::seconds(30));
}

TYPED_TEST(ClockContract, TimeNeverGoesBack) {
  milliseconds before = this->clock.monotonicNow();
  for (int i = 0; i < 100; ++i) {
    const milliseconds now = this->clock.monotonicNow();
    EXPECT_GE(now, before);
    before = now;
  }
  EXPECT_GT(this->clock.nowSeconds(), 0);
}

TEST(LinuxClock, StopEndsARunningPause) {
  LinuxClock clock;
  std::stop_source stop;
  const milliseconds before = clock.monotonicNow();
  std::jthread stopper([&] {
    std::this_thread::sleep_for(milliseconds(20));
    stop.request_stop();
  });
  EXPECT_FALSE(clock.sleep(std::chrono::hours(1), stop.get_token()));
  EXPECT_LT(clock.monotonicNow() - before, std::chrono::seconds(30));
}

TEST(FakeClock, StopDuringAPauseIsTold) {
  test::FakeClock clock;
  std::stop_source stop;
  clock.onSleep = [&] { stop.request_stop(); };
  EXPECT_FALSE(clock.sleep(milliseconds(2000), stop.get_token()));
  EXPECT_EQ(clock.sleeps, (QList<milliseconds>{milliseconds(2000)}));
}

TEST(FakeClock, GivesItsTimeToTheFakeFileSystem) {
  test::FakeFileSystem files;
  test::FakeClock clock(&files);
  EXPECT_EQ(clock.nowSeconds(), test::FakeFileSystem::kStart);
  clock.advance(std::chrono::seconds(90));
  files.makeFolders(QStringLiteral("/f"));
  files.write(QStringLiteral("/f/a"), "x");
  EXPECT_EQ(files.modified(QStringLiteral("/f/a")), test::FakeFileSystem::kStart + 90);
  EXPECT_EQ(clock.nowSeconds(), test::FakeFileSystem::kStart + 90);
}
