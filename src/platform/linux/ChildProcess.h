// One child process from its start to its end: arguments by position, no shell, no inherited descriptors, output in
// one pipe. It ends at once, with all that it started, when its deadline passes or the stop token is set. Any thread;
// runChild blocks.
#pragma once

#include "platform/Processes.h"

#include <QList>

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
// In a session of its own, with the user's own language; its process number, or 0 when it could not be started. The
// caller waits for it some time.
[[nodiscard]] qint64 startChild(const HostCommand &command);

} // namespace sonorel
