// Copies of dropped addresses that the drag itself has left behind, in two folders that are known by their names.
#pragma once

#include "platform/Desktop.h"
#include "platform/FileSystem.h"

#include <QString>

namespace sonorel {

// Removes the copy of that name from "/private/tmp", or else from the user's folder of temporary items. One that
// cannot be removed is logged. homePath has no "/" at its end. Worker thread.
void removeTemporaryDragFile(FileSystem &files, Desktop &desktop, const QString &homePath, const QString &fileName);

} // namespace sonorel
