// Where this installation and this user's folders stand on the host: the roots of the path map, from the place of the
// running program and the environment. Before other threads start: reads the environment and the user's account.
#pragma once

#include "platform/linux/PathMap.h"

#include <QString>

namespace sonorel {

// The folder of the running program.
[[nodiscard]] QString programFolder();

// programs is the folder that holds our programs: an installation's "bin", or the "bin" of a build tree, whose
// resources stand beside it.
[[nodiscard]] Roots rootsFromEnvironment(const QString &programs);

} // namespace sonorel
