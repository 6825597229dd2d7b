#include "platform/Failure.h"
#include "platform/linux/LinuxWorker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

using namespace sonorel;

namespace {

// Returns when the token is stopped.
void waitForStop(std::stop_token stop) {
  std::mutex mutex;
  std::condition_variable_any stopped;
  std::unique_lock lock(mutex);
  stopped.wait(lock, stop, [] { return false; });
}

} // namespace

TEST(LinuxWorker, RunsTheBodyOnAnotherThread) {
  LinuxWorker worker;
  std::thread::id body;
  worker.start([&](std::stop_token) { body = std::this_thread::get_id(); });
  worker.join();
  EXPECT_NE(body, std::thread::id());
  EXPECT_NE(body, std::this_thread::get_id());
}

TEST(LinuxWorker, NextBodyWaitsForTheOneBefore) {
  LinuxWorker worker;
  std::vector<int> ran;
  for (int i = 0; i < 20; ++i) {
    worker.start([&ran, i](std::stop_token) { ran.push_back(i); });
  }
  worker.join();
  EXPECT_EQ(ran.size(), 20U);
  EXPECT_TRUE(std::is_sorted(ran.begin(), ran.end()));
}

TEST(LinuxWorker, StopReachesTheRunningBodyOnly) {
  LinuxWorker worker;
  worker.start(waitForStop);
  worker.requestStop();
  worker.join();
  bool stopped = true;
  worker.start([&](std::stop_token stop) { stopped = stop.stop_requested(); });
  worker.join();
  EXPECT_FALSE(stopped);
}

TEST(LinuxWorker, EndStopsAndWaits) {
  std::atomic<bool> ended{false};
  {
    LinuxWorker worker;
    worker.start([&](std::stop_token stop) {
      waitForStop(stop);
      ended = true;
    });
  }
  EXPECT_TRUE(ended);
}

TEST(LinuxWorker, TellsWhatABodyThrew) {
  std::string told;
  LinuxWorker worker([&](const std::exception &e) { told = e.what(); });
  worker.start([](std::stop_token) { throw Failure(QStringLiteral("broken")); });
  worker.join();
  EXPECT_EQ(told, "broken");
}

TEST(LinuxWorker, WaitsNoLongerThanItIsTold) {
  LinuxWorker worker;
  EXPECT_TRUE(worker.joinWithin(std::chrono::milliseconds(0))) << "nothing runs";
  worker.start(waitForStop);
  EXPECT_FALSE(worker.joinWithin(std::chrono::milliseconds(10)));
  worker.requestStop();
  EXPECT_TRUE(worker.joinWithin(std::chrono::minutes(1)));
  EXPECT_TRUE(worker.joinWithin(std::chrono::milliseconds(0)));
}
