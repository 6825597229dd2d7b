// Cross-process notifications of the drop agent. Controller's thread, where the handlers run as well; nothing waits.
#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>

namespace sonorel {

struct Notification {
  QString object;       // empty when there is none
  QVariantMap userInfo; // texts, lists of texts, lists of maps
};

class Notifications {
public:
  using Handler = std::function<void(const Notification &)>;

  virtual ~Notifications() = default;
  // One handler per name; a notification of another signature is logged and not delivered.
  virtual void observe(const QString &name, Handler handler) = 0;
  virtual void stopObserving(const QString &name) = 0;
  // Throws Failure when it cannot be posted (no bus, more than 32 MiB).
  virtual void post(const QString &name, const Notification &notification) = 0;
};

} // namespace sonorel
