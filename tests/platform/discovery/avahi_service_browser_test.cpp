// What only Avahi has: network interfaces, resolvers that are kept, a bus that may be missing.
#include "StandInBench.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

const auto kDen = u"den [00-1A]"_s;

class AvahiServiceBrowserTest : public testing::Test {
protected:
  StandInBench bench;

  AvahiStandIn &daemon() { return *bench.daemon; }
  void findDen() {
    bench.publish({kDen});
    bench.browse();
    ASSERT_TRUE(bench.until([this] { return !bench.resolved.isEmpty(); }));
  }
  // Whatever was sent before has arrived when this is there.
  void settle() {
    const QString marker = u"marker %1"_s.arg(++m_markers);
    bench.publish({marker});
    ASSERT_TRUE(bench.until([&] { return bench.events.contains(u"added "_s + marker); }));
    bench.events.removeIf([](const QString &event) { return event.contains(u"marker"_s); });
  }

private:
  int m_markers = 0;
};

} // namespace

TEST(AvahiServiceBrowserOptions, ServiceHasFiveSecondsToBeResolved) {
  EXPECT_EQ(AvahiServiceBrowser::Options{}.patience, 5s);
}

TEST_F(AvahiServiceBrowserTest, ServiceOnManyInterfacesIsAddedOnceAndRemovedWithTheLast) {
  bench.network.interfaces.insert(kDen, {1, 2, 3});
  findDen();
  settle();
  EXPECT_EQ(bench.events, QStringList({u"added "_s + kDen, u"resolved "_s + kDen}));
  daemon().itemNew(kDen, 2); // told twice
  daemon().itemRemove(kDen, 3);
  daemon().itemRemove(kDen, 2);
  daemon().itemRemove(kDen, 7);
  settle();
  EXPECT_EQ(bench.events.size(), 2) << bench.events.join(u'\n').toStdString();
  daemon().itemRemove(kDen, 1);
  ASSERT_TRUE(bench.until([this] { return bench.events.contains(u"removed "_s + kDen); }));
}

TEST_F(AvahiServiceBrowserTest, LostInterfaceOfTheResolverIsReplacedByOneThatStillHasTheService) {
  bench.network.interfaces.insert(kDen, {1, 2});
  findDen();
  EXPECT_EQ(daemon().resolving, QStringList({kDen + u" on 1"_s}));
  daemon().itemRemove(kDen, 1);
  ASSERT_TRUE(bench.until([this] { return daemon().resolving == QStringList({kDen + u" on 2"_s}); }));
  ASSERT_TRUE(bench.until([this] { return bench.resolved.size() == 2; }));
}

TEST_F(AvahiServiceBrowserTest, SignalsThatOvertakeTheirAnswersAreNotLost) {
  daemon().signalsFirst = true;
  bench.network.interfaces.insert(u"attic"_s, {1, 2});
  bench.publish({u"attic"_s});
  findDen();
  ASSERT_TRUE(bench.until([this] { return bench.resolved.size() == 2; }));
  EXPECT_EQ(bench.present().size(), 2);
}

TEST_F(AvahiServiceBrowserTest, OneResolverIsKeptForEachServiceAndFreedWithIt) {
  findDen();
  bench.browser().resolve({kDen, kType, u"local"_s});
  ASSERT_TRUE(bench.until([this] { return bench.resolved.size() == 2; }));
  EXPECT_EQ(daemon().resolving, QStringList({kDen + u" on 1"_s}));
  bench.unpublish(kDen);
  ASSERT_TRUE(bench.until([this] { return daemon().resolving.isEmpty(); }));
}

TEST_F(AvahiServiceBrowserTest, AnswerThatDoesNotComeInTimeIsToldOnceAndStillTakenLater) {
  daemon().silent = true;
  bench.publish({kDen});
  bench.browse();
  ASSERT_TRUE(bench.until([this] { return bench.events.contains(u"not resolved "_s + kDen); }));
  daemon().failResolvers(u"Timeout reached"_s);
  settle();
  EXPECT_EQ(bench.events, QStringList({u"added "_s + kDen, u"not resolved "_s + kDen}));
  daemon().silent = false;
  daemon().tellResolvers(kDen);
  EXPECT_TRUE(bench.until([this] { return !bench.lastOf(kDen).address.isEmpty(); }));
}

