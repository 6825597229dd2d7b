// Choosing the product to connect to, the password panel, and removing chosen products, which may end a connection.
// Nothing is waited for: answers come back as operations. Controller's thread; connecting and disconnecting block.
#pragma once

#include "core/state/Session.h"
#include "core/state/Strings.h"
#include "core/state/View.h"
#include "products/ProductList.h"

#include <functional>

namespace sonorel {

class ProductSelection {
public:
  // What the connect flow and the window do.
  struct Hooks {
    std::function<bool()> isConnected; // a fresh look
    std::function<bool()> workerRuns;  // the transfer's thread is at work
    std::function<void()> onConnect;
    std::function<void()> onDisconnect;
    std::function<void(bool)> showPasswordPanel; // opened with an empty field, or closed
    std::function<bool()> isPasswordPanelOpen;
  };

  // All references must outlive the object.
  ProductSelection(ProductList &products, Session &session, Strings &strings, View &view, Hooks hooks);

  void onProductSelection(const ProductRow &row);
  // An empty password leaves the panel open.
  void OkEnterPasswordPanel(const QString &password);
  void CancelEnterPasswordPanel();
  // Ask first when the active product would go while the client is connected.
  void RemoveAProductProductsList(const ProductRow &row);
  void RemoveWholeProductsFromProductList();

private:
  // The active product only while nothing is connected.
  [[nodiscard]] ProductList::Active mayGo() const;
  void refuseDisconnect();
  [[nodiscard]] bool endsConnection(); // false when the disconnect was refused
  void askToRemove(const QString &helpAnchor, std::function<void()> remove);

  ProductList &m_products;
  Session &m_session;
  Strings &m_strings;
  View &m_view;
  Hooks m_hooks;
};

} // namespace sonorel
