// Waits for a transfer that is to end. Its favourites rewrite is finished first; a request to end that comes
// meanwhile puts it in a hurry: then it waits for other clients no more. Controller's thread.
#pragma once

#include "core/Interruption.h"
#include "platform/Worker.h"

#include <stop_token>

namespace sonorel {

// forcedEnd: what the worker's waits for other clients look at.
inline void awaitTransfer(Worker &worker, const Interruption &interruption, const std::stop_source &forcedEnd) {
  const std::stop_callback hurry(interruption.token(), [source = forcedEnd]() mutable { source.request_stop(); });
  worker.requestStop();
  worker.join();
}

} // namespace sonorel
