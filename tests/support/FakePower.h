// A machine that sleeps and wakes when the test says so. Controller's thread.
#pragma once

#include "platform/Power.h"

namespace sonorel::test {

class FakePower : public Power {
public:
  bool refuses = false;
  bool registered = false;
  int acknowledged = 0; // messages whose handler has returned

  void send(PowerMessage message) {
    if (m_handlers.message) {
      m_handlers.message(message);
    }
    ++acknowledged;
  }
  void wake() {
    if (m_handlers.didWake) {
      m_handlers.didWake();
    }
  }

  bool registerForNotifications(Handlers handlers) override {
    if (refuses) {
      return false;
    }
    registered = true;
    m_handlers = std::move(handlers);
    return true;
  }

private:
  Handlers m_handlers;
};

} // namespace sonorel::test
