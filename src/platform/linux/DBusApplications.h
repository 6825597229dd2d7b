// Our client and the drop agent by the owners of their bus names; nothing is ever found by its process name. Any
// thread but Qt's main one; waits for the bus, at most a few seconds.
#pragma once

#include "platform/RunningApplications.h"

#include <QDBusConnection>

#include <optional>

namespace sonorel {

class DBusApplications final : public RunningApplications {
public:
  explicit DBusApplications(const QDBusConnection &bus) : m_bus(bus) {}

  [[nodiscard]] std::vector<RunningApplication> launched() override;
  // SIGTERM to the process that still owns the application's name.
  void end(const RunningApplication &application) override;

private:
  [[nodiscard]] std::optional<qint64> ownerOf(const QString &busName) const;

  QDBusConnection m_bus;
};

} // namespace sonorel
