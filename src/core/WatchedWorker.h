// The worker, and whether its body is at work: a transfer that was left for a sleep counts as running on the board
// although nobody carries it. Any thread.
#pragma once

#include "platform/Worker.h"

#include <atomic>
#include <utility>

namespace sonorel {

class WatchedWorker final : public Worker {
public:
  // worker must outlive the object.
  explicit WatchedWorker(Worker &worker) : m_worker(worker) {}
  WatchedWorker(const WatchedWorker &) = delete;
  WatchedWorker &operator=(const WatchedWorker &) = delete;
  // The body refers to what its owner holds.
  ~WatchedWorker() override {
    m_worker.requestStop();
    m_worker.join();
  }

  // From the start that was asked for until the body has returned.
  [[nodiscard]] bool isRunning() const { return m_bodies > 0; }

  void start(std::function<void(std::stop_token)> body) override {
    ++m_bodies;
    m_worker.start([this, body = std::move(body)](std::stop_token stop) {
      const Finished finished{m_bodies};
      body(std::move(stop));
    });
  }
  void requestStop() override { m_worker.requestStop(); }
  void join() override { m_worker.join(); }

private:
  struct Finished {
    std::atomic<int> &bodies;
    ~Finished() { --bodies; }
  };

  Worker &m_worker;
  std::atomic<int> m_bodies{0};
};

} // namespace sonorel
