// One background thread that is always joined: by the next start, by join and by the destructor. start, both
// joins and the destructor belong to one thread; requestStop to any.
#pragma once

#include <chrono>
#include <functional>
#include <stop_token>

namespace sonorel {

class Worker {
public:
  virtual ~Worker() = default;
  // Waits for an earlier body, then runs the new one. Not from inside the body. Throws std::system_error when no
  // thread can be had.
  virtual void start(std::function<void(std::stop_token)> body) = 0;
  virtual void requestStop() = 0;
  virtual void join() = 0;
  // Waits no longer than that; true when the body has ended.
  [[nodiscard]] virtual bool joinWithin(std::chrono::milliseconds limit) = 0;
};

} // namespace sonorel
