// The path under which a child finds a place on a volume: below the folder that is passed to it as a descriptor, so
// that nothing lands in what the volume covered when the volume goes away. Any thread.
#pragma once

#include "platform/linux/ChildProcess.h"
#include "platform/linux/Volumes.h"

namespace sonorel {

// The child gets place.root as its passedFolder.
[[nodiscard]] inline QByteArray heldPath(const Place &place) {
  return place.isOnVolume ? "/proc/self/fd/" + QByteArray::number(kPassedFolder) + '/' + place.path : place.path;
}

} // namespace sonorel
