// A network whose services the test lets appear, vanish and resolve. Controller's thread.
#pragma once

#include "platform/ServiceBrowser.h"

#include <QList>

namespace sonorel::test {

class FakeServiceBrowser : public ServiceBrowser {
public:
  QString type; // of the running browse; empty when stopped
  QString domain;
  QList<Service> resolving; // every service that was asked for

  void appear(const Service &service) {
    if (m_handlers.added) {
      m_handlers.added(service);
    }
  }
  void vanish(const Service &service) {
    if (m_handlers.removed) {
      m_handlers.removed(service);
    }
  }
  void answer(const ResolvedService &service) {
    if (m_handlers.resolved) {
      m_handlers.resolved(service);
    }
  }
  void refuse(const Service &service, const QString &reason) {
    if (m_handlers.notResolved) {
      m_handlers.notResolved(service, reason);
    }
  }

  void browse(const QString &wantedType, const QString &wantedDomain, Handlers handlers) override {
    type = wantedType;
    domain = wantedDomain;
    m_handlers = std::move(handlers);
  }
  void resolve(const Service &service) override { resolving.append(service); }
  void stop() override {
    type.clear();
    domain.clear();
    m_handlers = {};
  }

private:
  Handlers m_handlers;
};

} // namespace sonorel::test
