// Removal of a folder with all below it that follows no link and leaves mounts alone. Any thread; may block.
#pragma once

#include <QByteArray>
#include <QString>

namespace sonorel {

// path is relative to the open folder at (or absolute with AT_FDCWD); shown is for the failure's text. Throws
// Failure: Absent when there is nothing of that name, Other when a mount is in the way; nothing of that mount is
// touched.
void removeTreeAt(int at, const QByteArray &path, const QString &shown);

} // namespace sonorel
