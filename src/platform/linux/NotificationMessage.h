// A notification as a D-Bus message and back. Any thread.
#pragma once

#include "platform/Notifications.h"

#include <QDBusMessage>

namespace sonorel {

// The bus refuses 128 MiB and libdbus hangs the sender above an array of 64 MiB.
inline constexpr qsizetype kNotificationLimit = 32 * 1024 * 1024;

// Throws Failure for a notification above the limit and for a value that has no form there.
[[nodiscard]] QDBusMessage messageOfNotification(const QString &name, const Notification &notification);
// Lists of texts become QStringList, PhotoData a QVariantList of QVariantMap; unknown keys are left out. Throws
// Failure (Damaged) for another signature or a known key with another type.
[[nodiscard]] Notification notificationOfMessage(const QDBusMessage &message);

} // namespace sonorel
