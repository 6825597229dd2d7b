// Everything that the controller owns: what all roles share, the start-up, and the roles of the share. Only the
// controller's own files see it. Controller's thread, but for members whose own heads say otherwise.
#pragma once

#include "core/ClientPaths.h"
#include "core/InterfaceController.h"
#include "core/Interruption.h"
#include "core/Platform.h"
#include "core/QuitRequests.h"
#include "core/ShareRoles.h"
#include "core/StartUp.h"
#include "core/SystemIntegration.h"
#include "core/state/MessageLog.h"
#include "core/state/Session.h"
#include "core/state/Settings.h"
#include "core/state/Strings.h"
#include "core/state/TransferBoard.h"

#include <atomic>
#include <memory>

namespace sonorel {

struct Roles {
  Roles(const Platform &given, const ControllerValues &values);

  Platform platform;
  ControllerValues values;
  ClientPaths paths;
  Interruption interruption;
  Settings settings;    // `appProperty`
  Settings preferences; // the per-user "LastPreferences.plist"
  Strings strings;
  Session session;
  TransferBoard board;
  InterfaceController interface;
  MessageLog log;
  SystemIntegration system;
  StartUp startUp;
  QuitRequests quitRequests;
  std::atomic<int> connectsDone{0};  // well or not, the automatic one among them
  std::unique_ptr<ShareRoles> share; // null until the folder values are final

private:
  [[nodiscard]] StartUp::Steps steps();
  [[nodiscard]] QuitRequests::Hooks quitHooks();
  void terminate();
};

} // namespace sonorel
