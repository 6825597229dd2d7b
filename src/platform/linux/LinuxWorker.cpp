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
    m_isRunning = true;
  }
  m_thread = std::thread([this, body = std::move(body), token] { runBody(body, token); });
}

void LinuxWorker::runBody(const std::function<void(std::stop_token)> &body, const std::stop_token &token) {
  try {
    body(token);
  } catch (const std::exception &e) {
    if (m_onFailure) {
      m_onFailure(e);
    }
  }
  const std::lock_guard lock(m_mutex);
  m_isRunning = false;
  m_ended.notify_all();
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

bool LinuxWorker::joinWithin(std::chrono::milliseconds limit) {
  {
    std::unique_lock lock(m_mutex);
    if (m_thread.joinable() && !m_ended.wait_for(lock, limit, [this] { return !m_isRunning; })) {
      return false;
    }
  }
  join();
  return true;
}

} // namespace sonorel
