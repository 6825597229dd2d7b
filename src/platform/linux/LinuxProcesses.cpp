#include "platform/linux/LinuxProcesses.h"

#include "platform/ApplicationPaths.h"
#include "platform/Failure.h"
#include "platform/linux/HeldPath.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr QStringView kMountMark = u".autodiskmounted";

ToolResult ended(int status, const QByteArray &text) {
  return {ToolEnding::Exited, status, text};
}

// An argument that is a path of the system becomes its host path; anything else stays as it is.
QByteArray hostArgument(const PathMap &map, const QString &argument) {
  const auto host = map.host(argument);
  return (host ? *host : argument).toUtf8();
}

} // namespace

LinuxProcesses::LinuxProcesses(Roots roots, ProcessOptions options, std::function<void(const QString &)> log)
    : m_volumes(std::move(roots)), m_mountTool(m_volumes, options.embeddedProduct, log), m_copyTool(m_volumes),
      m_musicFolder(options.musicFolder), m_artworkTemporaryName(options.artworkTemporaryName),
      m_log(std::move(log)) {}

void LinuxProcesses::note(const QString &line) const {
  if (m_log) {
    m_log(line);
  }
}

ToolResult LinuxProcesses::run(const ToolRequest &request, std::stop_token stop) {
  if (stop.stop_requested()) {
    return {ToolEnding::Stopped, -1, {}};
  }
  m_detached.collect();
  try {
    return runTool(request, std::move(stop));
  } catch (const Failure &e) {
    note(e.reason());
    return ended(1, "the volumes cannot be told\n");
  }
}

ToolResult LinuxProcesses::runTool(const ToolRequest &request, std::stop_token stop) {
  const QString &program = request.program;
  if (program == u"/sbin/mount"_s) {
    return m_mountTool.mount(request, std::move(stop));
  }
  if (program == u"/sbin/umount"_s) {
    return m_mountTool.unmount(request, std::move(stop));
  }
  if (program == u"/bin/cp"_s) {
    return m_copyTool.copy(request, std::move(stop));
  }
  if (program == u"/bin/rm"_s || program == u"/bin/rmdir"_s) {
    return runRemoval(request, program.toUtf8(), std::move(stop));
  }
  if (program == u"/usr/bin/osascript"_s) {
    return runScript(request, std::move(stop));
  }
  if (program.startsWith(kAppDataPath.toString() + u'/')) {
    return runInstalled(request, std::move(stop));
  }
  note(u"No such tool: "_s + program);
  return {};
}

ToolResult LinuxProcesses::runRemoval(const ToolRequest &request, const QByteArray &program, std::stop_token stop) {
  HostCommand command;
  command.program = program;
  for (const QString &argument : request.arguments) {
    const auto clean = PathMap::cleaned(argument);
    if (!clean) {
      if (!argument.startsWith(u'-')) {
        return ended(1, "not an absolute path\n");
      }
      command.arguments.append(argument.toUtf8());
      continue;
    }
    const QString name = PathMap::volumeName(*clean);
    const QString below = PathMap::belowVolume(*clean);
    const bool isMounted = !name.isEmpty() && m_volumes.mounted(name);
    // The embedded product's point is a link, which must not be taken for a file.
    if (below.isEmpty() && isMounted) {
      return ended(1, "the volume is in use\n");
    }
    // What lies below a point that is not mounted is a person's own, but for the mark of an old mount.
    if (!below.isEmpty() && !isMounted && below != kMountMark) {
      return ended(1, "the volume is not mounted\n");
    }
    command.arguments.append(hostArgument(m_volumes.map(), *clean));
  }
  return runChild(command, request.deadline, std::move(stop));
}

// script, track, and texts that are no paths
ToolResult LinuxProcesses::runScript(const ToolRequest &request, std::stop_token stop) {
  const QStringList &arguments = request.arguments;
  if (arguments.size() < 2) {
    return ended(64, "usage: osascript script track ...\n");
  }
  if (!m_volumes.volumeOf(m_musicFolder)) {
    return ended(1, "the share is not mounted\n");
  }
  const PathMap &map = m_volumes.map();
  HostCommand command;
  command.program = hostArgument(map, arguments.at(0));
  command.arguments.append(hostArgument(map, arguments.at(1)));
  for (const QString &text : arguments.mid(2)) {
    command.arguments.append(text.toUtf8());
  }
  const Place musicFolder = m_volumes.place(m_musicFolder, Access::Write);
  command.passedFolder = musicFolder.root.get();
  command.environment.append("SONOREL_MUSIC_FOLDER=" + heldPath(musicFolder) + '/');
  command.environment.append("SONOREL_TEMPORARY_NAME=" + m_artworkTemporaryName.toUtf8());
  return runChild(command, request.deadline, std::move(stop));
}

ToolResult LinuxProcesses::runInstalled(const ToolRequest &request, std::stop_token stop) {
  const PathMap &map = m_volumes.map();
  HostCommand command;
  command.program = hostArgument(map, request.program);
  for (const QString &argument : request.arguments) {
    command.arguments.append(hostArgument(map, argument));
  }
  command.input = request.input;
  return runChild(command, request.deadline, std::move(stop));
}

bool LinuxProcesses::startDetached(const QString &program, const QStringList &arguments) {
  const auto host = m_volumes.map().host(program);
  if (!host) {
    return false;
  }
  HostCommand command;
  command.program = host->toUtf8();
  for (const QString &argument : arguments) {
    command.arguments.append(argument.toUtf8());
  }
  return m_detached.start(command);
}

} // namespace sonorel
