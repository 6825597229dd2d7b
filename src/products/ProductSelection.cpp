#include "products/ProductSelection.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr int kYesButton = 1; // behind "NoText"

} // namespace

ProductSelection::ProductSelection(ProductList &products, Session &session, Strings &strings, View &view, Hooks hooks)
    : m_products(products), m_session(session), m_strings(strings), m_view(view), m_hooks(std::move(hooks)) {}

void ProductSelection::onProductSelection(const ProductRow &row) {
  const auto marked = m_products.markActive(row);
  if (!marked) {
    return;
  }
  if (m_hooks.isConnected()) {
    // The mark alone does not tell: it stays on a product whose connection was refused.
    if (marked->wasActive && connectionAddress(marked->record) == m_session.connectedAddress()) {
      return;
    }
    m_hooks.onDisconnect();
    if (m_hooks.isConnected()) {
      return;
    }
  } else if (m_hooks.workerRuns()) {
    // The share is silent or was lost just now: the worker ends with the product that it began with.
    m_strings.reload();
    m_hooks.refuseDisconnect();
    return;
  }
  m_session.setIPAddressString(connectionAddress(marked->record));
  m_session.setPasswordString(marked->password);
  if (marked->password.isEmpty()) {
    m_hooks.showPasswordPanel(true);
  } else {
    m_hooks.onConnect();
  }
}

void ProductSelection::OkEnterPasswordPanel(const QString &password) {
  if (password.isEmpty() || !m_hooks.isPasswordPanelOpen()) {
    return;
  }
  m_hooks.showPasswordPanel(false);
  m_session.setPasswordString(password);
  m_hooks.onConnect();
}

void ProductSelection::CancelEnterPasswordPanel() {
  m_hooks.showPasswordPanel(false);
}

void ProductSelection::RemoveAProductProductsList(const ProductRow &row) {
  if (const auto active = m_products.removeSelectedProduct(row, mayGo())) {
    askToRemove(u"RemoveAProductFromProductList"_s, [this, record = *active] {
      // Another product may have been chosen since. The mark alone does not tell whether it is connected, too.
      const bool mayBeConnected =
          m_products.isActiveProduct(record) || connectionAddress(record) == m_session.connectedAddress();
      if (!mayBeConnected || endsConnection()) {
        m_products.removeSelectedProduct(record);
      }
    });
  }
}

void ProductSelection::RemoveWholeProductsFromProductList() {
  if (!m_products.removeAllSelectedProducts(mayGo())) {
    askToRemove(u"RemoveWholeProductsFromProductList"_s, [this] {
      if (endsConnection()) {
        m_products.removeAllSelectedProducts(ProductList::Active::Remove);
      }
    });
  }
}

ProductList::Active ProductSelection::mayGo() const {
  return m_hooks.isConnected() ? ProductList::Active::Keep : ProductList::Active::Remove;
}

bool ProductSelection::endsConnection() {
  m_hooks.onDisconnect();
  return !m_hooks.isConnected();
}

void ProductSelection::askToRemove(const QString &helpAnchor, std::function<void()> remove) {
  m_strings.reload();
  m_view.ask({.message = m_strings.text(u"AlertText"_s),
              .informativeText = m_strings.text(u"disconnectProductMessageText"_s),
              .buttons = {m_strings.text(u"NoText"_s), m_strings.text(u"YesText"_s)},
              .helpAnchor = helpAnchor},
             [remove = std::move(remove)](int button) {
               if (button == kYesButton) {
                 remove();
               }
             });
}

} // namespace sonorel
