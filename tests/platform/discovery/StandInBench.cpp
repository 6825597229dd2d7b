#include "StandInBench.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace sonorel::test {

void FakeBench::publish(const Publication &publication) {
  QList<QByteArray> reversed = publication.textRecord;
  std::reverse(reversed.begin(), reversed.end());
  m_browser.publish({{publication.name, kType, u"local"_s},
                     u"host.local"_s,
                     publication.address,
                     publication.port,
                     textRecordOf(reversed)});
}

StandInBench::StandInBench() : m_browser(loop, desktop, {bus.address(), 300ms, 100ms}) {
  EXPECT_TRUE(bus.start());
  startDaemon();
}

StandInBench::~StandInBench() {
  m_browser.stop();
}

void StandInBench::publish(const Publication &publication) {
  const auto same = std::find_if(network.services.begin(), network.services.end(),
                                 [&](const Publication &one) { return one.name == publication.name; });
  if (same != network.services.end()) {
    *same = publication;
    if (daemon) {
      daemon->tellResolvers(publication.name);
    }
    return;
  }
  network.services.append(publication);
  if (daemon) {
    daemon->itemNew(publication.name, 1);
  }
}

void StandInBench::unpublish(const QString &name) {
  network.services.removeIf([&](const Publication &one) { return one.name == name; });
  if (daemon) {
    daemon->itemRemove(name, 1);
  }
}

void StandInBench::pass() {
  QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
  loop.runPosted();
}

} // namespace sonorel::test
