#include "products/BonjourDiscovery.h"

#include "support/FakeServiceBrowser.h"

#include "ProductFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const auto kDen = u"den [00-1A-2B-3C-4D-5E]"_s;

Service named(const QString &name) {
  return {name, u"_qxproduct_-1._tcp."_s, u"local"_s};
}

ResolvedService published(const QString &name, const QString &address,
                          const QMap<QByteArray, QByteArray> &textRecord = {}) {
  return {named(name), u"den.local"_s, address, 445, textRecord};
}

QMap<QByteArray, QByteArray> texts(const QByteArray &serial) {
  return {{"LOCATION", QByteArray("Kitchen\0", 8)},
          {"PRODUCT_NAME", QByteArray("Vaultbox 1\0", 11)},
          {"PRODUCT_SERIALNO", serial + '\0'}};
}

class BonjourDiscoveryTest : public ProductTest {
protected:
  BonjourDiscoveryTest() { discovery.init(); }

  void announce(const ResolvedService &service) {
    browser.appear(service.service);
    browser.answer(service);
  }
  QVariantList detectedDevices() { return records(u"Detected Devices"_s); }

  FakeServiceBrowser browser;
  BonjourDiscovery discovery{browser, products};
};

QString location(const QByteArray &value) {
  return getLocationForProduct(published(u"x"_s, {}, {{"LOCATION", value}}));
}

} // namespace

// --- what a product publishes ---

TEST(BonjourTexts, NameHoldsTheHostNameAndTheHardwareAddress) {
  EXPECT_EQ(getHostNameForProduct(published(kDen, {})), u"den"_s);
  EXPECT_EQ(getMACAddressForProduct(published(kDen, {})), u"00-1A-2B-3C-4D-5E"_s);
}

TEST(BonjourTexts, WithoutBlankOrBracketsTheWholeNameStands) {
  EXPECT_EQ(getHostNameForProduct(published(u"den[00]"_s, {})), u"den[00]"_s);
  for (const QString &name : {u"den"_s, u"den [00"_s, u"den 00]"_s, u"den ]00["_s, u"den []"_s}) {
    EXPECT_EQ(getMACAddressForProduct(published(name, {})), name);
  }
  EXPECT_EQ(getMACAddressForProduct(published(u"a ] [1] [2]"_s, {})), u"1"_s);
  EXPECT_EQ(getMACAddressForProduct(published(u"a [[1]]"_s, {})), u"[1"_s);
  const QString longest = QString(63, u'n');
  EXPECT_EQ(getHostNameForProduct(published(longest, {})), longest);
}

TEST(BonjourTexts, ValueLosesItsLastCharacter) {
  EXPECT_EQ(location(QByteArray("Kitchen\0", 8)), u"Kitchen"_s);
  EXPECT_EQ(location("Kitchenx"), u"Kitchen"_s);
  EXPECT_EQ(location("K\xC3\xBC\xC3\xA4"), u"Kü"_s);
  EXPECT_EQ(location("K\xF0\x9F\x8E\xB5"), u"K"_s) << "a character of two units";
}

TEST(BonjourTexts, WhatIsNoTextCountsAsMissing) {
  for (const QByteArray &value : {QByteArray(), QByteArray("K"), QByteArray("\xF0\x9F\x8E\xB5"),
                                  QByteArray("K\xFF\xFEx"), QByteArray("\xC3"), QByteArray("\0\0", 2)}) {
    EXPECT_EQ(location(value), u"NOLOCATIONSET"_s) << value.toHex().toStdString();
  }
  EXPECT_EQ(getProductNameForProduct(published(u"x"_s, {})), u"NOPRODUCTNAMESET"_s);
  EXPECT_EQ(getSerialNumberForProduct(published(u"x"_s, {})), u"NOSERIALNUMBERSET"_s);
  EXPECT_EQ(getIPAddressForProduct(published(u"x"_s, {})), u"NOIPADDRESSSET"_s);
}

// --- events ---

