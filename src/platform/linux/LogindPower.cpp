#include "platform/linux/LogindPower.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QScopeGuard>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr int kBusAnswer = 5000; // milliseconds
const auto kService = u"org.freedesktop.login1"_s;
const auto kPath = u"/org/freedesktop/login1"_s;
const auto kManager = u"org.freedesktop.login1.Manager"_s;

QDBusMessage inhibit() {
  QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kManager, u"Inhibit"_s);
  call << u"sleep"_s << u"Sonorel"_s << u"Disconnect from the product"_s << u"delay"_s;
  return call;
}

} // namespace

LogindPower::LogindPower(const QDBusConnection &systemBus, Loop &loop, Desktop &desktop,
                         std::chrono::milliseconds patience)
    : m_bus(systemBus), m_loop(loop), m_desktop(desktop),
      m_watcher(kService, systemBus, QDBusServiceWatcher::WatchForRegistration) {
  m_patience.setSingleShot(true);
  m_patience.setInterval(patience);
  connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this, &LogindPower::takeLock);
}

bool LogindPower::registerForNotifications(Handlers handlers) {
  quint64 turn = 0;
  {
    const std::lock_guard lock(m_mutex);
    m_handlers = std::move(handlers);
    m_registered = true;
    turn = m_turn;
  }
  if (!m_bus.isConnected()) {
    m_desktop.log(u"there is no system bus: the client will not be told when the machine sleeps"_s);
    return true;
  }
  // Before the lock: a sleep that begins between the two is announced all the same.
  m_bus.connect(kService, kPath, kManager, u"PrepareForSleep"_s, this, SLOT(prepareForSleep(bool)));
  const QDBusPendingReply<QDBusUnixFileDescriptor> answer = m_bus.call(inhibit(), QDBus::Block, kBusAnswer);
  if (answer.isValid()) {
    keep(answer.value(), turn);
    return true;
  }
  const QDBusError error = answer.error();
  const bool answered = error.type() != QDBusError::NoReply && error.type() != QDBusError::Timeout;
  m_desktop.log(u"the sleep of the machine cannot be delayed: "_s + error.message());
  if (answered && m_bus.interface()->isServiceRegistered(kService)) {
    m_bus.disconnect(kService, kPath, kManager, u"PrepareForSleep"_s, this, SLOT(prepareForSleep(bool)));
    const std::lock_guard lock(m_mutex);
    m_registered = false;
    return false;
  }
  return true;
}

void LogindPower::prepareForSleep(bool sleeps) {
  if (!isRegistered()) {
    return;
  }
  const quint64 turn = nextTurn();
  if (sleeps) {
    m_handlers.hurry();
    m_patience.disconnect(this);
    connect(&m_patience, &QTimer::timeout, this, [this, turn] { letGo(turn); });
    m_patience.start();
    m_loop.post([this, turn] { willSleep(turn); });
  } else {
    m_patience.stop();
    takeLock();
    m_loop.post([this] { m_handlers.didWake(); });
  }
}

void LogindPower::willSleep(quint64 turn) {
  const auto acknowledge = qScopeGuard([this, turn] { letGo(turn); });
  m_handlers.message(PowerMessage::SystemWillSleep);
}

void LogindPower::letGo(quint64 turn) {
  const std::lock_guard lock(m_mutex);
  if (turn == m_turn) {
    m_lock = {};
  }
}

void LogindPower::takeLock() {
  quint64 turn = 0;
  {
    const std::lock_guard lock(m_mutex);
    if (!m_registered || m_lock.isValid()) {
      return; // the one that is held outlived a sleep that came to nothing
    }
    turn = m_turn;
  }
  auto *const call = new QDBusPendingCallWatcher(m_bus.asyncCall(inhibit(), kBusAnswer), this);
  connect(call, &QDBusPendingCallWatcher::finished, this, [this, turn](QDBusPendingCallWatcher *finished) {
    const QDBusPendingReply<QDBusUnixFileDescriptor> answer = *finished;
    if (answer.isValid()) {
      keep(answer.value(), turn);
    } else {
      m_desktop.log(u"the sleep of the machine cannot be delayed: "_s + answer.error().message());
    }
    finished->deleteLater();
  });
}

void LogindPower::keep(const QDBusUnixFileDescriptor &lock, quint64 turn) {
  const std::lock_guard guard(m_mutex);
  if (turn == m_turn && !m_lock.isValid()) {
    m_lock = lock;
  }
}

bool LogindPower::isRegistered() const {
  const std::lock_guard lock(m_mutex);
  return m_registered;
}

quint64 LogindPower::nextTurn() {
  const std::lock_guard lock(m_mutex);
  return ++m_turn;
}

} // namespace sonorel
