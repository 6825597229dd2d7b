#include "core/QuitRequests.h"

#include <utility>

namespace sonorel {

QuitRequests::QuitRequests(Loop &loop, Interruption &interruption, Hooks hooks)
    : m_loop(loop), m_interruption(interruption), m_hooks(std::move(hooks)) {}

void QuitRequests::byUser() {
  m_interruption.interrupt();
  m_loop.post([this] { quit(); });
}

void QuitRequests::bySystem() {
  const bool force = m_systemRequests.fetch_add(1) > 0;
  m_interruption.interrupt();
  m_loop.post([this, force] {
    if (force) {
      quitByForce(true);
    } else {
      quit();
    }
  });
}

void QuitRequests::quit() {
  if (m_terminated) {
    return;
  }
  m_interruption.renew();
  if (m_hooks.applicationShouldTerminate()) {
    m_terminated = true;
    m_hooks.terminate();
  }
}

void QuitRequests::unconditionally() {
  m_loop.post([this] { quitByForce(false); });
}

// With the transfer ended there is no reason left to refuse: the rest is what every quit does.
void QuitRequests::quitByForce(bool hurry) {
  if (m_terminated) {
    return;
  }
  m_terminated = true;
  m_interruption.renew();
  m_hooks.cancelTransfer(hurry);
  m_hooks.joinTransfer();
  static_cast<void>(m_hooks.applicationShouldTerminate());
  m_hooks.terminate();
}

} // namespace sonorel
