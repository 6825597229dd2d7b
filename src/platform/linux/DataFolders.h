// The folders that the path map leads to and that the first system always has: made at every start. Called once,
// before anything else touches the paths.
#pragma once

#include "platform/linux/PathMap.h"

namespace sonorel {

// The data folder is closed to others, because the modes inside are the system's own. Throws Failure.
void prepareDataFolders(const Roots &roots);

} // namespace sonorel
