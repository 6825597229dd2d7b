#include "RealBench.h"
#include "ServiceBrowserContract.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel::test;

namespace {

// Two cables between client and product, one of them pulled out, then the other.
void outlastsALostInterface(DiscoveryBench &bench) {
  RealBench::setLink(u"client1"_s, u"up"_s);
  bench.publish({u"den"_s});
  bench.browse();
  ASSERT_TRUE(bench.until([&] { return bench.resolved.size() == 1; }));
  const auto attic = u"attic"_s; // published later, so that both interfaces have been heard by then
  bench.publish({attic});
  ASSERT_TRUE(bench.until([&] { return !bench.lastOf(attic).address.isEmpty(); }));
  EXPECT_EQ(bench.present().size(), 2);
  RealBench::setLink(u"client0"_s, u"down"_s);
  const auto third = u"third"_s;
  bench.publish({third});
  ASSERT_TRUE(bench.until([&] { return !bench.lastOf(third).address.isEmpty(); }));
  EXPECT_EQ(bench.present().size(), 3) << bench.events.join(u'\n').toStdString();
  RealBench::setLink(u"client1"_s, u"down"_s);
  EXPECT_TRUE(bench.until([&] { return bench.present().isEmpty(); }));
  RealBench::setLink(u"client0"_s, u"up"_s);
  EXPECT_TRUE(bench.until([&] { return bench.present().size() == 3; })) << bench.events.join(u'\n').toStdString();
}

bool registerReal() {
  const auto make = [] { return std::make_unique<RealBench>(); };
  return RealBench::isPossible() &&
         registerCases<DiscoveryBench>("ServiceBrowserContract/RealAvahi", make, serviceBrowserContract()) &&
         registerCases<DiscoveryBench>("RealAvahi", make, {{"OutlastsALostInterface", outlastsALostInterface}});
}

const bool kReal = registerReal();

} // namespace
