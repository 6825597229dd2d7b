// DNS-SD browsing and resolution by Avahi's daemon, over a system-bus connection of its own. Lives on Qt's main
// thread and never waits there; what it is asked comes from the controller's thread, and its handlers run on it.
// Without a bus or a daemon nothing is found until both are there. A daemon that ends takes every service with it.
// Read next: AvahiResolvers.h.
#pragma once

#include "platform/Desktop.h"
#include "platform/Loop.h"
#include "platform/ServiceBrowser.h"
#include "platform/linux/AvahiResolvers.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QHash>
#include <QTimer>

#include <chrono>
#include <memory>

namespace sonorel {

class AvahiServiceBrowser final : public QObject, public ServiceBrowser {
  Q_OBJECT

public:
  struct Options {
    QString bus = {};                            // its address; empty: the system bus
    std::chrono::milliseconds patience{5'000};   // until a service counts as not resolved
    std::chrono::milliseconds retryAfter{5'000}; // when there is no bus or no daemon
  };

  // loop and desktop must outlive the object, which must end after the loop has stopped.
  AvahiServiceBrowser(Loop &loop, Desktop &desktop, Options options);
  ~AvahiServiceBrowser() override;

  // --- controller's thread ---
  void browse(const QString &type, const QString &domain, Handlers handlers) override;
  void resolve(const Service &service) override;
  void stop() override;

private Q_SLOTS:
  void itemNew(const QDBusMessage &message);
  void itemRemove(const QDBusMessage &message);
  void browserFailed(const QDBusMessage &message);
  void busLost();

private:
  struct Found {
    Service service;
    QList<int> interfaces; // that have it now
  };

  // --- Qt's main thread ---
  void start(const QString &type, const QString &domain, quint64 browsing);
  void end();
  void tryToBrowse();
  [[nodiscard]] bool openBus();
  void closeBus();
  void daemonChanged(const QString &newOwner);
  void browserMade(const QDBusMessage &reply);
  void forgetAll();
  void resolveOn(const Service &service);
  // True when the message is of the running browser; kept for later when that is not known yet.
  [[nodiscard]] bool isOfBrowser(const QDBusMessage &message);
  void reportAbsence(const QString &reason);
  void deliver(std::function<void(const Handlers &)> event);

  Loop &m_loop;
  Desktop &m_desktop;
  const Options m_options;

  // --- controller's thread ---
  Handlers m_handlers;
  quint64 m_wanted = 0; // the number of the running browse; events of another one are dropped

  // --- Qt's main thread ---
  QString m_type; // empty: nothing is looked for
  QString m_domain;
  quint64 m_browsing = 0;
  QDBusConnection m_bus{QString()};
  std::unique_ptr<QDBusServiceWatcher> m_watcher;
  QTimer m_retry;
  bool m_calling = false; // the daemon is asked for a browser
  quint64 m_epoch = 0;    // another one for each daemon
  QString m_browserPath;  // empty when there is none
  QList<QDBusMessage> m_early;
  bool m_absenceReported = false;
  QHash<QString, Found> m_found; // by serviceKey
  AvahiResolvers m_resolvers;
};

} // namespace sonorel
