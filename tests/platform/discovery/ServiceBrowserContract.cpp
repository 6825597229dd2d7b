#include "ServiceBrowserContract.h"

#include "support/Printers.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const auto kDen = u"den [00-1A-2B-3C-4D-5E]"_s;

void tellsWhatIsPublished(DiscoveryBench &bench) {
  bench.publish({kDen,
                 u"10.77.0.9"_s,
                 {QByteArray("LOCATION=Kitchen\0", 17), QByteArray("PRODUCT_NAME=Vaultbox 1\0", 24)},
                 4450});
  bench.browse();
  ASSERT_TRUE(bench.until([&] { return !bench.resolved.isEmpty(); }));
  EXPECT_EQ(bench.events, QStringList({u"added "_s + kDen, u"resolved "_s + kDen}));
  const ResolvedService &service = bench.resolved.first();
  EXPECT_EQ(service.service.type, kType);
  EXPECT_EQ(service.service.domain, u"local"_s);
  EXPECT_EQ(service.address, u"10.77.0.9"_s);
  EXPECT_EQ(service.port, 4450);
  EXPECT_EQ(service.textRecord, (QMap<QByteArray, QByteArray>{{"LOCATION", QByteArray("Kitchen\0", 8)},
                                                              {"PRODUCT_NAME", QByteArray("Vaultbox 1\0", 11)}}));
}

void tellsWhatIsPublishedLater(DiscoveryBench &bench) {
  bench.browse();
  bench.publish({kDen});
  EXPECT_TRUE(bench.until([&] { return bench.lastOf(kDen).address == u"10.77.0.9"_s; }));
}

void callsNothingOutsideTheLoop(DiscoveryBench &bench) {
  bench.publish({kDen});
  bench.browse();
  EXPECT_TRUE(bench.events.isEmpty());
  ASSERT_TRUE(bench.until([&] { return !bench.resolved.isEmpty(); }));
  EXPECT_EQ(bench.calledOutside, 0);
}

void resolvesOnlyWhenAsked(DiscoveryBench &bench) {
  bench.publish({kDen});
  bench.browse(false);
  ASSERT_TRUE(bench.until([&] { return !bench.events.isEmpty(); }));
  bench.browser().resolve({u"nobody"_s, kType, u"local"_s});
  bench.browser().resolve({kDen, kType, u"local"_s});
  ASSERT_TRUE(bench.until([&] { return !bench.resolved.isEmpty(); }));
  EXPECT_EQ(bench.events, QStringList({u"added "_s + kDen, u"resolved "_s + kDen}));
}

void keepsNamesAsTheyArePublished(DiscoveryBench &bench) {
  const QStringList names{u"plain"_s,         u"no bracket"_s,   u"a.b\\c\"d'e,f;g [00-11]"_s,
                          u"Küche ♫ 🎵 [x]"_s, QString(63, u'n'), u"]["_s,
                          u" [00] "_s};
  for (const QString &name : names) {
    bench.publish({name});
  }
  bench.browse();
  EXPECT_TRUE(bench.until([&] { return bench.resolved.size() >= names.size(); }));
  QStringList found = bench.present();
  found.sort();
  QStringList expected = names;
  expected.sort();
  EXPECT_EQ(found, expected);
}

void keepsTheBytesOfTextRecords(DiscoveryBench &bench) {
  bench.publish({u"none"_s});
  bench.publish({u"one character"_s, u"10.77.0.9"_s, {"LOCATION=K", "PRODUCT_NAME=", "PRODUCT_SERIALNO"}});
  bench.publish({u"no text"_s, u"10.77.0.9"_s, {QByteArray("LOCATION=\xFF\xFE\x80\0=\n", 15)}});
  bench.publish({u"twice"_s, u"10.77.0.9"_s, {"LOCATION=first", "LOCATION=second", "=no key"}});
  bench.publish({u"long"_s, u"10.77.0.9"_s, {"LOCATION=" + QByteArray(246, 'x')}});
  bench.browse();
  ASSERT_TRUE(bench.until([&] { return bench.resolved.size() >= 5; }));
  using Texts = QMap<QByteArray, QByteArray>;
  EXPECT_EQ(bench.lastOf(u"none"_s).textRecord, Texts());
  EXPECT_EQ(bench.lastOf(u"one character"_s).textRecord,
            (Texts{{"LOCATION", "K"}, {"PRODUCT_NAME", ""}, {"PRODUCT_SERIALNO", ""}}));
  EXPECT_EQ(bench.lastOf(u"no text"_s).textRecord, (Texts{{"LOCATION", QByteArray("\xFF\xFE\x80\0=\n", 6)}}));
  EXPECT_EQ(bench.lastOf(u"twice"_s).textRecord, (Texts{{"LOCATION", "first"}}));
  EXPECT_EQ(bench.lastOf(u"long"_s).textRecord, (Texts{{"LOCATION", QByteArray(246, 'x')}}));
}

