// Waits for a client that is connecting, perhaps to another product than the one before: until it is connected, what
// it has told of its product is true of the old one. Any thread; blocks.
#pragma once

#include <QtGlobal>

#include <chrono>
#include <functional>

namespace sonorel::trackchute {

struct ConnectionWait {
  std::function<bool()> isBusy;                // the client is connecting
  std::function<qsizetype()> selectedProducts; // how many it can connect to; asked once, when it is busy
  std::function<void(std::chrono::milliseconds)> pause;
  std::function<void()> tell; // once, before the first pause
};

// Returns when the client is connecting no more, well or not; at once when it has no other product. Throws Failure
// when it still is after a minute.
void awaitConnection(const ConnectionWait &wait);

} // namespace sonorel::trackchute