TEST_F(AvahiServiceBrowserTest, ServiceThatWasNotResolvedIsTriedAgainAndToldOnce) {
  daemon().refusal = u"Too many objects"_s;
  bench.publish({kDen});
  bench.browse();
  ASSERT_TRUE(bench.until([this] { return daemon().refusals >= 3; }));
  daemon().refusal.clear();
  ASSERT_TRUE(bench.until([this] { return !bench.resolved.isEmpty(); }));
  EXPECT_EQ(bench.events, QStringList({u"added "_s + kDen, u"not resolved "_s + kDen, u"resolved "_s + kDen}));
  EXPECT_EQ(daemon().resolving, QStringList({kDen + u" on 1"_s}));
}

TEST_F(AvahiServiceBrowserTest, ResolverThatFailsOrIsRefusedIsTold) {
  daemon().silent = true;
  bench.publish({kDen});
  bench.browse();
  ASSERT_TRUE(bench.until([this] { return !daemon().resolving.isEmpty(); }));
  daemon().failResolvers(u"Timeout reached"_s);
  ASSERT_TRUE(bench.until([this] { return bench.events.contains(u"not resolved "_s + kDen); }));
  daemon().refusal = u"Too many objects"_s;
  bench.publish({u"attic"_s});
  EXPECT_TRUE(bench.until([this] { return bench.events.contains(u"not resolved attic"_s); }));
}

TEST_F(AvahiServiceBrowserTest, SignalsOfAnotherSignatureAreIgnored) {
  findDen();
  daemon().sendFromBrowser(u"ItemNew"_s, {u"attic"_s});
  daemon().sendFromBrowser(u"ItemNew"_s, {});
  daemon().sendFromBrowser(u"ItemRemove"_s, {1, 0, 1, 1, 1, 1});
  daemon().sendFromBrowser(u"AllForNow"_s, {});
  settle();
  EXPECT_EQ(bench.events, QStringList({u"added "_s + kDen, u"resolved "_s + kDen}));
  EXPECT_EQ(bench.logged(), QStringList());
}

TEST_F(AvahiServiceBrowserTest, BrowserThatFailsIsMadeAgain) {
  findDen();
  daemon().sendFromBrowser(u"Failure"_s, {u"org.freedesktop.Avahi.NoNetworkError"_s});
  ASSERT_TRUE(bench.until([this] { return bench.resolved.size() == 2; }));
  EXPECT_EQ(daemon().browsers, 2);
  EXPECT_EQ(bench.events, QStringList({u"added "_s + kDen, u"resolved "_s + kDen, u"removed "_s + kDen,
                                       u"added "_s + kDen, u"resolved "_s + kDen}));
}

TEST_F(AvahiServiceBrowserTest, BusThatComesLaterIsUsedAndItsAbsenceIsToldOnce) {
  bench.endDaemon();
  bench.bus.stop();
  bench.publish({kDen});
  bench.browse();
  ASSERT_TRUE(bench.until([this] { return !bench.logged().isEmpty(); }));
  // Some further attempts: with the bus there and the daemon missing the reason is another, the line is not.
  ASSERT_TRUE(bench.bus.start());
  bench.startDaemon();
  ASSERT_TRUE(bench.until([this] { return !bench.resolved.isEmpty(); }));
  ASSERT_EQ(bench.logged().size(), 1);
  EXPECT_TRUE(bench.logged().first().startsWith(u"products on the network are not found for now: "_s));
}

TEST_F(AvahiServiceBrowserTest, BusThatEndsTakesTheServicesWithIt) {
  findDen();
  bench.bus.stop();
  ASSERT_TRUE(bench.until([this] { return bench.present().isEmpty(); }));
  ASSERT_TRUE(bench.until([this] { return !bench.logged().isEmpty(); }));
  bench.endDaemon();
  ASSERT_TRUE(bench.bus.start());
  bench.startDaemon();
  EXPECT_TRUE(bench.until([this] { return bench.resolved.size() == 2; }));
  EXPECT_EQ(bench.present(), QStringList({kDen}));
}

TEST(AvahiServiceBrowserEnd, BrowserMayEndWithoutHavingBegun) {
  FakeLoop loop;
  FakeDesktop desktop;
  AvahiServiceBrowser browser(loop, desktop, {u"unix:path=/nonexistent/bus"_s, 1ms, 1ms});
  browser.resolve({kDen, kType, u"local"_s});
  browser.stop();
  QCoreApplication::processEvents();
  EXPECT_EQ(desktop.lines, QStringList());
}
