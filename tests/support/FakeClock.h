// Time that stands still until somebody sleeps or the test turns it. Any thread.
#pragma once

#include "platform/Clock.h"
#include "support/FakeFileSystem.h"

#include <QList>

#include <functional>
#include <mutex>

namespace sonorel::test {

class FakeClock : public Clock {
public:
  // files, when given, gets the same time; it must outlive the clock.
  explicit FakeClock(FakeFileSystem *files = nullptr) : m_files(files) {}

  QList<std::chrono::milliseconds> sleeps;
  // Called in each sleep, after the time has passed.
  std::function<void()> onSleep;

  void advance(std::chrono::milliseconds duration) {
    const std::lock_guard guard(m_mutex);
    m_now += duration;
    if (m_files != nullptr) {
      m_files->nowSeconds = seconds();
    }
  }

  qint64 nowSeconds() override {
    const std::lock_guard guard(m_mutex);
    return seconds();
  }
  std::chrono::milliseconds monotonicNow() override {
    const std::lock_guard guard(m_mutex);
    return m_now;
  }
  bool sleep(std::chrono::milliseconds duration, std::stop_token stop) override {
    if (stop.stop_requested()) {
      return false;
    }
    {
      const std::lock_guard guard(m_mutex);
      sleeps.append(duration);
    }
    advance(duration);
    if (onSleep) {
      onSleep();
    }
    return !stop.stop_requested();
  }

private:
  [[nodiscard]] qint64 seconds() const { return FakeFileSystem::kStart + m_now.count() / 1000; }

  FakeFileSystem *m_files;
  mutable std::mutex m_mutex; // guards sleeps and m_now
  std::chrono::milliseconds m_now{0};
};

} // namespace sonorel::test
