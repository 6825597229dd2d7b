#include "AvahiStandIn.h"

#include <QDBusMetaType>
#include <QDBusObjectPath>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const auto kName = u"org.freedesktop.Avahi"_s;

QString freshName() {
  static int last = 0;
  return u"stand-in-%1"_s.arg(++last);
}

} // namespace

AvahiStandIn::AvahiStandIn(const QString &bus, Network &network)
    : m_connectionName(freshName()), m_bus(QDBusConnection::connectToBus(bus, m_connectionName)), m_network(network) {
  qDBusRegisterMetaType<QList<QByteArray>>();
  m_bus.registerVirtualObject(u"/"_s, this, QDBusConnection::SubPath);
  m_bus.registerService(kName);
}

AvahiStandIn::~AvahiStandIn() {
  m_bus.unregisterService(kName);
  m_bus = QDBusConnection(QString());
  QDBusConnection::disconnectFromBus(m_connectionName);
}

bool AvahiStandIn::handleMessage(const QDBusMessage &message, const QDBusConnection &) {
  const QVariantList arguments = message.arguments();
  const QString path = u"/Client1/Object%1"_s.arg(++m_lastPath);
  const QDBusMessage reply = message.createReply(QVariant::fromValue(QDBusObjectPath(path)));
  m_client = message.service();
  if (message.member() == u"ServiceBrowserNew"_s && message.signature() == u"iissu"_s) {
    ++browsers;
    m_browserPath = path;
    answerInOrder(reply, [&] {
      for (const Publication &service : m_network.services) {
        for (const int interface : interfacesOf(service.name)) {
          itemNew(service.name, interface);
        }
      }
    });
  } else if (message.member() == u"ServiceResolverNew"_s && message.signature() == u"iisssiu"_s) {
    if (!refusal.isEmpty()) {
      ++refusals;
      m_bus.send(message.createErrorReply(u"org.freedesktop.Avahi.TooManyObjectsError"_s, refusal));
      return true;
    }
    const Resolver resolver{arguments.at(2).toString(), arguments.at(0).toInt()};
    m_resolvers.insert(path, resolver);
    listResolvers();
    answerInOrder(reply, [&] { sendFound(path, resolver); });
  } else if (message.member() == u"Free"_s) {
    m_resolvers.remove(message.path());
    listResolvers();
    m_bus.send(message.createReply());
  } else {
    return false;
  }
  return true;
}

void AvahiStandIn::answerInOrder(const QDBusMessage &reply, const std::function<void()> &signals_) {
  if (signalsFirst) {
    signals_();
    m_bus.send(reply);
  } else {
    m_bus.send(reply);
    signals_();
  }
}

void AvahiStandIn::listResolvers() {
  resolving.clear();
  for (const Resolver &resolver : std::as_const(m_resolvers)) {
    resolving.append(u"%1 on %2"_s.arg(resolver.name).arg(resolver.interface));
  }
  resolving.sort();
}

QList<int> AvahiStandIn::interfacesOf(const QString &name) const {
  return m_network.interfaces.value(name, {1});
}

void AvahiStandIn::tellResolvers(const QString &name) {
  for (auto one = m_resolvers.cbegin(); one != m_resolvers.cend(); ++one) {
    if (one->name == name) {
      sendFound(one.key(), *one);
    }
  }
}

void AvahiStandIn::failResolvers(const QString &reason) {
  for (auto one = m_resolvers.cbegin(); one != m_resolvers.cend(); ++one) {
    send(one.key(), u"ServiceResolver"_s, u"Failure"_s, {reason});
  }
}

void AvahiStandIn::sendFromBrowser(const QString &member, const QVariantList &arguments) {
  send(m_browserPath, u"ServiceBrowser"_s, member, arguments);
}

void AvahiStandIn::sendItem(const QString &member, const QString &name, int interface) {
  if (!m_browserPath.isEmpty()) {
    sendFromBrowser(member, {interface, 0, name, kType, u"local"_s, 4U});
  }
}

void AvahiStandIn::sendFound(const QString &path, const Resolver &resolver) {
  const auto &services = m_network.services;
  const auto service = std::find_if(services.begin(), services.end(),
                                    [&](const Publication &one) { return one.name == resolver.name; });
  if (silent || service == services.end() || !interfacesOf(resolver.name).contains(resolver.interface)) {
    return;
  }
  QList<QByteArray> reversed = service->textRecord;
  std::reverse(reversed.begin(), reversed.end());
  send(path, u"ServiceResolver"_s, u"Found"_s,
       {resolver.interface, 0, service->name, kType, u"local"_s, u"host.local"_s, 0, service->address,
        QVariant::fromValue(service->port), QVariant::fromValue(reversed), 4U});
}

void AvahiStandIn::send(const QString &path, const QString &interface, const QString &member,
                        const QVariantList &arguments) {
  QDBusMessage signal =
      QDBusMessage::createTargetedSignal(m_client, path, u"org.freedesktop.Avahi."_s + interface, member);
  signal.setArguments(arguments);
  m_bus.send(signal);
}

} // namespace sonorel::test
