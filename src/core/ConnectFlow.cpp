#include "core/ConnectFlow.h"

#include "core/EscapeSequences.h"
#include "core/state/DockImages.h"
#include "core/state/LogException.h"
#include "platform/Failure.h"

#include <QScopeGuard>

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

ConnectFlow::ConnectFlow(const ConnectionTools &tools, const ConnectParts &parts, QString mainDictPath, Hooks hooks)
    : m_tools(tools), m_parts(parts), m_mainDictPath(std::move(mainDictPath)), m_hooks(std::move(hooks)) {}

// --- Connect ---

void ConnectFlow::onConnect() {
  if (m_hooks.workerRuns()) {
    m_tools.desktop.log(u"Connect has no effect while a transfer runs"_s);
    return;
  }
  m_parts.interface.showPasswordPanel(false);
  m_parts.interface.showConnecting(true);
  try {
    connect();
    removeMainDictionary();
  } catch (const std::exception &e) {
    logException(m_tools.desktop, u"onConnect"_s, e);
    m_parts.texts.showErrorConnecting();
    showTrueState();
  }
  m_parts.interface.showConnecting(false);
}

void ConnectFlow::connect() {
  m_parts.strings.reload();
  m_parts.board.resetToIdle();
  m_parts.board.isCancel = false;
  m_parts.interface.transferStateChanged();
  m_hooks.unmountVBShareUsingApplescript();
  const QString ipAddFromUI = m_parts.session.IPAddressString();
  const QString passwordFromUI = m_parts.session.PasswordString();
  if (ipAddFromUI.isEmpty() || passwordFromUI.isEmpty()) {
    m_parts.interface.alert(m_parts.strings.text(u"AttentionText"_s), m_parts.strings.text(u"ErrorIp"_s));
    showTrueState();
    return;
  }
  m_hooks.wakeupOnLanAProduct(ipAddFromUI);
  if (connectToVaultbox(passwordFromUI, ipAddFromUI)) {
    if (!m_parts.board.manualSleepWasConnected) {
      m_parts.log.clear();
    }
    m_parts.interface.setConnected(true);
    m_parts.afterConnection.byUser(undoEscapeSequences(replaceWithEscapeSequencesInString(ipAddFromUI)));
  } else {
    showFailure();
  }
}

bool ConnectFlow::connectToVaultbox(const QString &password, const QString &ipAddress) {
  const auto ended = qScopeGuard([this] { m_hooks.attemptsEnded(); });
  if (!m_checkConnection) {
    createConnection();
  }
  const QString escapedPassword = replaceWithEscapeSequencesInString(password);
  const QString escapedAddress = replaceWithEscapeSequencesInString(ipAddress);
  for (int attempt = 1; attempt <= kAttempts; ++attempt) {
    if (attempt > 1 && !m_tools.clock.sleep(kPauseBetweenAttempts, m_tools.stop())) {
      return false;
    }
    if (m_checkConnection->connectToVaultbox(escapedPassword, escapedAddress)) {
      return true;
    }
  }
  return false;
}

void ConnectFlow::connectedAutomatically() {
  m_parts.interface.setConnected(true);
  m_parts.afterConnection.automatic();
}

void ConnectFlow::showFailure() {
  m_parts.interface.setConnected(false);
  m_parts.interface.setDockIcon(kDisconnectImage);
  if (m_tools.stop().stop_requested()) {
    return; // given up, not failed: whoever asked for it goes on at once
  }
  m_parts.interface.windowFrontCentre();
  m_parts.interface.selectTab(Tab::Connection);
  if (getConnectionFailureReason()) {
    m_parts.interface.showPasswordPanel(true);
  } else {
    m_parts.texts.showErrorConnect();
  }
}

bool ConnectFlow::getConnectionFailureReason() {
  if (!m_checkConnection) {
    createConnection();
  }
  return m_checkConnection->getConnectionFailureReason();
}

void ConnectFlow::showTrueState() {
  m_parts.interface.setDockIcon(isConnected() ? kConnectImage : kDisconnectImage);
}

// Even after a success: the next transfer rebuilds it from what the server holds by then.
void ConnectFlow::removeMainDictionary() {
  try {
    if (m_tools.files.presence(m_mainDictPath) == Presence::Present) {
      m_tools.files.removeFile(m_mainDictPath);
    }
  } catch (const std::exception &e) {
    logException(m_tools.desktop, u"onConnect"_s, e);
  }
}

void ConnectFlow::createConnection() {
  m_checkConnection = std::make_unique<Connection>(m_tools);
}

bool ConnectFlow::isConnected() const {
  const bool connected = Connection(m_tools).isConnected();
  m_parts.interface.setConnected(connected);
  return connected;
}

bool ConnectFlow::transferRuns() const {
  return m_parts.board.isCarrying() && !m_parts.board.isCancel;
}

// --- Disconnect ---

void ConnectFlow::onDisconnect() {
  m_parts.interface.showConnectionIndicator(true);
  try {
    m_parts.strings.reload();
    if (!isConnected()) {
      if (!transferRuns() || m_parts.board.manualSleepWasConnected) {
        leaveLostShare();
      }
      m_parts.interface.setProgressBar(0);
      m_parts.interface.setDockIcon(kDisconnectImage);
    } else if (m_parts.board.manualSleepWasConnected) {
      // It waits for nothing more; the log of a transfer that it breaks off is shown again after the wake.
      const bool resetWindow = m_parts.board.transferComplete() || m_parts.board.isCancel;
      disconnectAndShow();
      if (resetWindow) {
        m_parts.interface.setProgressBar(0);
        m_parts.log.clear();
      }
    } else if (transferRuns()) {
      refuseDisconnect();
    } else {
      m_hooks.awaitTransfer();
      disconnectAndShow();
      m_parts.interface.setProgressBar(0);
      if (!m_hooks.takeToldOfWaitingDrop()) {
        m_parts.log.clear();
      }
    }
  } catch (const std::exception &e) {
    logException(m_tools.desktop, u"onDisconnect"_s, e);
    showTrueState();
  }
  m_parts.products.reloadSelectedProducts();
  m_parts.interface.showConnectionIndicator(false);
}

void ConnectFlow::refuseDisconnect() {
  m_parts.interface.alert(withProductName(m_parts.strings.text(u"ErrorDisconnect1"_s), m_parts.session.deviceName()),
                          m_parts.strings.text(u"ErrorDisconnect2"_s));
}

void ConnectFlow::disconnectAndShow() {
  disconnect();
  m_parts.interface.setDockIcon(kDisconnectImage);
}

void ConnectFlow::leaveLostShare() {
  Connection(m_tools).leaveLostVolume();
}

void ConnectFlow::disconnect() {
  m_parts.messages.send(kClientDisconnected);
  m_parts.clientAlive.invalidate();
  const bool unmounted = Connection(m_tools).disconnectFromVaultbox();
  if (!unmounted) {
    m_tools.desktop.log(u"the share could not be unmounted"_s);
  }
  m_parts.interface.setConnected(!unmounted);
}

// --- Cancel ---

void ConnectFlow::onCancel() {
  if (!transferRuns()) {
    return;
  }
  m_parts.strings.reload();
  m_parts.board.isCancel = true;
  m_parts.interface.setEnableDisableCancelBtn(false);
  m_parts.interface.setHighlightCancelBtn(false);
  m_parts.interface.setProgressBar(0);
  m_parts.log.append(m_parts.strings.text(u"Message4"_s));
  m_parts.log.show();
  m_parts.interface.stopPulse();
  m_parts.interface.setDockIcon(kConnectImage);
}

} // namespace sonorel
