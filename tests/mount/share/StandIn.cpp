#include "mount/share/StandIn.h"

#include "platform/linux/ChildProcess.h"

#include <stdexcept>

namespace sonorel::test {

using namespace std::chrono_literals;

StandIn::StandIn(std::filesystem::path folder, const std::vector<std::string> &options)
    : m_folder(std::move(folder)) {
  m_port = tell("start", options);
}

StandIn::~StandIn() {
  try {
    tell("stop");
  } catch (const std::exception &e) {
    std::fputs(e.what(), stderr);
  }
}

std::string StandIn::tell(const std::string &command, const std::vector<std::string> &arguments) const {
  QList<QByteArray> words{QByteArray::fromStdString(command), QByteArray::fromStdString(m_folder.string())};
  for (const std::string &argument : arguments) {
    words.append(QByteArray::fromStdString(argument));
  }
  const ToolResult result = runChild({SONOREL_STANDIN, words, {}, {}, -1}, 60s, {});
  if (!succeeded(result)) {
    throw std::runtime_error("standin " + command + ": " + result.output.toStdString());
  }
  return result.output.trimmed().toStdString();
}

} // namespace sonorel::test
