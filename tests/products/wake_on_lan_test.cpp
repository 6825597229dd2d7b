#include "products/WakeOnLan.h"

#include "support/FakeClock.h"
#include "support/FakeDatagrams.h"

#include "ProductFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

const auto kBytes = QByteArray::fromHex("001A2B3C4D5E");

class WakeOnLanTest : public ProductTest {
protected:
  void wake(const QString &address = u"10.0.0.2"_s) {
    WakeOnLan(products, datagrams, clock, desktop, {[] { return std::stop_token(); }, [this] { ++told; }})
        .WakeupOnLanAProduct(address);
  }
  // The six bytes of the one packet that was sent; empty when there was none.
  QByteArray woken() { return datagrams.sent.size() == 1 ? datagrams.sent.first().bytes.mid(6, 6) : QByteArray(); }

  FakeDatagrams datagrams;
  FakeClock clock;
  int told = 0;
};

ProductRecord addressed(ProductRecord record, const QString &mac) {
  record.insert(u"Mac Address"_s, mac);
  return record;
}

} // namespace

TEST_F(WakeOnLanTest, SendsTheMagicPacketOfTheActiveProductAndWaitsASecond) {
  put(u"Selected Devices"_s, {addressed(byHand(u"10.0.0.1"_s), u"11-11-11-11-11-11"_s),
                              active(addressed(byHand(u"10.0.0.2"_s), u"00-1A-2B-3C-4D-5E"_s))});
  wake();
  ASSERT_EQ(datagrams.sent.size(), 1);
  const QByteArray packet = datagrams.sent.first().bytes;
  EXPECT_EQ(packet.size(), 102);
  EXPECT_EQ(packet.toHex(), QByteArray("ffffffffffff") + QByteArray("001a2b3c4d5e").repeated(16));
  EXPECT_EQ(datagrams.sent.first().address, u"255.255.255.255"_s);
  EXPECT_EQ(datagrams.sent.first().port, 9);
  EXPECT_EQ(clock.sleeps, QList<std::chrono::milliseconds>({1s}));
  EXPECT_EQ(told, 1);
}

TEST_F(WakeOnLanTest, EarlierConnectionHelpsWhenTheActiveProductHasNoAddress) {
  for (const QString &none : {QString(), u"NOMACADDRESS"_s, u"NOMACADDRESSSET"_s}) {
    datagrams.sent.clear();
    auto chosen = active(byHand(u"10.0.0.2"_s));
    if (!none.isEmpty()) {
      chosen = addressed(chosen, none);
    }
    put({{u"Selected Devices"_s, QVariantList{chosen}},
         {u"Earlier Connected Devices"_s,
          QVariantList{addressed(with(byHand(u"10.0.0.2"_s), u"Detection Type"_s, u"0"_s), u"22-22-22-22-22-22"_s),
                       addressed(byHand(u"10.0.0.3"_s), u"33-33-33-33-33-33"_s),
                       addressed(byHand(u"10.0.0.2"_s), u"00-1A-2B-3C-4D-5E"_s)}}});
    wake();
    EXPECT_EQ(woken(), kBytes) << none.toStdString();
  }
}

TEST_F(WakeOnLanTest, NothingIsSentWithoutAnAddress) {
  wake();
  put({{u"Selected Devices"_s, QVariantList{active(addressed(byHand(u"10.0.0.2"_s), u"NOMACADDRESS"_s))}},
       {u"Earlier Connected Devices"_s, QVariantList{addressed(byHand(u"10.0.0.2"_s), u"NOMACADDRESS"_s)}}});
  wake();
  EXPECT_TRUE(datagrams.sent.isEmpty());
  EXPECT_TRUE(clock.sleeps.isEmpty());
  EXPECT_EQ(told, 0);
  EXPECT_TRUE(desktop.lines.isEmpty());
}

TEST_F(WakeOnLanTest, NothingIsSentWithoutASelectedProductAndAnEarlierOneOfThisAddress) {
  put({{u"Selected Devices"_s, QVariantList{passive(addressed(byHand(u"10.0.0.2"_s), u"11-11-11-11-11-11"_s))}},
       {u"Earlier Connected Devices"_s, QVariantList{addressed(byHand(u"10.0.0.3"_s), u"00-1A-2B-3C-4D-5E"_s)}}});
  wake();
  EXPECT_TRUE(datagrams.sent.isEmpty());
  EXPECT_TRUE(clock.sleeps.isEmpty());
}

TEST_F(WakeOnLanTest, OtherSeparatorsAreReadAsDigitsThatCountZero) {
  put(u"Selected Devices"_s, {active(addressed(byHand(u"10.0.0.2"_s), u"00:1A:2B:3C:4D:5E"_s))});
  wake();
  EXPECT_EQ(woken().toHex(), QByteArray("0001a02b03c0")) << "00 :1 A: 2B :3 C:";
  EXPECT_EQ(desktop.lines.size(), 1);
}

TEST_F(WakeOnLanTest, ShortAddressSendsNothingAndIsToldInTheLog) {
  put(u"Selected Devices"_s, {active(addressed(byHand(u"10.0.0.2"_s), u"00-1A-2B-3C-4D-E"_s))});
  wake();
  EXPECT_TRUE(datagrams.sent.isEmpty());
  EXPECT_TRUE(clock.sleeps.isEmpty());
  EXPECT_EQ(desktop.lines.size(), 1);
}

TEST_F(WakeOnLanTest, RefusedPacketIsIgnored) {
  datagrams.taken = false;
  put(u"Selected Devices"_s, {active(addressed(byHand(u"10.0.0.2"_s), u"00-1A-2B-3C-4D-5E"_s))});
  wake();
  EXPECT_EQ(datagrams.sent.size(), 1);
  EXPECT_EQ(clock.sleeps.size(), 1);
  EXPECT_TRUE(desktop.lines.isEmpty());
}

TEST(HardwareBytesTest, LowerCaseAndLongTexts) {
  EXPECT_EQ(hardwareBytes(u"001a2b3c4d5e"_s), kBytes);
  EXPECT_EQ(hardwareBytes(u"00-1A-2B-3C-4D-5E-FF"_s), kBytes);
  EXPECT_EQ(hardwareBytes({}), std::nullopt);
}
