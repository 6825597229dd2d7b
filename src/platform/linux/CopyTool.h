// "/bin/cp -p" on Linux. A copy onto a volume counts only when that very mount was there from beginning to end; what
// a network file system cannot keep (owner, mode, times) is set as far as the system compares it; and a copy is never
// read-only, or it could not be replaced later. Blocks; any thread.
#pragma once

#include "platform/Processes.h"
#include "platform/linux/Volumes.h"

namespace sonorel {

class CopyTool {
public:
  // volumes must outlive the object; program is the host's.
  explicit CopyTool(Volumes &volumes, QByteArray program = "/bin/cp")
      : m_volumes(volumes), m_program(std::move(program)) {}

  // "-p", from, to
  [[nodiscard]] ToolResult copy(const ToolRequest &request, std::stop_token stop);

private:
  Volumes &m_volumes;
  const QByteArray m_program;
};

// True when the tool's messages speak of nothing but attributes that could not be kept: the bytes are all there.
[[nodiscard]] bool complainsOfAttributesOnly(const QByteArray &output);

} // namespace sonorel
