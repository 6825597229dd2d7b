// The controller's thread as a queue with its own clock; standard library only, so that the thread sanitizer sees
// everything. run() turns whoever calls it into the loop's thread. What throws ends nothing: it goes to onFailure.
#pragma once

#include "platform/Loop.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <map>
#include <mutex>
#include <optional>

namespace sonorel {

class LinuxLoop final : public Loop {
public:
  // onFailure is told, on the loop's thread, what an operation threw; none: the operation just ends.
  explicit LinuxLoop(std::function<void(const std::exception &)> onFailure = {});

  // Runs operations until stop. Once, on one thread.
  void run();
  // The running operation is the last one; what waits is dropped. Any thread, also before run and from inside an
  // operation.
  void stop();

  void post(Operation operation) override;
  TimerId after(std::chrono::milliseconds delay, Operation operation) override;
  TimerId every(std::chrono::milliseconds interval, Operation operation) override;
  void cancel(TimerId timer) override;

private:
  using Time = std::chrono::steady_clock::time_point;
  struct Posted {
    Time arrived;
    Operation operation;
  };
  struct Timer {
    Time due;
    std::chrono::milliseconds interval; // 0: once
    Operation operation;
  };
  using Timers = std::map<TimerId, Timer>;

  TimerId add(std::chrono::milliseconds delay, std::chrono::milliseconds interval, Operation operation);
  Timers::iterator earliest();
  Operation takeTimer(Timers::iterator timer, Time now);
  // The next operation in the order of arrival and due times; nullopt after stop.
  std::optional<Operation> waitForNext();
  void runOne(const Operation &operation) const;

  std::function<void(const std::exception &)> m_onFailure;
  std::mutex m_mutex; // guards everything below
  std::condition_variable m_changed;
  std::deque<Posted> m_queue;
  Timers m_timers;
  TimerId m_nextTimer = 1;
  bool m_stopped = false;
};

} // namespace sonorel