TEST_F(BonjourDiscoveryTest, BrowsesForProductsAndResolvesEachThatIsFound) {
  EXPECT_EQ(browser.type, u"_qxproduct_-1._tcp."_s);
  EXPECT_EQ(browser.domain, QString());
  browser.appear(named(kDen));
  ASSERT_EQ(browser.resolving.size(), 1);
  EXPECT_EQ(browser.resolving.first().name, kDen);
  EXPECT_FALSE(files.exists(path)) << "a product is recorded when it is resolved";
}

TEST_F(BonjourDiscoveryTest, ResolvedProductIsRecordedAndShown) {
  announce(published(kDen, u"10.0.0.7"_s, texts("S1")));
  const ProductRecord expected{{u"Host Name"_s, u"den"_s},           {u"Location"_s, u"Kitchen"_s},
                               {u"IP Address"_s, u"10.0.0.7"_s},     {u"Mac Address"_s, u"00-1A-2B-3C-4D-5E"_s},
                               {u"Product Name"_s, u"Vaultbox 1"_s}, {u"Serial Number"_s, u"S1"_s},
                               {u"Detection Type"_s, u"0"_s}};
  EXPECT_EQ(detectedDevices(), QVariantList{expected});
  EXPECT_EQ(tables.detected, QStringList{u"Vaultbox 1 (den,Kitchen)"_s});
}

TEST_F(BonjourDiscoveryTest, NewAddressReplacesTheRecord) {
  announce(published(kDen, u"10.0.0.7"_s, texts("S1")));
  announce(published(kDen, u"10.0.0.8"_s, texts("S2")));
  ASSERT_EQ(detectedDevices().size(), 1);
  EXPECT_EQ(detectedDevices().first().toMap().value(u"IP Address"_s), u"10.0.0.8"_s);
}

TEST_F(BonjourDiscoveryTest, ProductsWithoutSerialNumberCountAsOne) {
  announce(published(u"den [1]"_s, u"10.0.0.7"_s));
  announce(published(u"attic [2]"_s, u"10.0.0.8"_s));
  ASSERT_EQ(detectedDevices().size(), 1);
  EXPECT_EQ(detectedDevices().first().toMap().value(u"Host Name"_s), u"attic"_s);
}

TEST_F(BonjourDiscoveryTest, EveryEqualRecordIsReplaced) {
  put(u"Detected Devices"_s, {detected(u"Old"_s, u"00-1A-2B-3C-4D-5E"_s, u"S8"_s),
                              detected(u"Other"_s, u"M"_s, u"S9"_s), detected(u"Older"_s, u"N"_s, u"S1"_s)});
  announce(published(kDen, u"10.0.0.7"_s, texts("S1")));
  ASSERT_EQ(detectedDevices().size(), 3);
  EXPECT_EQ(detectedDevices().at(0), detectedDevices().at(2));
  EXPECT_EQ(detectedDevices().at(1).toMap().value(u"Product Name"_s), u"Other"_s);
}

TEST_F(BonjourDiscoveryTest, SelectedProductKeepsPasswordMarkAndDetectionType) {
  const auto chosen = with(active(detected(u"Old"_s, u"00-1A-2B-3C-4D-5E"_s, u"S1"_s)), u"Password"_s, u"p"_s);
  put(u"Selected Devices"_s, {with(chosen, u"indexNo"_s, u"4"_s)});
  announce(published(kDen, u"10.0.0.7"_s, texts("S1")));
  const ProductRecord now = selected().first().toMap();
  EXPECT_EQ(now.value(u"IP Address"_s), u"10.0.0.7"_s);
  EXPECT_EQ(now.value(u"Password"_s), u"p"_s);
  EXPECT_EQ(now.value(u"Is Selected"_s), u"Yes"_s);
  EXPECT_EQ(now.value(u"Detection Type"_s), u"0"_s);
  EXPECT_FALSE(now.contains(u"indexNo"_s));
  EXPECT_FALSE(detectedDevices().first().toMap().contains(u"Is Selected"_s)) << "the plain record";
}

