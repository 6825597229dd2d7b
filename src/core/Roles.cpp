#include "core/Roles.h"

#include "core/state/LogException.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

Roles::Roles(const Platform &given, const ControllerValues &givenValues)
    : platform(given), values(givenValues), paths(values.homePath, values.bundlePath),
      settings(platform.files, platform.propertyLists, paths.PFPath),
      preferences(platform.files, platform.propertyLists, paths.preferences),
      strings(platform.files, platform.propertyLists, paths.resourceFilePath),
      interface(platform.loop, platform.userInterface, board, strings),
      log([this] { interface.fillMessageLog([this] { return log.viewText(); }); }),
      system(platform.runningApplications, platform.processes, platform.scripts, platform.desktop, platform.loop,
             settings, paths),
      startUp(platform, paths, {settings, preferences, strings, session}, system, interface, steps()),
      quitRequests(platform.loop, interruption, quitHooks()) {}

StartUp::Steps Roles::steps() {
  StartUp::Steps steps;
  steps.createRoles = [this] { share = std::make_unique<ShareRoles>(*this); };
  steps.observeNotifications = [this] { share->observeNotifications(); };
  steps.terminate = [this] { interface.quit(kNotStarted); };
  steps.prepareProducts = [this] { share->prepareProducts(); };
  steps.updateDeviceName = [this] { share->texts.updateDeviceName(); };
  steps.registerForPower = [this] { return share->registerForPower(); };
  steps.connectAutomatically = [this] { share->automaticConnection.run(); };
  steps.showTrueState = [this] { share->connectFlow.showTrueState(); };
  steps.createDiscovery = [this] { share->discovery.init(); };
  steps.showConnecting = [this](bool shown) { interface.showConnecting(shown); };
  return steps;
}

QuitRequests::Hooks Roles::quitHooks() {
  QuitRequests::Hooks hooks;
  hooks.applicationShouldTerminate = [this] {
    return !share || share->events.applicationShouldTerminate() == TerminateReply::Now;
  };
  hooks.cancelTransfer = [this](bool hurry) {
    if (share) {
      share->connectFlow.onCancel();
      if (hurry) {
        share->forcedEnd.request_stop();
      }
    }
  };
  hooks.joinTransfer = [this] {
    if (share) {
      share->awaitTransfer();
    }
  };
  hooks.terminate = [this] { terminate(); };
  hooks.failed = [this](const std::exception &e) {
    logException(platform.desktop, u"applicationShouldTerminate"_s, e);
  };
  return hooks;
}

// After an ordinary quit the share has been left already; one whose unmount was cut short leaves it now.
void Roles::terminate() {
  if (share) {
    share->discovery.stop(); // "Detected Devices" stays removed
  }
  try {
    if (share && !share->driver.isAtWork()) {
      share->playlists.keepRecords(); // first: it needs nothing of the product
    }
  } catch (const std::exception &e) {
    logException(platform.desktop, u"applicationShouldTerminate"_s, e);
  }
  try {
    if (share && share->isConnected()) {
      share->connectFlow.disconnect();
    }
  } catch (const std::exception &e) {
    logException(platform.desktop, u"applicationShouldTerminate"_s, e);
  }
  interface.closeQuestions();
  interface.quit(kEnded);
}

} // namespace sonorel
