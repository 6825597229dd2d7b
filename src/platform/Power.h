// Sleep and wake of the machine. message and didWake run on the controller's thread.
#pragma once

#include <functional>

namespace sonorel {

enum class PowerMessage { CanSystemSleep, SystemWillSleep };

class Power {
public:
  struct Handlers {
    // The machine will sleep, and message is about to be told so: whatever still waits ends now. Any thread; returns
    // at once.
    std::function<void()> hurry;
    // Acknowledged when the handler has returned, or after four seconds.
    std::function<void(PowerMessage)> message;
    std::function<void()> didWake;
  };

  virtual ~Power() = default;
  // Once. False when the service refuses; a machine without one counts as registered. May wait for the service.
  [[nodiscard]] virtual bool registerForNotifications(Handlers handlers) = 0;
};

} // namespace sonorel
