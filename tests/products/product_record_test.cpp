#include "products/ProductRecord.h"

#include "ProductFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

class ProductRecordTest : public test::ProductTest {};

} // namespace

TEST_F(ProductRecordTest, DetectedProductsAreTheSameByHardwareAddressOrSerialNumber) {
  const auto one = detected(u"A"_s, u"00-11"_s, u"S1"_s);
  EXPECT_TRUE(sameDetectedProduct(one, detected(u"B"_s, u"00-11"_s, u"S2"_s)));
  EXPECT_TRUE(sameDetectedProduct(one, detected(u"B"_s, u"00-22"_s, u"S1"_s)));
  EXPECT_FALSE(sameDetectedProduct(one, detected(u"A"_s, u"00-22"_s, u"S2"_s)));
}

TEST_F(ProductRecordTest, DefaultTextCountsAsAnyOther) {
  EXPECT_TRUE(sameDetectedProduct(detected(u"A"_s, u"00-11"_s, u"NOSERIALNUMBERSET"_s),
                                  detected(u"B"_s, u"00-22"_s, u"NOSERIALNUMBERSET"_s)));
}

TEST_F(ProductRecordTest, KeyThatIsMissingOnBothSidesMakesNoMatch) {
  EXPECT_FALSE(sameDetectedProduct(detected(u"A"_s, u"00-11"_s), detected(u"A"_s, u"00-22"_s)));
  EXPECT_FALSE(sameManualEntry(byHand(u"10.0.0.1"_s), byHand(u"10.0.0.2"_s)));
  EXPECT_FALSE(sameManualEntry(byHand({}, u"box"_s), byHand(u"10.0.0.2"_s)));
}

TEST_F(ProductRecordTest, ManualEntriesAreTheSameByHostOrAddress) {
  EXPECT_TRUE(sameManualEntry(byHand(u"10.0.0.1"_s, u"a"_s), byHand(u"10.0.0.1"_s, u"b"_s)));
  EXPECT_TRUE(sameManualEntry(byHand(u"10.0.0.1"_s, u"a"_s), byHand(u"10.0.0.2"_s, u"a"_s)));
}

TEST_F(ProductRecordTest, SelectedListComparesWhatIsGiven) {
  const auto both = byHand(u"10.0.0.1"_s, u"box"_s);
  EXPECT_TRUE(sameSelectedProduct(both, byHand(u"10.0.0.1"_s)));
  EXPECT_TRUE(sameSelectedProduct(both, byHand({}, u"box"_s)));
  EXPECT_TRUE(sameSelectedProduct(both, both));
  EXPECT_FALSE(sameSelectedProduct(both, byHand(u"10.0.0.1"_s, u"other"_s)));
  EXPECT_FALSE(sameSelectedProduct(byHand(u"10.0.0.1"_s), both));
}

TEST_F(ProductRecordTest, DetectedProductIsNeverTheSameAsOneAddedByHand) {
  EXPECT_FALSE(sameSelectedProduct(detected(u"A"_s, u"00-11"_s), byHand(u"10.0.0.1"_s)));
  EXPECT_FALSE(
      sameSelectedProduct(with(byHand(u"10.0.0.1"_s), u"Mac Address"_s, u"00-11"_s), detected(u"A"_s, u"00-11"_s)));
}

TEST_F(ProductRecordTest, AddressIsTheIpAddressElseTheHostName) {
  EXPECT_EQ(connectionAddress(byHand(u"10.0.0.1"_s, u"box"_s)), u"10.0.0.1"_s);
  EXPECT_EQ(connectionAddress(byHand({}, u"box"_s)), u"box"_s);
  EXPECT_EQ(connectionAddress(byHand(u"NOIPADDRESSSET"_s, u"box"_s)), u"box"_s);
  EXPECT_EQ(connectionAddress(byHand(u"NOADDRESSSET"_s, u"box"_s)), u"box"_s);
  EXPECT_EQ(connectionAddress(byHand(u"NOIPADDRESSSET"_s, u"NOHOSTNAMESET"_s)), QString());
  EXPECT_EQ(connectionAddress({}), QString());
}

TEST_F(ProductRecordTest, ValueOfAWrongTypeReadsAsAbsent) {
  EXPECT_EQ(productText({{u"Host Name"_s, 7}}, u"Host Name", u"none"), u"none"_s);
  EXPECT_FALSE(isActive({{u"Is Selected"_s, true}}));
  EXPECT_FALSE(isActive({{u"Is Selected"_s, u"YES"_s}}));
  EXPECT_EQ(activeIndex({byHand(u"1"_s), active(byHand(u"2"_s)), active(byHand(u"3"_s))}), 1);
  EXPECT_EQ(activeIndex({}), -1);
}
