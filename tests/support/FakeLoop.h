// The controller's thread, stepped by the test: nothing runs until runPosted or advance is called, and then on the
// calling thread. Posting is safe from any thread.
#pragma once

#include "platform/Loop.h"

#include <deque>
#include <map>
#include <mutex>

namespace sonorel::test {

class FakeLoop : public Loop {
public:
  // Runs what stands in the queue and what is posted meanwhile, until the queue is empty.
  void runPosted();
  // Runs the oldest operation alone; false when there is none.
  bool runOne();
  // Lets time pass: due timers run in the order of their times, each followed by what it posted.
  void advance(std::chrono::milliseconds duration);
  [[nodiscard]] int timerCount() const;
  [[nodiscard]] int postedCount() const;
  [[nodiscard]] std::chrono::milliseconds now() const;

  void post(Operation operation) override;
  TimerId after(std::chrono::milliseconds delay, Operation operation) override;
  TimerId every(std::chrono::milliseconds interval, Operation operation) override;
  void cancel(TimerId timer) override;

private:
  struct Timer {
    std::chrono::milliseconds due;
    std::chrono::milliseconds interval; // 0: once
    Operation operation;
  };
  TimerId add(std::chrono::milliseconds delay, std::chrono::milliseconds interval, Operation operation);
  // The earliest timer due at or before the limit, taken or moved on; empty when there is none.
  Operation takeDue(std::chrono::milliseconds limit);

  mutable std::mutex m_mutex; // guards everything below
  std::deque<Operation> m_queue;
  std::map<TimerId, Timer> m_timers;
  TimerId m_nextTimer = 1;
  std::chrono::milliseconds m_now{0};
};

} // namespace sonorel::test
