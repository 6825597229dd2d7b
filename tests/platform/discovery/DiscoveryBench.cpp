#include "DiscoveryBench.h"

#include <QElapsedTimer>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

constexpr qint64 kPatience = 30'000; // milliseconds until something that does not come is a failure

} // namespace

void DiscoveryBench::browse(bool resolving) {
  browser().browse(kType + u'.', QString(),
                   {[this, resolving](const Service &service) {
                      note(u"added "_s + service.name);
                      if (resolving) {
                        browser().resolve(service);
                      }
                    },
                    [this](const Service &service) { note(u"removed "_s + service.name); },
                    [this](const ResolvedService &service) {
                      note(u"resolved "_s + service.service.name);
                      resolved.append(service);
                    },
                    [this](const Service &service, const QString &) { note(u"not resolved "_s + service.name); }});
}

void DiscoveryBench::note(const QString &event) {
  events.append(event);
  calledOutside += passing ? 0 : 1;
}

bool DiscoveryBench::until(const std::function<bool()> &done) {
  QElapsedTimer time;
  time.start();
  while (!done() && time.elapsed() < kPatience) {
    passing = true;
    pass();
    passing = false;
  }
  return done();
}

QStringList DiscoveryBench::present() const {
  QStringList names;
  for (const QString &event : events) {
    if (event.startsWith(u"added "_s)) {
      names.append(event.mid(6));
    } else if (event.startsWith(u"removed "_s)) {
      names.removeOne(event.mid(8));
    }
  }
  return names;
}

ResolvedService DiscoveryBench::lastOf(const QString &name) const {
  for (auto one = resolved.crbegin(); one != resolved.crend(); ++one) {
    if (one->service.name == name) {
      return *one;
    }
  }
  return {};
}

} // namespace sonorel::test
