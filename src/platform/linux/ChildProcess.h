// One child process from its start to its end: arguments by position, no shell, no inherited descriptors, output in
// one pipe. It ends at once, with all that it started, when its deadline passes or the stop token is set. Any thread;
// runChild blocks.
#pragma once

#include "platform/Processes.h"

#include <QList>

#include <sys/types.h>

#include <mutex>
#include <vector>

namespace sonorel {

struct HostCommand {
  QByteArray program; // absolute host path
  QList<QByteArray> arguments;
  std::optional<QByteArray> input; // none: nothing to read
  QList<QByteArray> environment;   // "NAME=value", beside the client's own
  int passedFolder = -1;           // an open folder that the child finds as descriptor kPassedFolder
};

inline constexpr int kPassedFolder = 3;
inline constexpr qsizetype kOutputLimit = 64 * 1024;

// deadline 0: none. The child's messages are in English (LC_ALL=C).
[[nodiscard]] ToolResult runChild(const HostCommand &command, std::chrono::milliseconds deadline,
                                  std::stop_token stop);
// Children that go their own way. Their ends are noticed when the next one starts and when the object ends. Any
// thread.
class DetachedChildren {
public:
  DetachedChildren() = default;
  DetachedChildren(const DetachedChildren &) = delete;
  DetachedChildren &operator=(const DetachedChildren &) = delete;
  ~DetachedChildren() { collect(); }

  // In a session of its own, with the user's own language; false when it could not be started.
  [[nodiscard]] bool start(const HostCommand &command);
  // Those that have ended meanwhile leave the process table.
  void collect();

private:
  std::mutex m_mutex; // guards m_running
  std::vector<pid_t> m_running;
};

} // namespace sonorel
