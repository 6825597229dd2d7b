// The machine's time. Pauses can be shortened by a factor; measured time cannot. Any thread.
#pragma once

#include "platform/Clock.h"

namespace sonorel {

class LinuxClock final : public Clock {
public:
  // pauseScale multiplies every pause: 1 as the system does it, 0 none at all.
  explicit LinuxClock(double pauseScale = 1.0) : m_pauseScale(pauseScale) {}

  [[nodiscard]] qint64 nowSeconds() override;
  [[nodiscard]] std::chrono::milliseconds monotonicNow() override;
  bool sleep(std::chrono::milliseconds duration, std::stop_token stop) override;

private:
  const double m_pauseScale;
};

} // namespace sonorel
