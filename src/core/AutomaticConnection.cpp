#include "core/AutomaticConnection.h"

#include "core/state/DockImages.h"

namespace sonorel {

AutomaticConnection::AutomaticConnection(Session &session, View &view, Hooks hooks)
    : m_session(session), m_view(view), m_hooks(std::move(hooks)) {}

void AutomaticConnection::run() {
  m_hooks.createConnection();
  const SelectedProduct product = m_hooks.selectedProduct();
  m_session.setIPAddressString(product.address);
  if (product.password.isEmpty()) {
    showNotConnected();
    if (!product.listIsEmpty && !product.address.isEmpty()) {
      m_hooks.enterPasswordPanel();
    }
    return;
  }
  m_session.setPasswordString(product.password);
  m_hooks.wakeupOnLanAProduct(product.address);
  if (m_hooks.connectToVaultbox(product.password, product.address)) {
    m_hooks.connected();
  } else {
    failed();
  }
}

void AutomaticConnection::showNotConnected() {
  m_view.setDockIcon(kDisconnectImage);
  m_view.selectTab(Tab::Connection);
}

void AutomaticConnection::failed() {
  m_view.setDockIcon(kDisconnectImage);
  if (m_hooks.givenUp()) {
    return;
  }
  m_view.windowFrontCentre();
  m_view.selectTab(Tab::Connection);
  if (m_hooks.getConnectionFailureReason()) {
    m_hooks.enterPasswordPanel();
  } else {
    m_hooks.showErrorConnect();
  }
}

} // namespace sonorel
