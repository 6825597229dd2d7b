// Working models of the system's tools on the fake file system: /bin/cp -p, /bin/rm, /bin/rmdir, /sbin/mount,
// /sbin/umount, and scripts as the test defines them. Every other program ends with status 0 and no output. Any
// thread.
#pragma once

#include "platform/Processes.h"
#include "support/FakeFileSystem.h"

#include <deque>
#include <functional>
#include <mutex>

namespace sonorel::test {

struct MountAnswer {
  int status = 0;
  QByteArray output;
  bool hang = false; // until the deadline or the stop token ends it
};

class FakeProcesses : public Processes {
public:
  explicit FakeProcesses(FakeFileSystem &files) : m_files(files) {}

  // The answers of /sbin/mount in turn; when there are none left it mounts.
  std::deque<MountAnswer> mountAnswers;
  // Stands in for the models when it answers.
  std::function<std::optional<ToolResult>(const ToolRequest &)> onRun;
  // What /usr/bin/osascript does; killed: it does not come to its end.
  std::function<ToolResult(const ToolRequest &, bool killed)> onScript;
  // Called when a tool hangs, with its deadline: a place to turn the clock or to request the stop.
  std::function<void(std::chrono::milliseconds)> onHang;
  bool detachedStarts = true;

  QList<ToolRequest> requests;
  QStringList detached; // program and arguments, joined by blanks

  // The n-th run from now, counted from 1, and as many as wanted after it end like this instead; a copy leaves half
  // of its bytes behind, a script what it leaves.
  void failAt(int run, const ToolResult &result, int times = 1);
  [[nodiscard]] int runs() const;
  [[nodiscard]] QStringList programs() const; // of the requests

  ToolResult run(const ToolRequest &request, std::stop_token stop) override;
  bool startDetached(const QString &program, const QStringList &arguments) override;

private:
  ToolResult model(const ToolRequest &request, const std::stop_token &stop);
  ToolResult copy(const QStringList &arguments);
  ToolResult remove(const QStringList &arguments);
  ToolResult removeFolder(const QStringList &arguments);
  ToolResult mount(const ToolRequest &request, const std::stop_token &stop);
  ToolResult unmount(const QStringList &arguments);
  void leaveHalf(const ToolRequest &request);

  FakeFileSystem &m_files;
  mutable std::mutex m_mutex; // guards the lists above and everything below
  int m_runs = 0;
  int m_failAt = 0;
  int m_failTimes = 0;
  ToolResult m_failure;
};

// A tool that ended by itself.
[[nodiscard]] ToolResult exited(int status, const QByteArray &output = {});

} // namespace sonorel::test
