// One background thread that is always joined: by the next start, by join and by the destructor.
#pragma once

#include <chrono>
#include <functional>
#include <stop_token>

namespace sonorel {

class Worker {
public:
  virtual ~Worker() = default;
  // Waits for an earlier body, then runs the new one. Not from inside the body.
  virtual void start(std::function<void(std::stop_token)> body) = 0;
  virtual void requestStop() = 0;
  virtual void join() = 0;
  // Waits no longer than that; true when the body has ended.
  [[nodiscard]] virtual bool joinWithin(std::chrono::milliseconds limit) = 0;
};

} // namespace sonorel
