#include "platform/Failure.h"
#include "platform/linux/LinuxLoop.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace sonorel;
using std::chrono::milliseconds;

TEST(LinuxLoop, GoesOnAfterAnOperationThatThrew) {
  std::string told;
  LinuxLoop loop([&](const std::exception &e) { told = e.what(); });
  bool ran = false;
  loop.post([] { throw Failure(QStringLiteral("broken")); });
  loop.post([&] {
    ran = true;
    loop.stop();
  });
  loop.run();
  EXPECT_EQ(told, "broken");
  EXPECT_TRUE(ran);
}

TEST(LinuxLoop, NothingRunsAfterStop) {
  LinuxLoop loop;
  int ran = 0;
  loop.post([&] {
    ++ran;
    loop.stop();
  });
  loop.post([&] { ++ran; });
  loop.run();
  loop.post([&] { ++ran; });
  EXPECT_EQ(ran, 1);
}

TEST(LinuxLoop, DroppedOperationsMayPostWhenTheyEnd) {
  class PostsWhenItEnds {
  public:
    explicit PostsWhenItEnds(Loop &loop) : m_loop(loop) {}
    PostsWhenItEnds(const PostsWhenItEnds &) = delete;
    PostsWhenItEnds &operator=(const PostsWhenItEnds &) = delete;
    ~PostsWhenItEnds() {
      m_loop.post([] {});
    }

  private:
    Loop &m_loop;
  };
  LinuxLoop loop;
  loop.post([&] { loop.stop(); });
  loop.post([guard = std::make_shared<PostsWhenItEnds>(loop)] { (void)guard; });
  loop.after(std::chrono::hours(1), [guard = std::make_shared<PostsWhenItEnds>(loop)] { (void)guard; });
  loop.run();
  SUCCEED(); // a lock held while they end would never come back
}

TEST(LinuxLoop, TicksMissedWhileBusyAreNotMadeUp) {
  LinuxLoop loop;
  int ticks = 0;
  loop.every(milliseconds(10), [&] { ++ticks; });
  loop.post([] { std::this_thread::sleep_for(milliseconds(205)); });
  loop.post([&] { loop.after(milliseconds(0), [&] { loop.stop(); }); });
  loop.run();
  EXPECT_LE(ticks, 2);
}
