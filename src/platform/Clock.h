// Time and pauses. Any thread.
#pragma once

#include <QtGlobal>

#include <chrono>
#include <stop_token>

namespace sonorel {

class Clock {
public:
  virtual ~Clock() = default;
  [[nodiscard]] virtual qint64 nowSeconds() = 0; // since 1970, UTC
  [[nodiscard]] virtual std::chrono::milliseconds monotonicNow() = 0;
  // False when the stop token ended the pause early.
  virtual bool sleep(std::chrono::milliseconds duration, std::stop_token stop) = 0;
};

} // namespace sonorel
