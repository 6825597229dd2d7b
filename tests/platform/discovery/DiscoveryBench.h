// A network on which a test publishes services, and the browser that is to find them. Main thread.
#pragma once

#include "platform/ServiceBrowser.h"

#include <QList>
#include <QStringList>

#include <functional>

namespace sonorel::test {

inline const QString kType = QStringLiteral("_qxproduct_-1._tcp");

struct Publication {
  QString name;
  QString address = QStringLiteral("10.77.0.9");
  QList<QByteArray> textRecord = {}; // in its order
  quint16 port = 445;
};

class DiscoveryBench {
public:
  virtual ~DiscoveryBench() = default;

  [[nodiscard]] virtual ServiceBrowser &browser() = 0;
  // Under a name that is published already: with another address.
  virtual void publish(const Publication &publication) = 0;
  virtual void unpublish(const QString &name) = 0;
  // The daemon through which the browser sees the network.
  virtual void endDaemon() = 0;
  virtual void startDaemon() = 0;
  [[nodiscard]] virtual QStringList logged() const = 0;
  // Lets the browser's events come, for a moment.
  virtual void pass() = 0;

  // --- what the handlers were told ---
  QStringList events; // "added NAME", "removed NAME", "resolved NAME", "not resolved NAME"
  QList<ResolvedService> resolved;
  int calledOutside = 0; // handlers called while no event was let through
  bool passing = false;

  void browse(bool resolving = true);
  [[nodiscard]] bool until(const std::function<bool()> &done);
  // Names that were added and not removed since.
  [[nodiscard]] QStringList present() const;
  [[nodiscard]] ResolvedService lastOf(const QString &name) const;

private:
  void note(const QString &event);
};

} // namespace sonorel::test
