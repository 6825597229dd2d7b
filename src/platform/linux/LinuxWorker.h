// One background thread at a time. start, join and the destructor belong to one thread; requestStop to any.
#pragma once

#include "platform/Worker.h"

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

private:
  std::function<void(const std::exception &)> m_onFailure;
  std::thread m_thread;
  std::mutex m_mutex; // guards m_stop
  std::stop_source m_stop;
};

} // namespace sonorel
