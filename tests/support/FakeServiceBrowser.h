// A network of services. The test lets single events happen (appear, vanish, answer, refuse), or publishes services
// and lets what follows from that be delivered. Controller's thread.
#pragma once

#include "platform/ServiceBrowser.h"

#include <QList>

#include <algorithm>
#include <functional>

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

  // --- a network that answers by itself, at the next deliver ---
  // Under a name that is published already: with another address or text.
  void publish(const ResolvedService &service) {
    const bool isNew = !published(service.service);
    m_published.removeIf([&](const ResolvedService &one) { return isSame(one.service, service.service); });
    m_published.append(service);
    if (isNew) {
      later([service](const Handlers &handlers) { handlers.added(service.service); });
    } else {
      answerLater(service.service);
    }
  }
  void unpublish(const Service &service) {
    if (m_published.removeIf([&](const ResolvedService &one) { return isSame(one.service, service); }) > 0) {
      later([service](const Handlers &handlers) { handlers.removed(service); });
    }
  }
  void endDaemon() {
    for (const ResolvedService &one : m_published) {
      later([service = one.service](const Handlers &handlers) { handlers.removed(service); });
    }
    m_daemonRuns = false;
  }
  void startDaemon() {
    m_daemonRuns = true;
    tellAll();
  }
  void deliver() {
    for (const auto &event : std::exchange(m_events, {})) {
      if (const Handlers handlers = m_handlers; handlers.added) {
        event(handlers);
      }
    }
  }

  void browse(const QString &wantedType, const QString &wantedDomain, Handlers handlers) override {
    type = wantedType;
    domain = wantedDomain;
    m_handlers = std::move(handlers);
    m_events.clear();
    tellAll();
  }
  void resolve(const Service &service) override {
    resolving.append(service);
    answerLater(service);
  }
  void stop() override {
    type.clear();
    domain.clear();
    m_handlers = {};
    m_events.clear();
  }

private:
  using Event = std::function<void(const Handlers &)>;

  static bool isSame(const Service &a, const Service &b) { return a.name == b.name; }
  [[nodiscard]] const ResolvedService *published(const Service &service) const {
    const auto found = std::find_if(m_published.begin(), m_published.end(),
                                    [&](const ResolvedService &one) { return isSame(one.service, service); });
    return found == m_published.end() ? nullptr : &*found;
  }
  void later(Event event) {
    if (m_daemonRuns && m_handlers.added) {
      m_events.append(std::move(event));
    }
  }
  void answerLater(const Service &service) {
    later([this, service](const Handlers &handlers) {
      if (const ResolvedService *found = published(service)) {
        handlers.resolved(*found);
      }
    });
  }
  void tellAll() {
    for (const ResolvedService &one : std::as_const(m_published)) {
      later([service = one.service](const Handlers &handlers) { handlers.added(service); });
    }
  }

  Handlers m_handlers;
  QList<ResolvedService> m_published;
  QList<Event> m_events;
  bool m_daemonRuns = true;
};

} // namespace sonorel::test
