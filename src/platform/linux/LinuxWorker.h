// One background thread at a time. start, both joins and the destructor belong to one thread; requestStop to any.
#pragma once

#include "platform/Worker.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace sonorel {

class LinuxWorker final : public Worker {
public:
  // onFailure is told, on the worker's thread, what a body threw.
  explicit LinuxWorker(std::function<void(const std::exception &)> onFailure = {});
  LinuxWorker(const LinuxWorker &) = delete;
  LinuxWorker &operator=(const LinuxWorker &) = delete;
  ~LinuxWorker() override;

  void start(std::function<void(std::stop_token)> body) override;
  void requestStop() override;
  void join() override;
  [[nodiscard]] bool joinWithin(std::chrono::milliseconds limit) override;

private:
  void runBody(const std::function<void(std::stop_token)> &body, const std::stop_token &token);

  std::function<void(const std::exception &)> m_onFailure;
  std::thread m_thread;
  std::mutex m_mutex; // guards everything below
  std::condition_variable m_ended;
  std::stop_source m_stop;
  bool m_isRunning = false;
};

} // namespace sonorel