TEST_F(BonjourDiscoveryTest, SelectedRecordWithoutPlaceOrSerialNumberStays) {
  const auto noSerial = detected(u"Old"_s, u"00-1A-2B-3C-4D-5E"_s);
  auto noPlace = detected(u"Old"_s, u"00-1A-2B-3C-4D-5E"_s, u"S1"_s);
  noPlace.remove(u"Location"_s);
  put(u"Selected Devices"_s, {noSerial, noPlace});
  announce(published(kDen, u"10.0.0.7"_s, texts("S1")));
  EXPECT_EQ(selected(), QVariantList({noSerial, noPlace}));
}

TEST_F(BonjourDiscoveryTest, OnlyTheFirstWholeRecordOfTheSelectedIsRenewed) {
  const auto noSerial = detected(u"Old"_s, u"00-1A-2B-3C-4D-5E"_s);
  const auto whole = passive(detected(u"Old"_s, u"00-1A-2B-3C-4D-5E"_s, u"S1"_s));
  const auto wholeToo = active(detected(u"Older"_s, u"00-1A-2B-3C-4D-5E"_s, u"S1"_s));
  put(u"Selected Devices"_s, {noSerial, whole, wholeToo});
  announce(published(kDen, u"10.0.0.7"_s, texts("S1")));
  ASSERT_EQ(selected().size(), 3);
  EXPECT_EQ(selected().at(0), noSerial);
  EXPECT_EQ(selected().at(1).toMap().value(u"IP Address"_s), u"10.0.0.7"_s);
  EXPECT_EQ(selected().at(1).toMap().value(u"Is Selected"_s), u"No"_s);
  EXPECT_EQ(selected().at(2), wholeToo);
}

TEST_F(BonjourDiscoveryTest, RemovedProductLeavesByItsAddressElseByItsSerialNumber) {
  announce(published(kDen, u"10.0.0.7"_s, texts("S1")));
  announce(published(u"attic [2]"_s, u"10.0.0.8"_s, texts("S2")));
  browser.vanish(named(kDen));
  ASSERT_EQ(detectedDevices().size(), 1);
  EXPECT_EQ(detectedDevices().first().toMap().value(u"Serial Number"_s), u"S2"_s);
  put(u"Detected Devices"_s, {detected(u"Attic"_s, u"other"_s, u"S2"_s)});
  browser.vanish(named(u"attic [2]"_s));
  EXPECT_TRUE(detectedDevices().isEmpty()) << "the serial number is that of the last text record";
  EXPECT_TRUE(tables.detected.isEmpty());
}

TEST_F(BonjourDiscoveryTest, RemovalTakesTheFirstOfTheAddressBeforeAnyOfTheSerialNumber) {
  announce(published(kDen, u"10.0.0.7"_s, texts("S1")));
  const auto sameSerial = detected(u"A"_s, u"other"_s, u"S1"_s);
  const auto sameAddress = detected(u"B"_s, u"00-1A-2B-3C-4D-5E"_s, u"S9"_s);
  const auto sameAddressToo = detected(u"C"_s, u"00-1A-2B-3C-4D-5E"_s, u"S8"_s);
  put(u"Detected Devices"_s, {sameSerial, sameAddress, sameAddressToo});
  browser.vanish(named(kDen));
  EXPECT_EQ(detectedDevices(), QVariantList({sameSerial, sameAddressToo}));
}

TEST_F(BonjourDiscoveryTest, RemovalBySerialNumberTakesTheFirst) {
  announce(published(kDen, u"10.0.0.7"_s, texts("S1")));
  const auto first = detected(u"A"_s, u"other"_s, u"S1"_s);
  const auto second = detected(u"B"_s, u"another"_s, u"S1"_s);
  put(u"Detected Devices"_s, {first, second});
  browser.vanish(named(kDen));
  EXPECT_EQ(detectedDevices(), QVariantList{second});
}

TEST_F(BonjourDiscoveryTest, RemovalWithoutAFileWritesNone) {
  browser.appear(named(kDen));
  browser.vanish(named(kDen));
  EXPECT_FALSE(files.exists(path));
}

