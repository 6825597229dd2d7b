#include "core/ApplicationEvents.h"

#include "core/state/DockImages.h"
#include "core/state/LogException.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

ApplicationEvents::ApplicationEvents(ConnectFlow &connectFlow, const ConnectParts &parts, Settings &preferences,
                                     Clock &clock, Desktop &desktop, Hooks hooks)
    : m_connectFlow(connectFlow), m_parts(parts), m_preferences(preferences), m_clock(clock), m_desktop(desktop),
      m_hooks(std::move(hooks)) {}

// --- quit ---

TerminateReply ApplicationEvents::applicationShouldTerminate() {
  pause(kPauseAtQuit);
  savePreferences();
  m_parts.strings.reload();
  if (m_connectFlow.isConnected()) {
    if (m_connectFlow.transferRuns()) {
      refuseQuit();
      return TerminateReply::Cancel;
    }
    leaveProduct();
  } else {
    m_parts.interface.setDockIcon(kQuittingImage);
    leaveLostShare();
  }
  m_parts.products.clearDetectedDevices();
  return TerminateReply::Now;
}

void ApplicationEvents::pause(std::chrono::milliseconds duration) {
  m_parts.interface.flush();
  m_clock.sleep(duration, m_hooks.stop());
}

// Read, changed and written whole. A disk that takes nothing keeps nobody from quitting.
void ApplicationEvents::savePreferences() {
  try {
    if (const QString oddity = m_preferences.load(); !oddity.isEmpty()) {
      m_desktop.log(oddity);
    }
    m_preferences.change([this](QVariantMap &values) {
      values.insert(u"Language"_s, m_parts.strings.languageFile());
      values.insert(u"ArtworkOption"_s, 0);
    });
  } catch (const std::exception &e) {
    logException(m_desktop, u"applicationShouldTerminate"_s, e);
  }
}

void ApplicationEvents::refuseQuit() {
  m_parts.interface.alert(m_parts.strings.text(u"ErrorQuit1"_s),
                          withProductName(m_parts.strings.text(u"ErrorQuit2"_s), m_parts.session.deviceName()));
}

void ApplicationEvents::leaveProduct() {
  m_parts.interface.setDockIcon(kQuittingImage);
  pause(kPauseBeforeDisconnect);
  m_hooks.awaitTransfer(); // what a cancelled transfer hands in needs the share
  m_hooks.stopObservingSpaces();
  m_connectFlow.disconnect();
  pause(kPauseAfterDisconnect);
}

void ApplicationEvents::leaveLostShare() {
  try {
    m_connectFlow.leaveLostShare();
  } catch (const std::exception &e) {
    logException(m_desktop, u"applicationShouldTerminate"_s, e);
  }
}

// --- re-open ---

bool ApplicationEvents::applicationShouldHandleReopen(bool hasVisibleWindows) {
  if (!hasVisibleWindows) {
    try {
      m_hooks.performFirstLaunchCheck();
    } catch (const std::exception &e) {
      logException(m_desktop, u"applicationShouldHandleReopen"_s, e);
    }
    reopen();
  }
  return false;
}

void ApplicationEvents::reopen() {
  const bool connected = m_connectFlow.isConnected();
  if (connected && m_connectFlow.transferRuns()) {
    m_parts.interface.selectTab(Tab::Transfer);
  } else {
    m_parts.interface.selectTab(Tab::About);
    m_parts.interface.setDockIcon(connected ? kConnectImage : kDisconnectImage);
  }
  m_parts.interface.windowFrontCentre();
  m_hooks.killTrackChuteAndLaunch();
}

void ApplicationEvents::windowWillClose() {
  m_parts.interface.windowWillClose();
}

} // namespace sonorel
