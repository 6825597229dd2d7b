#include "platform/linux/LinuxWorker.h"

#include <utility>

namespace sonorel {

LinuxWorker::LinuxWorker(std::function<void(const std::exception &)> onFailure) : m_onFailure(std::move(onFailure)) {}

LinuxWorker::~LinuxWorker() {
  requestStop();
  join();
}

void LinuxWorker::start(std::function<void(std::stop_token)> body) {
  join();
  std::stop_token token;
  {
    const std::lock_guard lock(m_mutex);
    m_stop = std::stop_source();
    token = m_stop.get_token();
  }
  m_thread = std::thread([this, body = std::move(body), token] {
    try {
      body(token);
    } catch (const std::exception &e) {
      if (m_onFailure) {
        m_onFailure(e);
      }
    }
  });
}

void LinuxWorker::requestStop() {
  std::stop_source stop;
  {
    const std::lock_guard lock(m_mutex);
    stop = m_stop;
  }
  stop.request_stop(); // runs callbacks: not under the lock
}

void LinuxWorker::join() {
  if (m_thread.joinable()) {
    m_thread.join();
  }
}

} // namespace sonorel
