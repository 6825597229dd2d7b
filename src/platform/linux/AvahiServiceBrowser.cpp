#include "platform/linux/AvahiServiceBrowser.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <atomic>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

// Connections are known by their names in the whole process, and a closed one's name may still be in use.
QString freshConnectionName() {
  static std::atomic<quint64> last{0};
  return u"sonorel-discovery-%1"_s.arg(++last);
}

} // namespace

AvahiServiceBrowser::AvahiServiceBrowser(Loop &loop, Desktop &desktop, Options options)
    : m_loop(loop), m_desktop(desktop), m_options(std::move(options)),
      m_resolvers({[this](const ResolvedService &service) {
                     deliver([service](const Handlers &handlers) { handlers.resolved(service); });
                   },
                   [this](const Service &service, const QString &reason) {
                     deliver([service, reason](const Handlers &handlers) { handlers.notResolved(service, reason); });
                   }},
                  m_options.patience) {
  m_retry.setSingleShot(true);
  m_retry.setInterval(m_options.retryAfter);
  connect(&m_retry, &QTimer::timeout, this, &AvahiServiceBrowser::tryToBrowse);
}

AvahiServiceBrowser::~AvahiServiceBrowser() {
  closeBus();
}

// --- controller's thread ---

void AvahiServiceBrowser::browse(const QString &type, const QString &domain, Handlers handlers) {
  m_handlers = std::move(handlers);
  const QString plain = type.endsWith(u'.') ? type.chopped(1) : type; // as the daemon writes it
  QMetaObject::invokeMethod(
      this, [this, plain, domain, browsing = ++m_wanted] { start(plain, domain, browsing); }, Qt::QueuedConnection);
}

void AvahiServiceBrowser::resolve(const Service &service) {
  QMetaObject::invokeMethod(
      this, [this, service] { resolveOn(service); }, Qt::QueuedConnection);
}

void AvahiServiceBrowser::stop() {
  ++m_wanted;
  m_handlers = {};
  QMetaObject::invokeMethod(
      this, [this] { end(); }, Qt::QueuedConnection);
}

// --- Qt's main thread ---

void AvahiServiceBrowser::start(const QString &type, const QString &domain, quint64 browsing) {
  end();
  m_type = type;
  m_domain = domain;
  m_browsing = browsing;
  tryToBrowse();
}

void AvahiServiceBrowser::end() {
  m_retry.stop();
  m_type.clear();
  m_found.clear();
  m_absenceReported = false;
  closeBus(); // the daemon ends what it does for it
}

void AvahiServiceBrowser::tryToBrowse() {
  if (m_type.isEmpty() || m_calling || !m_browserPath.isEmpty()) {
    return;
  }
  if (!m_bus.isConnected() && !openBus()) {
    reportAbsence(m_bus.lastError().message());
    closeBus();
    m_retry.start();
    return;
  }
  QDBusMessage call = serviceBrowserNew(m_type, m_domain);
  // A daemon that may be started on demand is started once, not again and again.
  call.setAutoStartService(!m_absenceReported);
  m_calling = true;
  auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this,
          [this, epoch = m_epoch](QDBusPendingCallWatcher *answered) {
            answered->deleteLater();
            if (epoch == m_epoch) {
              browserMade(answered->reply());
            }
          });
}

bool AvahiServiceBrowser::openBus() {
  const QString name = freshConnectionName();
  m_bus = m_options.bus.isEmpty() ? QDBusConnection::connectToBus(QDBusConnection::SystemBus, name)
                                  : QDBusConnection::connectToBus(m_options.bus, name);
  if (!m_bus.isConnected()) {
    return false;
  }
  m_resolvers.setBus(m_bus);
  m_watcher = std::make_unique<QDBusServiceWatcher>(QString::fromLatin1(kAvahi), m_bus);
  connect(m_watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString &, const QString &, const QString &newOwner) { daemonChanged(newOwner); });
  m_bus.connect(QString(), u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s, this,
                SLOT(busLost()));
  // Before there is a browser or a resolver: their first signals must not be missed.
  const QString daemon = QString::fromLatin1(kAvahi);
  const QString browser = QString::fromLatin1(kAvahiBrowser);
  const QString resolver = QString::fromLatin1(kAvahiResolver);
  m_bus.connect(daemon, QString(), browser, u"ItemNew"_s, this, SLOT(itemNew(QDBusMessage)));
  m_bus.connect(daemon, QString(), browser, u"ItemRemove"_s, this, SLOT(itemRemove(QDBusMessage)));
  m_bus.connect(daemon, QString(), browser, u"Failure"_s, this, SLOT(browserFailed(QDBusMessage)));
  m_bus.connect(daemon, QString(), resolver, u"Found"_s, &m_resolvers, SLOT(found(QDBusMessage)));
  m_bus.connect(daemon, QString(), resolver, u"Failure"_s, &m_resolvers, SLOT(failed(QDBusMessage)));
  return true;
}

