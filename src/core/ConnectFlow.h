// Connect, Disconnect and Cancel, and the parts of them that the automatic connection and the quit use. Everything
// that blocks publishes its state first; alerts and the password panel are opened, never waited for. Controller's
// thread, except isConnected, which any thread may ask. Read next: AfterConnection.h, ApplicationEvents.h.
#pragma once

#include "core/AfterConnection.h"
#include "core/ClientAlive.h"
#include "core/InterfaceController.h"
#include "core/WindowTexts.h"
#include "core/state/MessageLog.h"
#include "core/state/Session.h"
#include "core/state/Strings.h"
#include "core/state/TransferBoard.h"
#include "link/ClientMessages.h"
#include "link/Connection.h"
#include "products/ProductList.h"

#include <chrono>
#include <functional>
#include <memory>

namespace sonorel {

// The roles and values that the connect flow joins. All of it must outlive the flow.
struct ConnectParts {
  InterfaceController &interface;
  Strings &strings;
  Session &session;
  TransferBoard &board;
  MessageLog &log;
  ClientMessages &messages;
  ProductList &products;
  WindowTexts &texts;
  ClientAlive &clientAlive;
  AfterConnection &afterConnection;
};

class ConnectFlow {
public:
  static constexpr int kAttempts = 3;
  static constexpr std::chrono::milliseconds kPauseBetweenAttempts{2'000};

  struct Hooks {
    std::function<void()> unmountVBShareUsingApplescript;
    std::function<void(const QString &address)> wakeupOnLanAProduct;
    // The transfer's thread is at work. While it is, nothing may connect.
    std::function<bool()> workerRuns;
    std::function<void()> attemptsEnded; // to connect, well or not
    // Ends a cancelled transfer that has not ended yet; what it hands in needs the share.
    std::function<void()> awaitTransfer;
    // It has just told of a drop that will not be carried: the log stays. True once.
    std::function<bool()> takeToldOfWaitingDrop = [] { return false; };
  };

  // mainDictPath: removed at the end of every Connect.
  ConnectFlow(const ConnectionTools &tools, const ConnectParts &parts, QString mainDictPath, Hooks hooks);

  // --- the buttons ---
  void onConnect();
  void onDisconnect();
  // Nothing happens when there is no transfer to cancel, or it has been cancelled already.
  void onCancel();

  // --- for others ---
  // A fresh look, which becomes the answer that is shown.
  bool isConnected() const;
  // `transferComplete` and `isCancel` are false; one that a sleep has broken off does not run any more.
  [[nodiscard]] bool transferRuns() const;
  // `checkConnection`.
  void createConnection();
  [[nodiscard]] Connection *checkConnection() const { return m_checkConnection.get(); }
  // Escapes both and tries up to three times. A stop request ends it as a failure.
  [[nodiscard]] bool connectToVaultbox(const QString &password, const QString &ipAddress);
  // All that follows the success of the automatic connection.
  void connectedAutomatically();
  [[nodiscard]] bool getConnectionFailureReason();
  // After a failure that does not tell whether the share is there: looks, and shows it.
  void showTrueState();
  // Tells the product, ends the alive timer and unmounts. Whether it was unmounted becomes the answer that is shown.
  void disconnect();
  // The share may be mounted although its product does not answer: it would be served again when the product is back,
  // by a program that outlives this one.
  void leaveLostShare();
  // Tells the user that a transfer keeps the product connected.
  void refuseDisconnect();

private:
  void connect();
  void showFailure();
  void disconnectAndShow();
  void removeMainDictionary();

  ConnectionTools m_tools;
  ConnectParts m_parts;
  const QString m_mainDictPath;
  Hooks m_hooks;
  std::unique_ptr<Connection> m_checkConnection;
};

} // namespace sonorel
