// Tells the product every two minutes that this client is alive, for as long as the share is there. Controller's
// thread.
#pragma once

#include "platform/Loop.h"

#include <chrono>
#include <functional>

namespace sonorel {

class ClientAlive {
public:
  static constexpr std::chrono::milliseconds kPeriod{120'000};

  struct Hooks {
    std::function<bool()> isConnected;
    std::function<void()> sendClientAliveMessage;
  };

  // The loop must outlive the object and not run any more when it is destroyed.
  ClientAlive(Loop &loop, Hooks hooks);
  ~ClientAlive();
  ClientAlive(const ClientAlive &) = delete;
  ClientAlive &operator=(const ClientAlive &) = delete;

  // Ends an earlier timer: a share that went and came back has one timer, not two.
  void start();
  void invalidate();
  // The tick. Without a connection the timer ends.
  void handleTimerAction();

private:
  Loop &m_loop;
  Hooks m_hooks;
  Loop::TimerId m_clientAlive = 0;
};

} // namespace sonorel
