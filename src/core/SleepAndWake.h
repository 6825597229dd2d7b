// The machine goes to sleep and wakes: the client disconnects before the one and shows what was left after the other.
// It does not reconnect by itself. Controller's thread.
#pragma once

#include "core/state/MessageLog.h"
#include "core/state/Strings.h"
#include "core/state/TransferBoard.h"
#include "core/state/View.h"
#include "platform/FileSystem.h"
#include "platform/Power.h"

#include <QString>

#include <chrono>
#include <functional>

namespace sonorel {

class SleepAndWake {
public:
  struct Hooks {
    std::function<bool()> isConnected;
    // Ends the running copy and waits for the transfer's thread, at most that long.
    std::function<void(std::chrono::milliseconds)> endTransfer;
    std::function<void()> onDisconnect;
  };

  // For a favourites rewrite that is under way; one that takes longer is caught up on at the next connection.
  static constexpr std::chrono::milliseconds kPatienceWithTransfer{1'500};

  // All references must outlive the object. share: `volumeVaultbox` + `sharedFolder`.
  SleepAndWake(FileSystem &files, Strings &strings, MessageLog &log, TransferBoard &board, View &view, QString share,
               Hooks hooks);

  // Start-up and every wake.
  void clearSleepCounter() { m_countCanSleepEvent = 0; }
  // The power callback; the machine sleeps when it has returned.
  void powerMessage(PowerMessage message);
  void afterWakeup();

private:
  [[nodiscard]] bool shareIsGone();
  void listLeftOver();

  FileSystem &m_files;
  Strings &m_strings;
  MessageLog &m_log;
  TransferBoard &m_board;
  View &m_view;
  const QString m_share;
  const Hooks m_hooks;
  int m_countCanSleepEvent = 0;
  bool m_wasConnected = false;
};

} // namespace sonorel
