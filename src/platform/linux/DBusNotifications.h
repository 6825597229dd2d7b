// The drop agent's notifications as signals of the session bus: interface com.orv.TrackChute, path
// /com/orv/TrackChute, signature sa{sv}. Lives on Qt's main thread, where signals arrive and are counted; their
// paths are cleaned and the handlers run on the controller's thread. To be given the connection on which the door
// answers: then a sender's later call is answered after its drop was counted.
#pragma once

#include "platform/Desktop.h"
#include "platform/Loop.h"
#include "platform/Notifications.h"
#include "platform/linux/DroppedPaths.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QHash>
#include <QObject>

#include <mutex>

namespace sonorel {

class DBusNotifications final : public QObject, public Notifications {
  Q_OBJECT

public:
  struct Hooks {
    // A drop has arrived; main thread, before the sender's next call is answered.
    std::function<void()> received;
    // The drop that was counted did not reach a handler; controller's thread.
    std::function<void()> refused;
    FromOutside fromOutside;
  };

  // loop and desktop must outlive the object, which must end after the loop has stopped.
  DBusNotifications(const QDBusConnection &bus, Loop &loop, Desktop &desktop, Hooks hooks);

  void observe(const QString &name, Handler handler) override;
  void stopObserving(const QString &name) override;
  void post(const QString &name, const Notification &notification) override;

private Q_SLOTS:
  void receive(const QDBusMessage &message);

private:
  void deliver(const QString &name, const Notification &notification);
  [[nodiscard]] Handler handlerOf(const QString &name) const;

  QDBusConnection m_bus;
  Loop &m_loop;
  Desktop &m_desktop;
  Hooks m_hooks;
  mutable std::mutex m_mutex; // guards m_handlers
  QHash<QString, Handler> m_handlers;
};

} // namespace sonorel
