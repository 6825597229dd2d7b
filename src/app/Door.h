// The outside door: the object /com/orv/Sonorel on the session bus. It shows the last published state, announces
// what changes (the log and the lists at most ten times a second, by name only) and hands every request on. Lives on
// Qt's main thread, never waits and never touches a file.
#pragma once

#include "app/ClientActions.h"
#include "app/DropCounter.h"
#include "platform/UserInterface.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QTimer>

namespace sonorel {

// The property Alert on the wire: (ussas).
struct DoorAlert {
  quint32 serial = 0;
  QString message;
  QString informativeText;
  QStringList buttons;
};
QDBusArgument &operator<<(QDBusArgument &argument, const DoorAlert &alert);
const QDBusArgument &operator>>(const QDBusArgument &argument, DoorAlert &alert);

// What an action needs of the client; each further one needs what stands before it, too.
enum class Needs {
  Nothing,       // taken always
  NotQuitting,   // a client that may be about to end would never do it
  NotConnecting, // what it works on is about to change
  NotTransferring,
};

class Door final : public QObject {
  Q_OBJECT

public:
  // counter must outlive the door.
  Door(QDBusConnection bus, ClientActions actions, const DropCounter &counter, QObject *parent = nullptr);

  // Exports the object and takes the name; false when another client has it.
  [[nodiscard]] bool open();

  [[nodiscard]] const UserInterfaceState &state() const { return m_state; }
  [[nodiscard]] DoorAlert alert() const;
  [[nodiscard]] quint32 pending() const { return m_counter.pending(); }
  [[nodiscard]] const ClientActions &actions() const { return m_actions; }
  [[nodiscard]] const QDBusConnection &bus() const { return m_bus; }

  // True when the client is not as the action needs it: the call has been answered with the error.
  [[nodiscard]] bool refuses(const QDBusMessage &call, Needs needs) const;
  // Takes the question away; false when it is not open or has no such button.
  [[nodiscard]] bool answer(quint32 serial, int button);

  // --- from DoorInterface, on the main thread ---
  void publish(const UserInterfaceState &state);
  void openQuestion(const Question &question);
  void closeQuestion(quint32 serial);
  void announceTransferComplete();
  // To be called after every change of the counter.
  void announcePending();

private:
  void announce(const QVariantMap &changed, const QStringList &invalidated);
  void announceSlowly(const QString &property);
  void announceSlowOnes();
  void announceAlert();

  QDBusConnection m_bus;
  ClientActions m_actions;
  const DropCounter &m_counter;
  UserInterfaceState m_state;
  QList<Question> m_questions; // the oldest first
  quint32 m_announcedPending = 0;
  QStringList m_slow; // properties to be announced with the next tick
  QTimer m_slowTimer;
};

} // namespace sonorel

Q_DECLARE_METATYPE(sonorel::DoorAlert)
