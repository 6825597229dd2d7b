// The mount itself: the kernel's end, and the loop that hands its questions to ShareFiles. One
// thread, but for exit.
#pragma once

#include "mount/Outcome.h"
#include "mount/WriteBehind.h"

#include <functional>
#include <string>

namespace sonorel {

class FuseLoop {
public:
  // files must outlive the object. source is how the mount table names what is mounted. served runs once, on the
  // thread of run(), as soon as the kernel has had its first answer; when it returns false the mount is given up.
  FuseLoop(ShareFiles &files, const std::string &source, std::function<bool()> served);
  ~FuseLoop();
  FuseLoop(const FuseLoop &) = delete;
  FuseLoop &operator=(const FuseLoop &) = delete;

  [[nodiscard]] Outcome mount(const std::string &point);
  // Until the share is unmounted or exit was called.
  void run();
  // From any thread.
  void exit();

  // --- for the kernel's callbacks only ---
  ShareFiles &files;
  WriteBehind writes;
  void noteServed();

private:
  fuse *m_fuse = nullptr;
  bool m_isMounted = false;
  pthread_t m_thread = {};
  std::function<bool()> m_served;
};

} // namespace sonorel
