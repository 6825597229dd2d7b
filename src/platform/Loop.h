// The controller's thread as a queue of operations. post, after, every and cancel may be called from any thread
// and return at once; operations run one after the other on the loop's thread in the order they came.
#pragma once

#include <chrono>
#include <functional>

namespace sonorel {

class Loop {
public:
  using Operation = std::function<void()>;
  using TimerId = unsigned long long; // 0 is never given

  virtual ~Loop() = default;
  virtual void post(Operation operation) = 0;
  // Runs once, after the delay.
  virtual TimerId after(std::chrono::milliseconds delay, Operation operation) = 0;
  // Runs for the first time after one full interval; a tick that comes while the loop is busy is not made up.
  virtual TimerId every(std::chrono::milliseconds interval, Operation operation) = 0;
  // Unknown ids and 0 are ignored. An operation of a cancelled timer does not run any more.
  virtual void cancel(TimerId timer) = 0;
};

} // namespace sonorel
