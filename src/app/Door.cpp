#include "app/Door.h"

#include "app/ApplicationAdaptor.h"
#include "app/ClientAdaptor.h"
#include "app/DoorErrors.h"
#include "platform/linux/BusNames.h"

#include <QDBusMessage>
#include <QDBusMetaType>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr int kSlowInterval = 100; // milliseconds: ten announcements a second

} // namespace

QDBusArgument &operator<<(QDBusArgument &argument, const DoorAlert &alert) {
  argument.beginStructure();
  argument << alert.serial << alert.message << alert.informativeText << alert.buttons;
  argument.endStructure();
  return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DoorAlert &alert) {
  argument.beginStructure();
  argument >> alert.serial >> alert.message >> alert.informativeText >> alert.buttons;
  argument.endStructure();
  return argument;
}

Door::Door(QDBusConnection bus, ClientActions actions, const DropCounter &counter, QObject *parent)
    : QObject(parent), m_bus(std::move(bus)), m_actions(std::move(actions)), m_counter(counter) {
  qDBusRegisterMetaType<DoorAlert>();
  m_slowTimer.setSingleShot(true);
  m_slowTimer.setInterval(kSlowInterval);
  connect(&m_slowTimer, &QTimer::timeout, this, &Door::announceSlowOnes);
  new ApplicationAdaptor(*this);
  new ClientAdaptor(*this);
}

bool Door::open() {
  return m_bus.registerObject(kClientPath, this, QDBusConnection::ExportAdaptors) &&
         m_bus.registerService(kClientService);
}

DoorAlert Door::alert() const {
  if (m_questions.isEmpty()) {
    return {};
  }
  const Question &oldest = m_questions.constFirst();
  return {oldest.serial, oldest.message, oldest.informativeText, oldest.buttons};
}

bool Door::refuses(const QDBusMessage &call, Needs needs) const {
  QString reason;
  if (needs >= Needs::NotQuitting && m_actions.isQuitting()) {
    reason = u"the client is quitting"_s;
  } else if (needs >= Needs::NotConnecting && m_state.busy) {
    reason = u"the client is connecting"_s;
  } else if (needs >= Needs::NotTransferring && m_state.transferring) {
    reason = u"a transfer is running"_s;
  }
  if (!reason.isEmpty()) {
    refuse(m_bus, call, DoorError::Busy, reason);
  }
  return !reason.isEmpty();
}

bool Door::answer(quint32 serial, int button) {
  for (qsizetype i = 0; i < m_questions.size(); ++i) {
    if (m_questions[i].serial == serial && button >= 0 && button < m_questions[i].buttons.size()) {
      m_questions.removeAt(i);
      announceAlert();
      return true;
    }
  }
  return false;
}

void Door::publish(const UserInterfaceState &state) {
  const UserInterfaceState old = std::exchange(m_state, state);
  QVariantMap changed;
  const auto compare = [&changed](const QString &name, const auto &before, const auto &now) {
    if (before != now) {
      changed.insert(name, now);
    }
  };
  compare(u"Connected"_s, old.connected, state.connected);
  compare(u"Busy"_s, old.busy, state.busy);
  compare(u"Transferring"_s, old.transferring, state.transferring);
  compare(u"DeviceName"_s, old.deviceName, state.deviceName);
  compare(u"Progress"_s, old.progress, state.progress);
  compare(u"DockImage"_s, old.dockImage, state.dockImage);
  compare(u"CurrentTab"_s, old.currentTab, state.currentTab);
  compare(u"Language"_s, old.languageFile, state.languageFile);
  compare(u"PasswordWanted"_s, old.passwordWanted, state.passwordWanted);
  announce(changed, {});
  if (old.messageLog != state.messageLog) {
    announceSlowly(u"MessageLog"_s);
  }
  if (old.detectedProducts != state.detectedProducts) {
    announceSlowly(u"DetectedProducts"_s);
  }
  if (old.addedProducts != state.addedProducts) {
    announceSlowly(u"AddedProducts"_s);
  }
  if (old.selectedProducts != state.selectedProducts) {
    announceSlowly(u"SelectedProducts"_s);
  }
  announcePending();
}

void Door::openQuestion(const Question &question) {
  m_questions.append(question);
  if (m_questions.size() == 1) {
    announceAlert();
  }
}

void Door::closeQuestion(quint32 serial) {
  const qsizetype removed = m_questions.removeIf([serial](const Question &open) { return open.serial == serial; });
  if (removed > 0) {
    announceAlert();
  }
}

void Door::announceTransferComplete() {
  announceSlowOnes();
  announcePending();
  m_bus.send(QDBusMessage::createSignal(kClientPath, kClientInterface, u"TransferComplete"_s));
}

void Door::announce(const QVariantMap &changed, const QStringList &invalidated) {
  if (changed.isEmpty() && invalidated.isEmpty()) {
    return;
  }
  QDBusMessage signal =
      QDBusMessage::createSignal(kClientPath, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s);
  signal << QString(kClientInterface) << changed << invalidated;
  m_bus.send(signal);
}

void Door::announceSlowly(const QString &property) {
  if (!m_slow.contains(property)) {
    m_slow.append(property);
  }
  if (!m_slowTimer.isActive()) {
    m_slowTimer.start();
  }
}

void Door::announceSlowOnes() {
  m_slowTimer.stop();
  announce({}, std::exchange(m_slow, {}));
}

void Door::announceAlert() {
  announce({{u"Alert"_s, QVariant::fromValue(alert())}}, {});
}

void Door::announcePending() {
  const quint32 pending = m_counter.pending();
  if (pending != m_announcedPending) {
    m_announcedPending = pending;
    announce({{u"Pending"_s, pending}}, {});
  }
}

} // namespace sonorel
