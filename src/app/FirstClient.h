// The client that was started first, as a later start sees it: one that runs is re-opened, one that quits is waited
// for. Main thread; waits for the bus.
#pragma once

#include <QDBusConnection>

#include <chrono>
#include <functional>

namespace sonorel {

// How a start goes on.
enum class Turn {
  Ours,          // nobody else is the client
  Theirs,        // the first client was re-opened
  NoAnswer,      // there is another one, which does not answer on this bus
  StillQuitting, // the first client was asked to quit and does not end
  GivenUp,       // told to end while it waited
};

struct TurnHooks {
  std::function<bool()> holdsLock;                      // that of the data folder is ours, from now on
  std::function<bool(std::chrono::milliseconds)> pause; // false: told to end
};

// Waits some seconds for a client that is still starting, and longer for one that quits: whoever starts the program
// again has a client afterwards.
[[nodiscard]] Turn awaitTurn(const QDBusConnection &bus, const TurnHooks &hooks);

} // namespace sonorel
