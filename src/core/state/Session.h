// What is known of the connected product and of this client, written by the connect flow and read by the worker.
// Any thread.
#pragma once

#include "core/state/ShareLayout.h"

#include <QString>

#include <mutex>

namespace sonorel {

class Session {
public:
  [[nodiscard]] QString deviceName() const { return get(m_deviceName); }
  void setDeviceName(const QString &name) { set(m_deviceName, name); }
  // `isAU5UTF8Compliant`: "YES" or "NO".
  [[nodiscard]] QString isAU5UTF8Compliant() const { return get(m_isAU5UTF8Compliant); }
  void setAU5UTF8Compliant(const QString &flag) { set(m_isAU5UTF8Compliant, flag); }
  [[nodiscard]] QString UUID() const { return get(m_UUID); } // the client's GUID, with braces
  void setUUID(const QString &guid) { set(m_UUID, guid); }
  // `IPAddressString`, `PasswordString`: the product selected for connection.
  [[nodiscard]] QString IPAddressString() const { return get(m_IPAddressString); }
  void setIPAddressString(const QString &address) { set(m_IPAddressString, address); }
  [[nodiscard]] QString PasswordString() const { return get(m_PasswordString); }
  void setPasswordString(const QString &password) { set(m_PasswordString, password); }
  // Outlasts a choice of another product: only a new connection changes it.
  [[nodiscard]] QString connectedAddress() const { return get(m_connectedAddress); }
  void setConnectedAddress(const QString &address) { set(m_connectedAddress, address); }
  // The hardware address read from this share during this connection; empty when none was valid.
  [[nodiscard]] QString hardwareAddress() const { return get(m_hardwareAddress); }
  void setHardwareAddress(const QString &address) { set(m_hardwareAddress, address); }

private:
  [[nodiscard]] QString get(const QString &value) const {
    const std::lock_guard lock(m_mutex);
    return value;
  }
  void set(QString &target, const QString &value) {
    const std::lock_guard lock(m_mutex);
    target = value;
  }

  mutable std::mutex m_mutex; // guards every value below
  QString m_deviceName;
  QString m_isAU5UTF8Compliant = QStringLiteral("NO");
  QString m_UUID;
  QString m_IPAddressString;
  QString m_PasswordString;
  QString m_connectedAddress;
  QString m_hardwareAddress;
};

} // namespace sonorel
