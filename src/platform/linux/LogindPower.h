// Sleep and wake as logind announces them on the system bus. While nothing sleeps a delay lock is held: logind waits
// for it to be let go before the machine sleeps, which happens as soon as the message's handler has returned, and
// after the patience in any case, because logind waits little longer. A machine without logind never announces
// anything. Lives on Qt's main thread; registerForNotifications belongs to the controller's.
#pragma once

#include "platform/Desktop.h"
#include "platform/Loop.h"
#include "platform/Power.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <mutex>

namespace sonorel {

class LogindPower final : public QObject, public Power {
  Q_OBJECT

public:
  static constexpr std::chrono::milliseconds kPatience{4'000};

  // loop and desktop must outlive the object, which must end after the loop has stopped.
  LogindPower(const QDBusConnection &systemBus, Loop &loop, Desktop &desktop,
              std::chrono::milliseconds patience = kPatience);

  [[nodiscard]] bool registerForNotifications(Handlers handlers) override;

private Q_SLOTS:
  void prepareForSleep(bool sleeps);
  void takeLock(); // returns at once

private:
  void willSleep(quint64 turn);
  void letGo(quint64 turn);
  // A lock that comes too late, or beside another, is let go at once.
  void keep(const QDBusUnixFileDescriptor &lock, quint64 turn);
  [[nodiscard]] bool isRegistered() const;
  [[nodiscard]] quint64 nextTurn();

  QDBusConnection m_bus;
  Loop &m_loop;
  Desktop &m_desktop;
  QDBusServiceWatcher m_watcher;
  QTimer m_patience;
  mutable std::mutex m_mutex; // guards everything below
  Handlers m_handlers;
  QDBusUnixFileDescriptor m_lock;
  bool m_registered = false;
  // Counts the sleeps and the wakes: what belongs to an earlier one must not touch the lock of a later one.
  quint64 m_turn = 0;
};

} // namespace sonorel
