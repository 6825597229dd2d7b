// What sonoreld does from its start to its end, with the roots given: one client for each data folder, a door on the
// session bus, an orderly end when it is asked for. Main thread.
#pragma once

#include "app/Composition.h"

namespace sonorel {

// The exit statuses, beside those that the controller ends with.
inline constexpr int kFailed = 1;
inline constexpr int kUsage = 2;
inline constexpr int kNoSessionBus = 5;

// Folders, client and mark for the installation of the running program and the user's environment.
[[nodiscard]] CompositionOptions optionsFromEnvironment();
// Needs a QCoreApplication and the calling thread to be the only one.
[[nodiscard]] int runClient(CompositionOptions options);

} // namespace sonorel
