#include "platform/linux/AvahiResolvers.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr int kLongestPause = 6; // doublings of the patience

} // namespace

QString serviceKey(const Service &service) {
  return service.name + QChar::Null + service.type + QChar::Null + service.domain;
}

AvahiResolvers::AvahiResolvers(Handlers handlers, std::chrono::milliseconds patience)
    : m_handlers(std::move(handlers)), m_patience(patience) {}

void AvahiResolvers::setBus(const QDBusConnection &bus) {
  forgetAll();
  m_bus = bus;
}

void AvahiResolvers::resolve(const Service &service, int interface) {
  drop(service);
  const QString key = serviceKey(service);
  Resolver &resolver = m_resolvers[key];
  resolver.service = service;
  resolver.interface = interface;
  ask(key);
}

void AvahiResolvers::ask(const QString &key) {
  Resolver &resolver = m_resolvers[key];
  const quint64 serial = ++m_lastSerial;
  resolver.serial = serial;
  resolver.overdue = false;
  ++m_openCalls;
  const QDBusMessage call = serviceResolverNew(resolver.interface, resolver.service);
  auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this,
          [this, key, serial, epoch = m_epoch](QDBusPendingCallWatcher *finished) {
            finished->deleteLater();
            if (epoch == m_epoch) {
              made(key, serial, finished->reply());
            }
          });
  QTimer::singleShot(m_patience, this, [this, key, serial] { notResolved(key, serial, u"no answer in time"_s); });
}

void AvahiResolvers::askAgain(const QString &key, quint64 serial) {
  const auto resolver = m_resolvers.find(key);
  if (resolver != m_resolvers.end() && resolver->serial == serial && !resolver->answered) {
    release(*resolver);
    ++resolver->attempts;
    ask(key);
  }
}

void AvahiResolvers::made(const QString &key, quint64 serial, const QDBusMessage &reply) {
  --m_openCalls;
  const QDBusPendingReply<QDBusObjectPath> answer(reply);
  if (answer.isError()) {
    notResolved(key, serial, reply.errorMessage());
  } else {
    const QString path = answer.value().path();
    const QList<QDBusMessage> early = m_early.take(path);
    const auto resolver = m_resolvers.find(key);
    if (resolver == m_resolvers.end() || resolver->serial != serial) {
      free(path); // dropped meanwhile
    } else {
      resolver->path = path;
      m_keys.insert(path, key);
      for (const QDBusMessage &message : early) {
        message.member() == u"Found"_s ? found(message) : failed(message);
      }
    }
  }
  if (m_openCalls == 0) {
    m_early.clear();
  }
}

int AvahiResolvers::interfaceOf(const Service &service) const {
  return m_resolvers.value(serviceKey(service)).interface;
}

void AvahiResolvers::drop(const Service &service) {
  Resolver resolver = m_resolvers.take(serviceKey(service));
  release(resolver);
}

void AvahiResolvers::release(Resolver &resolver) {
  if (!resolver.path.isEmpty()) {
    m_keys.remove(resolver.path);
    free(resolver.path);
    resolver.path.clear();
  }
}

void AvahiResolvers::free(const QString &path) {
  m_bus.send(QDBusMessage::createMethodCall(QString::fromLatin1(kAvahi), path, QString::fromLatin1(kAvahiResolver),
                                            u"Free"_s));
}

void AvahiResolvers::forgetAll() {
  m_resolvers.clear();
  m_keys.clear();
  m_early.clear();
  m_openCalls = 0;
  ++m_epoch;
}

bool AvahiResolvers::isKnown(const QDBusMessage &message) {
  if (m_keys.contains(message.path())) {
    return true;
  }
  if (m_openCalls > 0) {
    m_early[message.path()].append(message);
  }
  return false;
}

void AvahiResolvers::found(const QDBusMessage &message) {
  const auto resolved = resolvedServiceOf(message);
  if (!resolved || !isKnown(message)) {
    return;
  }
  Resolver &resolver = m_resolvers[m_keys.value(message.path())];
  resolver.answered = true;
  ResolvedService answer = *resolved;
  answer.service = resolver.service; // the one that was asked for, however the daemon writes it
  m_handlers.resolved(answer);
}

void AvahiResolvers::failed(const QDBusMessage &message) {
  if (isKnown(message)) {
    const Resolver resolver = m_resolvers.value(m_keys.value(message.path()));
    notResolved(serviceKey(resolver.service), resolver.serial, message.arguments().value(0).toString());
  }
}

void AvahiResolvers::notResolved(const QString &key, quint64 serial, const QString &reason) {
  const auto resolver = m_resolvers.find(key);
  if (resolver == m_resolvers.end() || resolver->serial != serial || resolver->answered || resolver->overdue) {
    return;
  }
  resolver->overdue = true;
  QTimer::singleShot(m_patience * (1 << std::min(resolver->attempts - 1, kLongestPause)), this,
                     [this, key, serial] { askAgain(key, serial); });
  if (resolver->attempts == 1) {
    m_handlers.notResolved(resolver->service, reason);
  }
}

} // namespace sonorel
