#include "core/ClientAlive.h"

#include <utility>

namespace sonorel {

ClientAlive::ClientAlive(Loop &loop, Hooks hooks) : m_loop(loop), m_hooks(std::move(hooks)) {}

ClientAlive::~ClientAlive() {
  invalidate();
}

void ClientAlive::start() {
  invalidate();
  m_clientAlive = m_loop.every(kPeriod, [this] { handleTimerAction(); });
}

void ClientAlive::invalidate() {
  m_loop.cancel(std::exchange(m_clientAlive, 0));
}

void ClientAlive::handleTimerAction() {
  if (m_hooks.isConnected()) {
    m_hooks.sendClientAliveMessage();
  } else {
    invalidate();
  }
}

} // namespace sonorel
