// A worker whose body runs when the test says so, on the test's own thread. Where a real worker would wait for an
// earlier body, this one runs it.
#pragma once

#include "platform/Worker.h"

#include <QList>

#include <functional>
#include <optional>
#include <system_error>
#include <utility>

namespace sonorel::test {

class FakeWorker : public Worker {
public:
  [[nodiscard]] bool hasBody() const { return static_cast<bool>(m_body); }
  [[nodiscard]] int starts() const { return m_starts; }
  bool failsToStart = false;               // no thread can be had
  bool hangs = false;                      // joinWithin waits in vain
  QList<std::chrono::milliseconds> limits; // what joinWithin was given
  void run() {
    if (const auto body = std::exchange(m_body, nullptr)) {
      body(m_stop.get_token());
    }
  }

  void start(std::function<void(std::stop_token)> body) override {
    run();
    if (failsToStart) {
      throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again), "no thread");
    }
    ++m_starts;
    m_stop = std::stop_source();
    m_body = std::move(body);
  }
  void requestStop() override { m_stop.request_stop(); }
  void join() override { run(); }
  bool joinWithin(std::chrono::milliseconds limit) override {
    limits.append(limit);
    if (!hangs) {
      run();
    }
    return !hangs;
  }

private:
  std::function<void(std::stop_token)> m_body;
  std::stop_source m_stop;
  int m_starts = 0;
};

} // namespace sonorel::test
