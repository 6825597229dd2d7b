// What Avahi's daemon says over D-Bus, as values. Arguments are checked: a message of another signature is none.
// Pure. Read next: AvahiServiceBrowser.h.
#pragma once

#include "platform/ServiceBrowser.h"

#include <QDBusMessage>
#include <QList>

#include <optional>

namespace sonorel {

inline constexpr char kAvahi[] = "org.freedesktop.Avahi";
inline constexpr char kAvahiServer[] = "org.freedesktop.Avahi.Server";
inline constexpr char kAvahiBrowser[] = "org.freedesktop.Avahi.ServiceBrowser";
inline constexpr char kAvahiResolver[] = "org.freedesktop.Avahi.ServiceResolver";
inline constexpr int kEveryInterface = -1;
inline constexpr int kIPv4 = 0; // a protocol of Avahi's

// A service on one network interface, from ItemNew and ItemRemove.
struct AvahiItem {
  int interface = kEveryInterface;
  Service service;
};

[[nodiscard]] std::optional<AvahiItem> itemOf(const QDBusMessage &message);
// From Found.
[[nodiscard]] std::optional<ResolvedService> resolvedServiceOf(const QDBusMessage &message);

// The strings of a text record as the daemon hands them out, the last one first. Of equal keys the first one that was
// published counts; a string without a key is passed over, one without "=" has an empty value.
[[nodiscard]] QMap<QByteArray, QByteArray> textRecordOf(const QList<QByteArray> &reversed);

[[nodiscard]] QDBusMessage serviceBrowserNew(const QString &type, const QString &domain);
[[nodiscard]] QDBusMessage serviceResolverNew(int interface, const Service &service);

} // namespace sonorel
