// One kept resolver at Avahi's daemon for each service: it answers again when the service's address or text record
// changes. That no answer came in time is told once; the service is asked for again, each time after a longer pause,
// because a burst of announcements costs some of them their answers. Qt's main thread.
#pragma once

#include "platform/linux/AvahiMessages.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>

#include <chrono>
#include <functional>

namespace sonorel {

class AvahiResolvers final : public QObject {
  Q_OBJECT

public:
  struct Handlers {
    std::function<void(const ResolvedService &)> resolved;
    std::function<void(const Service &, const QString &reason)> notResolved;
  };

  AvahiResolvers(Handlers handlers, std::chrono::milliseconds patience);

  // The bus of everything that follows; before any other call.
  void setBus(const QDBusConnection &bus);
  // Anew when it is resolved already.
  void resolve(const Service &service, int interface);
  // The network interface on which it is resolved; kEveryInterface when it is not.
  [[nodiscard]] int interfaceOf(const Service &service) const;
  void drop(const Service &service);
  // The daemon is gone, and its resolvers with it.
  void forgetAll();

public Q_SLOTS:
  // The signals Found and Failure.
  void found(const QDBusMessage &message);
  void failed(const QDBusMessage &message);

private:
  struct Resolver {
    Service service;
    int interface = kEveryInterface;
    quint64 serial = 0;
    QString path; // empty until the daemon has made it
    int attempts = 1;
    bool answered = false;
    bool overdue = false;
  };

  void ask(const QString &key);
  void askAgain(const QString &key, quint64 serial);
  void made(const QString &key, quint64 serial, const QDBusMessage &reply);
  void notResolved(const QString &key, quint64 serial, const QString &reason);
  void release(Resolver &resolver);
  void free(const QString &path);
  // False when the message belongs to a resolver whose path is not known yet: it is kept until it is.
  [[nodiscard]] bool isKnown(const QDBusMessage &message);

  QDBusConnection m_bus{QString()};
  Handlers m_handlers;
  std::chrono::milliseconds m_patience;
  QHash<QString, Resolver> m_resolvers; // by serviceKey
  QHash<QString, QString> m_keys;       // by the resolver's path
  QHash<QString, QList<QDBusMessage>> m_early;
  quint64 m_lastSerial = 0;
  quint64 m_epoch = 0; // another one for each daemon
  int m_openCalls = 0;
};

// One text for name, type and domain.
[[nodiscard]] QString serviceKey(const Service &service);

} // namespace sonorel
