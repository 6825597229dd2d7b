#include "platform/linux/CopyTool.h"

#include "platform/Failure.h"
#include "platform/linux/ChildProcess.h"
#include "platform/linux/HeldPath.h"
#include "platform/linux/HostFile.h"

#include <fcntl.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

ToolResult refused(const QByteArray &text) {
  return {ToolEnding::Exited, 1, text};
}

// The times of the source, and then what the system asks of two files that are the same: equal sizes, and a target
// that is not newer and at most one second older.
bool repair(const Place &source, const Place &target) {
  const auto from = statOf(source, Links::Follow, QString());
  auto to = statOf(target, Links::Follow, QString());
  if (!from || !to || !S_ISREG(from->st_mode) || !S_ISREG(to->st_mode) || from->st_size != to->st_size) {
    return false;
  }
  const timespec times[2] = {from->st_atim, from->st_mtim};
  ::utimensat(target.at(), target.path.constData(), times, 0);
  to = statOf(target, Links::Follow, QString());
  const auto older = to ? from->st_mtim.tv_sec - to->st_mtim.tv_sec : -1;
  return older == 0 || older == 1;
}

void makeWritable(const Place &target) {
  const auto facts = statOf(target, Links::Follow, QString());
  if (facts && S_ISREG(facts->st_mode) && (facts->st_mode & S_IWUSR) == 0) {
    ::fchmodat(target.at(), target.path.constData(), (facts->st_mode & 07777) | S_IRUSR | S_IWUSR, 0);
  }
}

} // namespace

bool complainsOfAttributesOnly(const QByteArray &output) {
  static constexpr const char *kStarts[] = {
      "cp: preserving times for ",
      "cp: failed to preserve times for ",
      "cp: preserving permissions for ",
      "cp: failed to preserve permissions for ",
      "cp: failed to preserve ownership for ",
      "cp: setting permissions for ",
      "cp: clearing permissions for ",
  };
  bool hasComplaint = false;
  for (const QByteArray &line : output.split('\n')) {
    if (line.isEmpty()) {
      continue;
    }
    const auto starts = [&line](const char *start) { return line.startsWith(start); };
    if (std::none_of(std::begin(kStarts), std::end(kStarts), starts)) {
      return false;
    }
    hasComplaint = true;
  }
  return hasComplaint;
}

ToolResult CopyTool::copy(const ToolRequest &request, std::stop_token stop) {
  const QStringList &arguments = request.arguments;
  if (arguments.size() != 3 || arguments.at(0) != u"-p"_s) {
    return {ToolEnding::Exited, 64, "usage: cp -p from to\n"};
  }
  try {
    const auto before = m_volumes.volumeOf(arguments.at(2));
    const Place source = m_volumes.place(arguments.at(1), Access::Read);
    const Place target = m_volumes.place(arguments.at(2), Access::Write);
    HostCommand command;
    command.program = m_program;
    const auto from = m_volumes.map().host(arguments.at(1));
    command.arguments = {"-pT", "--", from->toUtf8(), heldPath(target)}; // T: into no folder of that name
    command.passedFolder = target.root.get();
    ToolResult result = runChild(command, request.deadline, std::move(stop));
    if (result.ending != ToolEnding::Exited) {
      return result;
    }
    if (result.status != 0 && complainsOfAttributesOnly(result.output) && repair(source, target)) {
      result.status = 0;
    }
    if (result.status == 0 && target.isOnVolume) {
      makeWritable(target);
      const auto after = m_volumes.volumeOf(arguments.at(2));
      if (!before || !after || before->mountId != after->mountId) {
        return refused("cp: the volume went away during the copy\n");
      }
    }
    return result;
  } catch (const Failure &) {
    return refused("cp: the source or the target cannot be reached\n");
  }
}

} // namespace sonorel
