// The system's tools on Linux: which host program stands behind each and which of its arguments are paths. The
// embedded product is mounted without any program. Arguments never stand in a log line. Blocks; any thread.
// See MountTool, CopyTool and ChildProcess.
#pragma once

#include "platform/Processes.h"
#include "platform/ShareNames.h"
#include "platform/linux/ChildProcess.h"
#include "platform/linux/CopyTool.h"
#include "platform/linux/MountTool.h"

#include <functional>

namespace sonorel {

struct ProcessOptions {
  QString musicFolder = kMusicFolderLiteral.toString(); // for the scripts, a path of the system
  QString embeddedProduct = kAuracore5.toString();      // the name of a new embedded product
  QString artworkTemporaryName = {};                    // for the scripts; empty: a random one
};

class LinuxProcesses final : public Processes {
public:
  // log may be called from any thread.
  explicit LinuxProcesses(Roots roots, ProcessOptions options = {}, std::function<void(const QString &)> log = {});

  ToolResult run(const ToolRequest &request, std::stop_token stop) override;
  bool startDetached(const QString &program, const QStringList &arguments) override;

private:
  [[nodiscard]] ToolResult runTool(const ToolRequest &request, std::stop_token stop);
  [[nodiscard]] ToolResult runRemoval(const ToolRequest &request, const QByteArray &program, std::stop_token stop);
  [[nodiscard]] ToolResult runScript(const ToolRequest &request, std::stop_token stop);
  [[nodiscard]] ToolResult runInstalled(const ToolRequest &request, std::stop_token stop);
  void note(const QString &line) const;

  Volumes m_volumes;
  MountTool m_mountTool;
  CopyTool m_copyTool;
  const QString m_musicFolder;
  const QString m_artworkTemporaryName;
  const std::function<void(const QString &)> m_log;
  DetachedChildren m_detached;
};

} // namespace sonorel
