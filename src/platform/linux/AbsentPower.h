// A machine without a sleep service: it counts as registered and never announces anything. Any thread.
#pragma once

#include "platform/Power.h"

namespace sonorel {

class AbsentPower final : public Power {
public:
  [[nodiscard]] bool registerForNotifications(Handlers) override { return true; }
};

} // namespace sonorel
