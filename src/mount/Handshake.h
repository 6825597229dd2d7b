// The program in two processes: the one that was started waits for a word of the other, prints it and ends with its
// status; the other goes on serving the mount. As long as nothing is mounted the second dies with the first and stays
// in its process group, so that who ends the program while it still connects ends all of it. runInBackground is to be
// called before there is another thread: a second process has only the one that made it.
#pragma once

#include "mount/Outcome.h"
#include "platform/linux/FileDescriptor.h"

#include <functional>

namespace sonorel {

class Handshake {
public:
  explicit Handshake(FileDescriptor toParent) : m_toParent(std::move(toParent)) {}

  // Tells the waiting process how it ends. False when that one is gone.
  bool tell(const Outcome &outcome);
  // From here on the process belongs to nobody: a session of its own.
  static void becomeIndependent();

private:
  FileDescriptor m_toParent;
};

// Starts child in a second process and returns its outcome as soon as it is told. The child never returns.
[[nodiscard]] Outcome runInBackground(const std::function<void(Handshake &)> &child);

} // namespace sonorel
