// Which product the client is connected to, as the agent learns it: from its property file, else from the door.
// Any thread; blocks on both.
#pragma once

#include "platform/FileSystem.h"
#include "platform/PropertyLists.h"

#include <QString>

#include <functional>

namespace sonorel::trackchute {

// Empty when neither knows. askDoor is called only when the file says nothing ("0", empty, missing or damaged).
[[nodiscard]] QString connectedProduct(FileSystem &files, PropertyLists &lists, const QString &propertyFile,
                                       const std::function<QString()> &askDoor);

} // namespace sonorel::trackchute
