// Sleep and wake of the machine. Handlers run on the controller's thread.
#pragma once

#include <functional>

namespace sonorel {

enum class PowerMessage { CanSystemSleep, SystemWillSleep };

class Power {
public:
  struct Handlers {
    // Acknowledged when the handler has returned.
    std::function<void(PowerMessage)> message;
    std::function<void()> didWake;
  };

  virtual ~Power() = default;
  // False when the service refuses; a machine without one counts as registered.
  [[nodiscard]] virtual bool registerForNotifications(Handlers handlers) = 0;
};

} // namespace sonorel
