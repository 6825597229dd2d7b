// Removals whose failure ends nothing: it is logged, always in the same words. Worker thread.
#pragma once

#include "platform/Desktop.h"
#include "platform/Failure.h"
#include "platform/FileSystem.h"

#include <QString>

namespace sonorel {

void logNotRemoved(Desktop &desktop, const QString &path, const Failure &failure);
// One that is not there is logged as well.
void removeOrLog(FileSystem &files, Desktop &desktop, const QString &path);
// Copies of dropped addresses that the drag itself has left behind: removes the one of that name from "/private/tmp",
// or else from the user's folder of temporary items. homePath has no "/" at its end.
void removeTemporaryDragFile(FileSystem &files, Desktop &desktop, const QString &homePath, const QString &fileName);

} // namespace sonorel