void findsTwoHundredAtOnce(DiscoveryBench &bench) {
  constexpr int kMany = 200;
  for (int i = 0; i < kMany; ++i) {
    bench.publish({u"p%1 [%1]"_s.arg(i), u"10.77.1.%1"_s.arg(i), {"N=" + QByteArray::number(i)}});
  }
  bench.browse();
  EXPECT_TRUE(bench.until([&] { return bench.resolved.size() >= kMany; }))
      << bench.resolved.size() << " of them; " << bench.events.filter(u"not resolved"_s).join(u'\n').toStdString();
  EXPECT_EQ(bench.present().size(), kMany);
  for (int i = 0; i < kMany; ++i) {
    const ResolvedService service = bench.lastOf(u"p%1 [%1]"_s.arg(i));
    EXPECT_EQ(service.address, u"10.77.1.%1"_s.arg(i));
    EXPECT_EQ(service.textRecord.value("N"), QByteArray::number(i));
  }
}

void tellsAnotherAddress(DiscoveryBench &bench) {
  bench.publish({kDen, u"10.77.0.9"_s});
  bench.browse();
  ASSERT_TRUE(bench.until([&] { return bench.lastOf(kDen).address == u"10.77.0.9"_s; }));
  bench.publish({kDen, u"10.77.0.10"_s});
  EXPECT_TRUE(bench.until([&] { return bench.lastOf(kDen).address == u"10.77.0.10"_s; }));
  EXPECT_EQ(bench.present(), QStringList({kDen}));
}

void tellsOnceThatAServiceVanished(DiscoveryBench &bench) {
  bench.publish({kDen});
  bench.publish({u"attic"_s});
  bench.browse();
  ASSERT_TRUE(bench.until([&] { return bench.resolved.size() >= 2; }));
  bench.unpublish(kDen);
  ASSERT_TRUE(bench.until([&] { return bench.present() == QStringList({u"attic"_s}); }));
  EXPECT_EQ(bench.events.count(u"removed "_s + kDen), 1);
  bench.publish({kDen, u"10.77.0.11"_s});
  EXPECT_TRUE(bench.until([&] { return bench.lastOf(kDen).address == u"10.77.0.11"_s; })) << "it has come back";
}

void startsAgainWithTheDaemon(DiscoveryBench &bench) {
  bench.publish({kDen});
  bench.publish({u"attic"_s});
  bench.browse();
  ASSERT_TRUE(bench.until([&] { return bench.resolved.size() >= 2; }));
  bench.endDaemon();
  ASSERT_TRUE(bench.until([&] { return bench.present().isEmpty(); }));
  bench.resolved.clear();
  bench.startDaemon();
  EXPECT_TRUE(bench.until([&] { return bench.resolved.size() >= 2; }));
  EXPECT_EQ(bench.present().size(), 2);
  EXPECT_EQ(bench.events.count(u"removed attic"_s), 1);
}

void waitsForADaemonThatComesLater(DiscoveryBench &bench) {
  bench.endDaemon();
  bench.publish({kDen});
  bench.browse();
  ASSERT_TRUE(bench.until([&] { return !bench.logged().isEmpty(); }));
  EXPECT_TRUE(bench.events.isEmpty());
  bench.startDaemon();
  EXPECT_TRUE(bench.until([&] { return !bench.resolved.isEmpty(); }));
  EXPECT_EQ(bench.logged().size(), 1) << bench.logged().join(u'\n').toStdString();
}

void tellsNothingAfterTheStop(DiscoveryBench &bench) {
  bench.publish({kDen});
  bench.browse();
  ASSERT_TRUE(bench.until([&] { return !bench.resolved.isEmpty(); }));
  bench.browser().stop();
  bench.events.clear();
  bench.unpublish(kDen);
  bench.publish({u"attic"_s});
  bench.browser().resolve({u"attic"_s, kType, u"local"_s});
  bench.endDaemon();
  bench.startDaemon();
  bench.browse(false);
  ASSERT_TRUE(bench.until([&] { return !bench.events.isEmpty(); })) << "a new browse";
  EXPECT_EQ(bench.events, QStringList({u"added attic"_s}));
}

} // namespace

const std::vector<ContractCase<DiscoveryBench>> &serviceBrowserContract() {
  static const std::vector<ContractCase<DiscoveryBench>> cases{
      {"TellsWhatIsPublished", tellsWhatIsPublished},
      {"TellsWhatIsPublishedLater", tellsWhatIsPublishedLater},
      {"CallsNothingOutsideTheLoop", callsNothingOutsideTheLoop},
      {"ResolvesOnlyWhenAsked", resolvesOnlyWhenAsked},
      {"KeepsNamesAsTheyArePublished", keepsNamesAsTheyArePublished},
      {"KeepsTheBytesOfTextRecords", keepsTheBytesOfTextRecords},
      {"FindsTwoHundredAtOnce", findsTwoHundredAtOnce},
      {"TellsAnotherAddress", tellsAnotherAddress},
      {"TellsOnceThatAServiceVanished", tellsOnceThatAServiceVanished},
      {"StartsAgainWithTheDaemon", startsAgainWithTheDaemon},
      {"WaitsForADaemonThatComesLater", waitsForADaemonThatComesLater},
      {"TellsNothingAfterTheStop", tellsNothingAfterTheStop},
  };
  return cases;
}

} // namespace sonorel::test
