// Runs the system's tools by their own absolute paths ("/sbin/mount", "/bin/cp"); the realisation knows which
// host program stands behind each and which arguments are paths. Arguments are passed by position, never
// through a shell, and never appear in a log line or an exception. May block; any thread.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>
#include <stop_token>

namespace sonorel {

struct ToolRequest {
  QString program;
  QStringList arguments;
  std::optional<QByteArray> input;       // none: no standard input
  std::chrono::milliseconds deadline{0}; // 0: none; when it passes the tool is killed
};

enum class ToolEnding { Exited, DeadlinePassed, Stopped, NotStarted };

struct ToolResult {
  ToolEnding ending = ToolEnding::NotStarted;
  int status = -1;   // exit status; a tool killed by a signal has 128 + signal
  QByteArray output; // standard output and standard error in one pipe, the first 64 KiB
};

class Processes {
public:
  virtual ~Processes() = default;
  [[nodiscard]] virtual ToolResult run(const ToolRequest &request, std::stop_token stop) = 0;
  // Started and left alone; false when it could not be started.
  virtual bool startDetached(const QString &program, const QStringList &arguments) = 0;
};

[[nodiscard]] inline bool succeeded(const ToolResult &result) {
  return result.ending == ToolEnding::Exited && result.status == 0;
}

} // namespace sonorel
