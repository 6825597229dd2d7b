// Mounts the product's share at its fixed point, tells whether it is mounted, unmounts it and cleans up what an
// earlier mount left behind, with the system's tools as children. Cheap to make: whoever wants a fresh look makes a
// fresh object. Blocks; controller's thread, except isConnected and isVolume, which any thread may ask.
#pragma once

#include "core/state/Settings.h"
#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/Processes.h"

#include <QString>

#include <atomic>
#include <chrono>
#include <functional>
#include <stop_token>

namespace sonorel {

// What every connection works with. All of it must outlive the connections.
struct ConnectionTools {
  FileSystem &files;
  Processes &processes;
  Clock &clock;
  Desktop &desktop;
  const Settings &settings;
  std::function<std::stop_token()> stop;    // the token of the running operation
  std::atomic<bool> &isAuthenticationError; // shared by all connections, false at first
};

class Connection {
public:
  static constexpr std::chrono::milliseconds kWatchdogPeriod{20'000};
  static constexpr std::chrono::milliseconds kPauseAfterUnmount{2'000};
  // For the other tools; none of them takes anywhere near as long on a share that answers.
  static constexpr std::chrono::milliseconds kCleanUpDeadline{8'000};

  // Reads "Shared Folder", "Username" and "Volume".
  explicit Connection(const ConnectionTools &tools);

  // Password and address escaped for the URL. True when the share is or already was mounted.
  [[nodiscard]] bool connectToVaultbox(const QString &password, const QString &ipAddress);
  [[nodiscard]] bool isConnected() const { return isVolume(); }
  // True when unmounted or not mounted.
  bool disconnectFromVaultbox();
  // Of a share that is mounted and not connected: unmounts it by force. Passes failures on.
  void leaveLostVolume();
  // Removes a stale mount point. Passes failures on.
  void volumeClean();
  // The share's path is the root of a mounted volume of type "smbfs".
  [[nodiscard]] bool isVolumeForAutomounted() const;
  // The share's "System" folder exists, on a volume that is mounted at the share's path.
  [[nodiscard]] bool isVolume() const;
  // The watchdog: called when the mount tool was still running at the end of its period.
  void handleConncetionCheckTimerAction();
  // True: the server refused the credentials and the user is to be asked for the password. The inverse of the flag,
  // which a success does not reset; true before any failure.
  [[nodiscard]] bool getConnectionFailureReason() const { return !m_tools.isAuthenticationError; }

private:
  [[nodiscard]] bool mount(const QString &password, const QString &ipAddress);
  void createMountPoint();
  void noteFailure(const ToolResult &result, std::chrono::milliseconds elapsed);
  ToolResult run(const QString &program, const QStringList &arguments);

  ConnectionTools m_tools;
  QString m_sharedFolder;
  QString m_userName;
  QString m_orvDrive; // "Volume" + "Shared Folder": the share's local path
};

} // namespace sonorel
