// DNS-SD browsing and resolution. Handlers run on the controller's thread.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <functional>

namespace sonorel {

struct Service {
  QString name;
  QString type;
  QString domain;
};

struct ResolvedService {
  Service service;
  QString hostName;
  QString address; // IPv4 text
  quint16 port = 0;
  QMap<QByteArray, QByteArray> textRecord;
};

class ServiceBrowser {
public:
  struct Handlers {
    std::function<void(const Service &)> added;
    std::function<void(const Service &)> removed;
    std::function<void(const ResolvedService &)> resolved;
    std::function<void(const Service &, const QString &reason)> notResolved;
  };

  virtual ~ServiceBrowser() = default;
  // --- controller's thread; all return at once ---
  // Instead of the browse that runs. A browser that is not available now starts by itself when it is.
  virtual void browse(const QString &type, const QString &domain, Handlers handlers) = 0;
  // A service that was added: it is told as resolved, anew with each change, or once as notResolved. One that has
  // gone is told as neither.
  virtual void resolve(const Service &service) = 0;
  // No handler is called any more.
  virtual void stop() = 0;
};

} // namespace sonorel
