#include "core/QuitRequests.h"

#include <utility>

namespace sonorel {

QuitRequests::QuitRequests(Loop &loop, Interruption &interruption, Hooks hooks)
    : m_loop(loop), m_interruption(interruption), m_hooks(std::move(hooks)) {}

void QuitRequests::byUser() {
  ++m_asked;
  m_interruption.interrupt();
  m_loop.post([this] { quit(); });
}

void QuitRequests::bySystem() {
  ++m_asked;
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
  if (agrees()) {
    end();
  } else {
    --m_asked;
  }
}

void QuitRequests::unconditionally() {
  ++m_asked;
  m_loop.post([this] { quitByForce(false); });
}

// With the transfer ended there is no reason left to refuse: the rest is what every quit does.
void QuitRequests::quitByForce(bool hurry) {
  if (m_terminated) {
    return;
  }
  m_terminated = true;
  m_interruption.renew();
  attempt([this, hurry] { m_hooks.cancelTransfer(hurry); });
  attempt(m_hooks.joinTransfer);
  static_cast<void>(agrees());
  end();
}

// A program that cannot be ended would be worse than one that ends half tidied.
bool QuitRequests::agrees() {
  bool agreed = true;
  attempt([this, &agreed] { agreed = m_hooks.applicationShouldTerminate(); });
  return agreed;
}

// A request that came meanwhile has cut the pauses and tools short; the last steps are its own to wait for.
void QuitRequests::end() {
  m_terminated = true;
  m_interruption.renew();
  attempt(m_hooks.terminate);
}

void QuitRequests::attempt(const std::function<void()> &step) {
  try {
    step();
  } catch (const std::exception &e) {
    m_hooks.failed(e);
  }
}

} // namespace sonorel
