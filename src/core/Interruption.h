// The stop token of what the controller's thread is doing: one interruption ends every pause, wait and child of the
// running operation and of those queued behind it, until renew. Any thread.
#pragma once

#include <mutex>
#include <stop_token>

namespace sonorel {

class Interruption {
public:
  [[nodiscard]] std::stop_token token() const {
    const std::lock_guard lock(m_mutex);
    return m_source.get_token();
  }
  void interrupt() {
    // Without the lock: callbacks of the token run inside.
    source().request_stop();
  }
  // What begins now can be waited for again.
  void renew() {
    const std::lock_guard lock(m_mutex);
    m_source = std::stop_source();
  }

private:
  [[nodiscard]] std::stop_source source() const {
    const std::lock_guard lock(m_mutex);
    return m_source;
  }

  mutable std::mutex m_mutex; // guards m_source
  std::stop_source m_source;
};

} // namespace sonorel
