#include "platform/linux/DBusNotifications.h"

#include "platform/Failure.h"
#include "platform/linux/BusNames.h"
#include "platform/linux/NotificationMessage.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

DBusNotifications::DBusNotifications(const QDBusConnection &bus, Loop &loop, Desktop &desktop, Hooks hooks)
    : m_bus(bus), m_loop(loop), m_desktop(desktop), m_hooks(std::move(hooks)) {}

void DBusNotifications::observe(const QString &name, Handler handler) {
  bool isNew = false;
  {
    const std::lock_guard lock(m_mutex);
    isNew = !m_handlers.contains(name);
    m_handlers.insert(name, handler);
  }
  // Without a signature: a signal of another one shall be seen, and logged.
  if (isNew && !m_bus.connect(QString(), kAgentPath, kAgentInterface, name, this, SLOT(receive(QDBusMessage)))) {
    m_desktop.log(u"notifications \"%1\" cannot be observed on the session bus"_s.arg(name));
  }
}

void DBusNotifications::stopObserving(const QString &name) {
  {
    const std::lock_guard lock(m_mutex);
    if (!m_handlers.remove(name)) {
      return;
    }
  }
  m_bus.disconnect(QString(), kAgentPath, kAgentInterface, name, this, SLOT(receive(QDBusMessage)));
}

void DBusNotifications::post(const QString &name, const Notification &notification) {
  if (!m_bus.send(messageOfNotification(name, notification))) {
    throw Failure(u"the notification \"%1\" could not be posted on the session bus"_s.arg(name));
  }
}

void DBusNotifications::receive(const QDBusMessage &message) {
  const QString name = message.member();
  try {
    const Notification notification = notificationOfMessage(message);
    if (m_hooks.received) {
      m_hooks.received();
    }
    m_loop.post([this, name, notification] { deliver(name, notification); });
  } catch (const Failure &e) {
    m_desktop.log(u"a notification \"%1\" of %2 was not taken: %3"_s.arg(name, message.service(), e.reason()));
  }
}

void DBusNotifications::deliver(const QString &name, const Notification &notification) {
  const auto cleaned = withCleanPaths(notification, m_hooks.fromOutside, m_desktop);
  const Handler handler = handlerOf(name);
  if (cleaned && handler) {
    handler(*cleaned);
  } else if (m_hooks.refused) {
    m_hooks.refused();
  }
}

Notifications::Handler DBusNotifications::handlerOf(const QString &name) const {
  const std::lock_guard lock(m_mutex);
  return m_handlers.value(name);
}

} // namespace sonorel
