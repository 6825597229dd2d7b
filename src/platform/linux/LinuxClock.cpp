#include "platform/linux/LinuxClock.h"

#include <condition_variable>
#include <mutex>

namespace sonorel {

qint64 LinuxClock::nowSeconds() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::floor<std::chrono::seconds>(now).count();
}

std::chrono::milliseconds LinuxClock::monotonicNow() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::floor<std::chrono::milliseconds>(now);
}

bool LinuxClock::sleep(std::chrono::milliseconds duration, std::stop_token stop) {
  std::mutex mutex;
  std::condition_variable_any stopped;
  std::unique_lock lock(mutex);
  stopped.wait_for(lock, stop, duration * m_pauseScale, [] { return false; });
  return !stop.stop_requested();
}

} // namespace sonorel