void AvahiServiceBrowser::closeBus() {
  m_watcher.reset();
  m_resolvers.setBus(QDBusConnection(QString()));
  m_browserPath.clear();
  m_early.clear();
  m_calling = false;
  ++m_epoch;
  const QString name = m_bus.name();
  m_bus = QDBusConnection(QString());
  if (!name.isEmpty()) {
    QDBusConnection::disconnectFromBus(name);
  }
}

void AvahiServiceBrowser::busLost() {
  forgetAll();
  closeBus();
  if (!m_type.isEmpty()) {
    m_retry.start();
  }
}

void AvahiServiceBrowser::daemonChanged(const QString &newOwner) {
  forgetAll();
  m_resolvers.forgetAll();
  m_browserPath.clear();
  m_early.clear();
  m_calling = false;
  ++m_epoch;
  if (newOwner.isEmpty()) {
    m_retry.start(); // by then it is missing, or has been started again
  } else {
    tryToBrowse();
  }
}

void AvahiServiceBrowser::browserMade(const QDBusMessage &reply) {
  m_calling = false;
  const QDBusPendingReply<QDBusObjectPath> answer(reply);
  if (answer.isError()) {
    m_early.clear();
    reportAbsence(reply.errorMessage());
    m_retry.start();
    return;
  }
  m_retry.stop();
  m_absenceReported = false;
  m_browserPath = answer.value().path();
  for (const QDBusMessage &message : std::exchange(m_early, {})) {
    message.member() == u"ItemNew"_s ? itemNew(message) : itemRemove(message);
  }
}

void AvahiServiceBrowser::reportAbsence(const QString &reason) {
  if (!m_absenceReported) {
    m_absenceReported = true;
    m_desktop.log(u"products on the network are not found for now: "_s + reason);
  }
}

void AvahiServiceBrowser::browserFailed(const QDBusMessage &message) {
  if (message.path() != m_browserPath) {
    return;
  }
  forgetAll();
  closeBus();
  reportAbsence(message.arguments().value(0).toString());
  m_retry.start();
}

// --- services ---

bool AvahiServiceBrowser::isOfBrowser(const QDBusMessage &message) {
  if (m_calling) {
    m_early.append(message);
    return false;
  }
  return !m_browserPath.isEmpty() && message.path() == m_browserPath;
}

void AvahiServiceBrowser::itemNew(const QDBusMessage &message) {
  const auto item = itemOf(message);
  if (!item || !isOfBrowser(message)) {
    return;
  }
  Found &found = m_found[serviceKey(item->service)];
  if (found.interfaces.contains(item->interface)) {
    return;
  }
  found.service = item->service;
  found.interfaces.append(item->interface);
  if (found.interfaces.size() == 1) {
    deliver([service = item->service](const Handlers &handlers) { handlers.added(service); });
  }
}

void AvahiServiceBrowser::itemRemove(const QDBusMessage &message) {
  const auto item = itemOf(message);
  if (!item || !isOfBrowser(message)) {
    return;
  }
  const auto found = m_found.find(serviceKey(item->service));
  if (found == m_found.end() || found->interfaces.removeAll(item->interface) == 0) {
    return;
  }
  if (found->interfaces.isEmpty()) {
    m_found.erase(found);
    m_resolvers.drop(item->service);
    deliver([service = item->service](const Handlers &handlers) { handlers.removed(service); });
  } else if (m_resolvers.interfaceOf(item->service) == item->interface) {
    resolveOn(item->service); // over an interface that still has it
  }
}

void AvahiServiceBrowser::resolveOn(const Service &service) {
  const auto found = m_found.constFind(serviceKey(service));
  if (found != m_found.cend()) {
    m_resolvers.resolve(found->service, found->interfaces.constFirst());
  }
}

void AvahiServiceBrowser::forgetAll() {
  for (const Found &found : std::exchange(m_found, {})) {
    deliver([service = found.service](const Handlers &handlers) { handlers.removed(service); });
  }
}

void AvahiServiceBrowser::deliver(std::function<void(const Handlers &)> event) {
  m_loop.post([this, event = std::move(event), browsing = m_browsing] {
    if (browsing == m_wanted) {
      const Handlers handlers = m_handlers; // an event may stop the browsing
      event(handlers);
    }
  });
}

} // namespace sonorel
