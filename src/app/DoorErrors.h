// The door's three errors, com.orv.Sonorel.Error.*. Main thread.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>

namespace sonorel {

enum class DoorError {
  Busy,    // the client is connecting or quitting, or a transfer runs
  Changed, // the row is not what the caller has seen
  Invalid, // the arguments make no sense; the text says why
};

[[nodiscard]] QString nameOf(DoorError error);
// Answers the call with the error instead of its return value.
void refuse(QDBusConnection bus, const QDBusMessage &call, DoorError error, const QString &reason);

} // namespace sonorel
