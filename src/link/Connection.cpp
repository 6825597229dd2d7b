#include "link/Connection.h"

#include "core/state/ShareLayout.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

const auto kMountTool = u"/sbin/mount"_s;
const auto kUnmountTool = u"/sbin/umount"_s;
const auto kRemoveTool = u"/bin/rm"_s;
const auto kRemoveFolderTool = u"/bin/rmdir"_s;
const auto kShareType = u"smbfs"_s;
const auto kMarkerFile = u"/.autodiskmounted"_s;
const auto kProbeFolder = u"/System"_s;

} // namespace

Connection::Connection(const ConnectionTools &tools)
    : m_tools(tools), m_sharedFolder(tools.settings.text(u"Shared Folder"_s)),
      m_userName(tools.settings.text(u"Username"_s)), m_orvDrive(tools.settings.text(u"Volume"_s) + m_sharedFolder) {}

bool Connection::connectToVaultbox(const QString &password, const QString &ipAddress) {
  try {
    // First of all, so that a connect on a mounted share mounts it afresh.
    volumeClean();
    return isConnected() || mount(password, ipAddress);
  } catch (const std::exception &e) {
    m_tools.desktop.log(u"<Connection><connectToVaultbox> "_s + reasonOf(e));
    return false;
  }
}

bool Connection::mount(const QString &password, const QString &ipAddress) {
  createMountPoint();
  ToolRequest request;
  request.program = kMountTool;
  const QString url = u"//"_s + m_userName + u':' + password + u'@' + ipAddress + u'/' + m_sharedFolder;
  request.arguments = {u"-t"_s, kShareType, url, kMountPoint.toString() + u'/'};
  request.deadline = kWatchdogPeriod;
  const auto started = m_tools.clock.monotonicNow();
  const ToolResult result = m_tools.processes.run(request, m_tools.stop());
  const auto elapsed = m_tools.clock.monotonicNow() - started;
  if (result.ending == ToolEnding::DeadlinePassed) {
    handleConncetionCheckTimerAction();
  }
  if (succeeded(result)) {
    return true;
  }
  noteFailure(result, elapsed);
  return false;
}

// A point that is already there or cannot be made is the mount tool's to judge.
void Connection::createMountPoint() {
  try {
    m_tools.files.createFolder(kMountPoint.toString(), kFolderMode);
  } catch (const Failure &e) {
    if (e.kind() != FailureKind::Exists) {
      m_tools.desktop.log(kMountPoint.toString() + u" could not be created: "_s + e.reason());
    }
  }
}

// A tool that was ended says nothing about the password, whatever it has printed before.
void Connection::noteFailure(const ToolResult &result, std::chrono::milliseconds elapsed) {
  m_tools.isAuthenticationError = true;
  if (result.ending == ToolEnding::NotStarted) {
    m_tools.desktop.log(kMountTool + u" could not be started"_s);
  }
  if (result.ending == ToolEnding::Exited && elapsed < kWatchdogPeriod &&
      (result.output.contains("Authentication") || result.output.contains("Permission"))) {
    m_tools.isAuthenticationError = false;
  }
}

void Connection::handleConncetionCheckTimerAction() {
  m_tools.desktop.log(kMountTool + u" did not end within 20 seconds and was terminated"_s);
}

bool Connection::disconnectFromVaultbox() {
  try {
    bool success = true;
    if (isConnected()) {
      success = succeeded(run(kUnmountTool, {u"-f"_s, m_orvDrive}));
      m_tools.clock.sleep(kPauseAfterUnmount, m_tools.stop());
    }
    if (success) {
      volumeClean();
    }
    return success;
  } catch (const std::exception &e) {
    m_tools.desktop.log(u"<Connection><disconnectFromVaultbox> "_s + reasonOf(e));
    return false;
  }
}

void Connection::leaveLostVolume() {
  if (isVolumeForAutomounted()) {
    run(kUnmountTool, {u"-f"_s, m_orvDrive});
    volumeClean();
    if (isVolumeForAutomounted()) {
      m_tools.desktop.log(u"The lost share could not be unmounted."_s);
    }
  }
}

void Connection::volumeClean() {
  if (isVolumeForAutomounted()) {
    run(kUnmountTool, {m_orvDrive});
  } else if (!m_orvDrive.isEmpty() && isFolder(m_tools.files, m_orvDrive)) {
    if (succeeded(run(kRemoveTool, {m_orvDrive + kMarkerFile}))) {
      run(kRemoveFolderTool, {m_orvDrive});
    }
  }
  run(kRemoveFolderTool, {kMountPoint.toString()});
}

bool Connection::isVolumeForAutomounted() const {
  const auto volume = m_tools.files.volume(m_orvDrive);
  return volume && !m_orvDrive.isEmpty() && volume->mountRoot == m_orvDrive && volume->typeName == kShareType;
}

// The volume is asked first: neither a folder that lies at the point of a share that is gone nor one that the system
// remembers must pass for it.
bool Connection::isVolume() const {
  const auto volume = m_tools.files.volume(m_orvDrive);
  return volume && !m_orvDrive.isEmpty() && volume->mountRoot == m_orvDrive && volume->answers &&
         isFolder(m_tools.files, m_orvDrive + kProbeFolder);
}

ToolResult Connection::run(const QString &program, const QStringList &arguments) {
  return m_tools.processes.run({program, arguments, std::nullopt, kCleanUpDeadline}, m_tools.stop());
}

} // namespace sonorel
