// The connection that the client makes by itself when it starts: to the product marked as selected, with its stored
// password. A missing or empty product list is no failure: the connection tab is shown. Controller's thread; blocks
// for up to three attempts.
#pragma once

#include "core/state/Session.h"
#include "core/state/View.h"

#include <QString>

#include <functional>

namespace sonorel {

// The first record of "Selected Devices" whose "Is Selected" is "Yes".
struct SelectedProduct {
  QString address;  // its "IP Address", else its "Host Name"; default texts are no addresses
  QString password; // empty when none is stored
  bool listIsEmpty = true;
};

class AutomaticConnection {
public:
  struct Hooks {
    std::function<void()> createConnection; // `checkConnection`; made in every case
    std::function<SelectedProduct()> selectedProduct;
    std::function<void(const QString &address)> wakeupOnLanAProduct;
    // Escapes both and tries up to three times with 2 s between.
    std::function<bool(const QString &password, const QString &ipAddress)> connectToVaultbox;
    std::function<void()> connected; // all that follows a success, the dock image first
    std::function<bool()> givenUp;   // the attempts were ended from outside: no failure to be shown
    std::function<bool()> getConnectionFailureReason;
    std::function<void()> enterPasswordPanel; // the field cleared, the panel opened
    std::function<void()> showErrorConnect;   // the two-part alert
  };

  // Both references must outlive the object.
  AutomaticConnection(Session &session, View &view, Hooks hooks);

  void run();

private:
  void showNotConnected();
  void failed();

  Session &m_session;
  View &m_view;
  Hooks m_hooks;
};

} // namespace sonorel
