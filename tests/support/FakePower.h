// A machine that sleeps and wakes when the test says so. Controller's thread.
#pragma once

#include "platform/Power.h"

namespace sonorel::test {

class FakePower : public Power {
public:
  bool refuses = false;
  bool registered = false;
  bool isDelayed = false; // the machine would wait before it sleeps
  int acknowledged = 0;   // messages whose handler has returned

  void send(PowerMessage message) {
    if (!registered) {
      return;
    }
    if (message == PowerMessage::SystemWillSleep) {
      m_handlers.hurry();
    }
    m_handlers.message(message);
    ++acknowledged;
    isDelayed = message == PowerMessage::CanSystemSleep;
  }
  // The first half of a SystemWillSleep: what is under way is to end. The message waits for its turn.
  void announce() {
    if (registered) {
      m_handlers.hurry();
    }
  }
  void wake() {
    if (registered) {
      isDelayed = true;
      m_handlers.didWake();
    }
  }

  bool registerForNotifications(Handlers handlers) override {
    m_handlers = std::move(handlers);
    registered = isDelayed = !refuses;
    return registered;
  }

private:
  Handlers m_handlers;
};

} // namespace sonorel::test
