// Stands for Avahi's daemon on a private bus: the calls and signals that a browser of services needs, from services
// that the test publishes. Runs on the test's own thread.
#pragma once

#include "DiscoveryBench.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QHash>

namespace sonorel::test {

class AvahiStandIn final : public QDBusVirtualObject {
  Q_OBJECT

public:
  // What the network holds outlasts the daemon.
  struct Network {
    QList<Publication> services;
    QHash<QString, QList<int>> interfaces; // of a service; {1} for the others
  };

  AvahiStandIn(const QString &bus, Network &network);
  ~AvahiStandIn() override;

  bool signalsFirst = false; // a browser's and a resolver's signals come before the answers to their calls
  bool silent = false;       // resolvers find nothing
  QString refusal;           // of every resolver, when not empty
  QStringList resolving;     // "NAME on INTERFACE", live resolvers
  int browsers = 0;
  int refusals = 0;

  void itemNew(const QString &name, int interface) { sendItem(u"ItemNew"_qs, name, interface); }
  void itemRemove(const QString &name, int interface) { sendItem(u"ItemRemove"_qs, name, interface); }
  void tellResolvers(const QString &name);
  // Any signal of the browser's.
  void sendFromBrowser(const QString &member, const QVariantList &arguments);
  void failResolvers(const QString &reason);

  [[nodiscard]] QString introspect(const QString &) const override { return {}; }
  bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
  struct Resolver {
    QString name;
    int interface;
  };

  void answerInOrder(const QDBusMessage &reply, const std::function<void()> &signals_);
  void sendItem(const QString &member, const QString &name, int interface);
  void sendFound(const QString &path, const Resolver &resolver);
  void send(const QString &path, const QString &interface, const QString &member, const QVariantList &arguments);
  void listResolvers();
  [[nodiscard]] QList<int> interfacesOf(const QString &name) const;

  QString m_connectionName;
  QDBusConnection m_bus;
  Network &m_network;
  QString m_client;
  QString m_browserPath;
  QHash<QString, Resolver> m_resolvers; // by path
  int m_lastPath = 0;
};

} // namespace sonorel::test
