// What the controller relies on in a loop, for the real one and the fake.
#include "platform/linux/LinuxLoop.h"
#include "support/FakeLoop.h"

#include <gtest/gtest.h>

#include <future>
#include <mutex>
#include <thread>
#include <vector>

using namespace sonorel;
using std::chrono::milliseconds;

namespace {

// Lets time pass while the loop runs.
class FakeBench {
public:
  test::FakeLoop loop;

  void pass(milliseconds duration) { loop.advance(duration); }
};

class LinuxBench {
public:
  LinuxLoop loop;

  LinuxBench() : m_thread([this] { loop.run(); }) {}
  ~LinuxBench() {
    loop.stop();
    m_thread.join();
  }
  void pass(milliseconds duration) {
    std::this_thread::sleep_for(duration);
    // What was due has run when an operation that is posted now has run.
    std::promise<void> done;
    loop.post([&done] { done.set_value(); });
    done.get_future().wait();
  }

private:
  std::thread m_thread;
};

template <typename Bench> class LoopContract : public testing::Test {
protected:
  Bench bench;
  Loop &loop = bench.loop;

  void add(int number) {
    const std::lock_guard guard(m_mutex);
    m_ran.push_back(number);
  }
  std::vector<int> ran() const {
    const std::lock_guard guard(m_mutex);
    return m_ran;
  }
  Loop::Operation note(int number) {
    return [this, number] { add(number); };
  }

private:
  mutable std::mutex m_mutex; // guards m_ran
  std::vector<int> m_ran;
};

using Benches = testing::Types<FakeBench, LinuxBench>;
TYPED_TEST_SUITE(LoopContract, Benches);

} // namespace

TYPED_TEST(LoopContract, RunsOperationsInTheOrderTheyCame) {
  for (int i = 0; i < 5; ++i) {
    this->loop.post(this->note(i));
  }
  this->bench.pass(milliseconds(0));
  EXPECT_EQ(this->ran(), (std::vector<int>{0, 1, 2, 3, 4}));
}

TYPED_TEST(LoopContract, OperationPostedByAnOperationRunsAfterIt) {
  this->loop.post([this] {
    this->loop.post(this->note(2));
    this->add(1);
  });
  this->bench.pass(milliseconds(20));
  EXPECT_EQ(this->ran(), (std::vector<int>{1, 2}));
}

TYPED_TEST(LoopContract, NothingRunsInsideAnotherOperation) {
  bool inside = false;
  bool nested = false;
  for (int i = 0; i < 20; ++i) {
    this->loop.post([&] {
      nested = nested || inside;
      inside = true;
      this->loop.post([&] { nested = nested || inside; });
      inside = false;
    });
  }
  this->bench.pass(milliseconds(20));
  EXPECT_FALSE(nested);
}

TYPED_TEST(LoopContract, PostsFromManyThreadsAllRun) {
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
      threads.emplace_back([this] {
        for (int i = 0; i < 100; ++i) {
          this->loop.post(this->note(i));
        }
      });
    }
  }
  this->bench.pass(milliseconds(0));
  EXPECT_EQ(this->ran().size(), 400U);
}

TYPED_TEST(LoopContract, OneShotTimerRunsOnceAfterItsDelay) {
  EXPECT_NE(this->loop.after(milliseconds(40), this->note(1)), 0U);
  this->bench.pass(milliseconds(0));
  EXPECT_TRUE(this->ran().empty());
  this->bench.pass(milliseconds(100));
  EXPECT_EQ(this->ran(), (std::vector<int>{1}));
  this->bench.pass(milliseconds(60));
  EXPECT_EQ(this->ran(), (std::vector<int>{1}));
}

TYPED_TEST(LoopContract, TimersRunInTheOrderOfTheirTimes) {
  this->loop.after(milliseconds(40), this->note(2));
  this->loop.after(milliseconds(10), this->note(1));
  this->loop.after(milliseconds(70), this->note(3));
  this->bench.pass(milliseconds(150));
  EXPECT_EQ(this->ran(), (std::vector<int>{1, 2, 3}));
}

TYPED_TEST(LoopContract, RepeatingTimerWaitsOneFullIntervalFirst) {
  const auto timer = this->loop.every(milliseconds(50), this->note(1));
  this->bench.pass(milliseconds(0));
  EXPECT_TRUE(this->ran().empty());
  this->bench.pass(milliseconds(180));
  this->loop.cancel(timer);
  this->bench.pass(milliseconds(0));
  EXPECT_GE(this->ran().size(), 2U);
  EXPECT_LE(this->ran().size(), 4U);
}

TYPED_TEST(LoopContract, CancelledTimerDoesNotRun) {
  const auto once = this->loop.after(milliseconds(20), this->note(1));
  const auto often = this->loop.every(milliseconds(20), this->note(2));
  EXPECT_NE(once, often);
  this->loop.cancel(once);
  this->loop.cancel(often);
  this->loop.cancel(0);
  this->loop.cancel(987654);
  this->bench.pass(milliseconds(80));
  EXPECT_TRUE(this->ran().empty());
}

TYPED_TEST(LoopContract, TimerMayCancelItself) {
  Loop::TimerId timer = 0; // only touched on the loop's thread
  this->loop.post([&] {
    timer = this->loop.every(milliseconds(20), [&] {
      this->add(1);
      this->loop.cancel(timer);
    });
  });
  this->bench.pass(milliseconds(0));
  this->bench.pass(milliseconds(150));
  EXPECT_EQ(this->ran(), (std::vector<int>{1}));
}

TYPED_TEST(LoopContract, TimerMayStartAnother) {
  this->loop.after(milliseconds(10), [this] { this->loop.after(milliseconds(10), this->note(2)); });
  this->bench.pass(milliseconds(100));
  EXPECT_EQ(this->ran(), (std::vector<int>{2}));
}