TEST_F(BonjourDiscoveryTest, LateOrRefusedAnswersChangeNothing) {
  browser.appear(named(kDen));
  browser.refuse(named(kDen), u"time-out"_s);
  browser.vanish(named(kDen));
  browser.answer(published(kDen, u"10.0.0.7"_s));
  EXPECT_FALSE(files.exists(path));
  EXPECT_TRUE(desktop.lines.isEmpty());
}

TEST_F(BonjourDiscoveryTest, CharactersThatNoFileCanHoldDoNotCostTheList) {
  const auto kept = detected(u"Attic"_s, u"M"_s, u"S9"_s);
  put(u"Detected Devices"_s, {kept});
  announce(published(u"den\x01\x1b [0\x02]"_s, u"10.0.0.7"_s, {{"LOCATION", "a\x01&<b>\xEF\xBF\xBFz"}}));
  ASSERT_EQ(detectedDevices().size(), 2);
  EXPECT_EQ(detectedDevices().first(), QVariant(kept));
  const ProductRecord record = detectedDevices().last().toMap();
  EXPECT_EQ(record.value(u"Host Name"_s), u"den"_s);
  EXPECT_EQ(record.value(u"Mac Address"_s), u"0"_s);
  EXPECT_EQ(record.value(u"Location"_s), u"a&<b>"_s);
}

TEST_F(BonjourDiscoveryTest, StoppedDiscoveryLeavesTheFileAlone) {
  browser.appear(named(kDen));
  discovery.stop();
  EXPECT_EQ(browser.type, QString());
  browser.answer(published(kDen, u"10.0.0.7"_s));
  EXPECT_FALSE(files.exists(path));
}

TEST_F(BonjourDiscoveryTest, TwoHundredAtOnceAreAllRecorded) {
  for (int i = 0; i < 200; ++i) {
    const QString number = QString::number(i);
    announce(published(u"p%1 [%1]"_s.arg(number), u"10.0.1.%1"_s.arg(number), texts("S" + number.toLatin1())));
  }
  EXPECT_EQ(detectedDevices().size(), 200);
  EXPECT_EQ(tables.detected.size(), 200);
}

TEST_F(BonjourDiscoveryTest, EachEventReadsAndWritesTheFileOnceAmongFiveHundredProducts) {
  QVariantList many;
  QVariantList earlierOnes;
  for (int i = 0; i < 500; ++i) {
    const QString number = QString::number(i);
    many.append(detected(u"P"_s + number, u"M"_s + number, u"T"_s + number));
    earlierOnes.append(with(byHand(u"10.1.0."_s + number), u"Mac Address"_s, number));
  }
  put({{u"Detected Devices"_s, many}, {u"Selected Devices"_s, many}, {u"Earlier Connected Devices"_s, earlierOnes}});
  const auto last = published(u"den [M499]"_s, u"10.0.0.7"_s, texts("T499"));
  EXPECT_EQ(costOf([&] { browser.appear(last.service); }), QStringList()) << "found, not yet resolved";
  EXPECT_EQ(costOf([&] { browser.answer(last); }), kReadAndWritten) << "renews two records";
  EXPECT_EQ(detectedDevices().size(), 500);
  EXPECT_EQ(selected().at(499).toMap().value(u"IP Address"_s), u"10.0.0.7"_s);
  EXPECT_EQ(costOf([&] { browser.answer(last); }), QStringList({u"read"_s})) << "nothing new";
  EXPECT_EQ(costOf([&] { announce(published(kDen, u"10.0.0.8"_s, texts("S1"))); }), kReadAndWritten);
  EXPECT_EQ(detectedDevices().size(), 501);
  EXPECT_EQ(costOf([&] { browser.vanish(last.service); }), kReadAndWritten);
  EXPECT_EQ(detectedDevices().size(), 500);
  EXPECT_EQ(selected().size(), 500);
  EXPECT_EQ(earlier(), earlierOnes);
}
