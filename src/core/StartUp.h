// The two phases of the start. `init` prepares folders, settings files, the client's GUID and the strings, and
// restarts the drop agent; `awakeFromNib` fills the window, connects to the selected product and starts discovery.
// Controller's thread; both block. Read next: CarryOver.h, AutomaticConnection.h.
#pragma once

#include "core/CarryOver.h"
#include "core/ClientPaths.h"
#include "core/Platform.h"
#include "core/SystemIntegration.h"
#include "core/state/Session.h"
#include "core/state/Settings.h"
#include "core/state/ShareLayout.h"
#include "core/state/Strings.h"
#include "core/state/View.h"

#include <QString>

#include <functional>

namespace sonorel {

// What a start works on: values that the controller owns.
struct StartUpState {
  Settings &settings;    // `appProperty`
  Settings &preferences; // the per-user "LastPreferences.plist"
  Strings &strings;
  Session &session;
};

class StartUp {
public:
  // What other roles do at their place in the two phases.
  struct Steps {
    // --- init ---
    std::function<void()> createRoles;          // the folder values are final from here on
    std::function<void()> observeNotifications; // the three of the drop agent
    std::function<void()> terminate;            // the failure has been read
    // --- awakeFromNib ---
    std::function<void()> prepareProducts; // "Detected Devices" removed, the lists loaded
    std::function<void()> updateDeviceName;
    std::function<bool()> registerForPower;
    std::function<void()> connectAutomatically;
    std::function<void()> showTrueState; // after a failure: the share may be there or not
    std::function<void()> createDiscovery;
    std::function<void(bool)> showConnecting;
  };

  // All references must outlive the object.
  StartUp(const Platform &platform, const ClientPaths &paths, StartUpState state, SystemIntegration &system,
          View &view, Steps steps);

  // False when it failed: the alert is open, and terminate is called when it is answered.
  [[nodiscard]] bool init();
  void awakeFromNib();
  // At each re-open from the dock. Passes failures on.
  void performFirstLaunchCheck();

  // `checkMarkString`, read once.
  [[nodiscard]] const QString &checkMarkString() const { return m_checkMarkString; }

private:
  void endOtherInstances();
  void createFolders();
  void createFolderIfMissing(const QString &path);
  void loadPreferences();
  void detectLanguage();
  void loadSettings();
  void carryOver();
  void makeGuid();
  void loadStrings();
  void reportInitFailure(const std::exception &exception);
  // False when power notifications are refused: nothing more is begun.
  [[nodiscard]] bool prepareAndConnect();
  // A failure of this step is logged and told.
  void whileAwaking(const std::function<void()> &step);

  const Platform &m_platform;
  const ClientPaths &m_paths;
  StartUpState m_state;
  SystemIntegration &m_system;
  View &m_view;
  Steps m_steps;
  CarryOver m_carryOver;
  PropertyFile m_machinePreferences;
  QString m_checkMarkString;
};

} // namespace sonorel
