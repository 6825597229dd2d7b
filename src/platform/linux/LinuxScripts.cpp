#include "platform/linux/LinuxScripts.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace sonorel {

namespace {

constexpr auto kEjectDeadline = 20s;
constexpr auto kPauseAfterEject = 2s;
constexpr auto kConvertDeadline = 60s;

QString failureText(const ToolResult &result) {
  const QString output = QString::fromUtf8(result.output).trimmed();
  if (!output.isEmpty()) {
    return output;
  }
  switch (result.ending) {
  case ToolEnding::NotStarted:
    return u"the converter could not be started"_s;
  case ToolEnding::DeadlinePassed:
    return u"the converter did not end"_s;
  case ToolEnding::Stopped:
    return u"the converter was stopped"_s;
  case ToolEnding::Exited:
    break;
  }
  return u"the converter ended with status %1"_s.arg(result.status);
}

} // namespace

LinuxScripts::LinuxScripts(FileSystem &files, Processes &processes, Clock &clock,
                           std::function<std::stop_token()> stop, QString converter)
    : m_files(files), m_processes(processes), m_clock(clock), m_stop(std::move(stop)),
      m_converter(std::move(converter)) {}

void LinuxScripts::ejectDisk(const QString &name) {
  const QString point = u"/Volumes/"_s + name;
  const auto volume = m_files.volume(point);
  if (!volume || volume->mountRoot != point) {
    return;
  }
  const ToolRequest unmount{u"/sbin/umount"_s, {point}, std::nullopt, kEjectDeadline};
  if (succeeded(m_processes.run(unmount, m_stop()))) {
    m_clock.sleep(kPauseAfterEject, m_stop());
  }
}

std::optional<QString> LinuxScripts::convertBookmark(const QString &path, std::stop_token stop) {
  const ToolRequest convert{u"/usr/bin/osascript"_s, {m_converter, path}, std::nullopt, kConvertDeadline};
  const ToolResult result = m_processes.run(convert, std::move(stop));
  if (succeeded(result)) {
    return std::nullopt;
  }
  return failureText(result);
}

} // namespace sonorel
