// Our client and the drop agent by the owners of their bus names; nothing is ever found by its process name. The
// program that exports artwork counts as running while it is installed, because it needs no start. Any thread but
// Qt's main one; waits for the bus, at most a few seconds.
#pragma once

#include "platform/RunningApplications.h"

#include <QDBusConnection>

#include <optional>

namespace sonorel {

class DBusApplications final : public RunningApplications {
public:
  // exporter: the host path of the artwork exporter.
  DBusApplications(const QDBusConnection &bus, QString exporter) : m_bus(bus), m_exporter(std::move(exporter)) {}

  [[nodiscard]] std::vector<RunningApplication> launched() override;
  // The process that still owns the application's name; the name is free when it returns, so that the next one can
  // take it. A process that does not go when it is asked to is killed after a second.
  void end(const RunningApplication &application) override;

private:
  [[nodiscard]] std::optional<qint64> ownerOf(const QString &busName) const;

  QDBusConnection m_bus;
  QString m_exporter;
};

} // namespace sonorel
