// Notifications within one process: what is posted is kept, and delivered when the test says so. Controller's thread.
#pragma once

#include "platform/Notifications.h"

#include <QList>
#include <QMap>

#include <utility>

namespace sonorel::test {

class FakeNotifications : public Notifications {
public:
  QList<std::pair<QString, Notification>> posted;

  // True when somebody observes the name.
  bool deliver(const QString &name, const Notification &notification) {
    const Handler handler = m_handlers.value(name);
    if (handler) {
      handler(notification);
    }
    return static_cast<bool>(handler);
  }
  void deliverPosted() {
    const auto waiting = std::exchange(posted, {});
    for (const auto &[name, notification] : waiting) {
      deliver(name, notification);
    }
  }
  [[nodiscard]] QStringList observed() const { return m_handlers.keys(); }

  void observe(const QString &name, Handler handler) override { m_handlers.insert(name, std::move(handler)); }
  void stopObserving(const QString &name) override { m_handlers.remove(name); }
  void post(const QString &name, const Notification &notification) override { posted.append({name, notification}); }

private:
  QMap<QString, Handler> m_handlers;
};

} // namespace sonorel::test
