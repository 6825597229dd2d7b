// Folders of our own on the host, with all levels above them. Any thread.
#pragma once

#include <QString>

#include <sys/types.h>

namespace sonorel {

// The levels that are new get the mode exactly, whatever the umask; the others stay as they are. Throws Failure.
void makeHostFolders(const QString &path, mode_t mode);

} // namespace sonorel
