#include "products/ProductRows.h"

#include "ProductFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

class ProductRowsTest : public test::ProductTest {
protected:
  ProductRecord inKitchen = with(detected(u"Vault"_s, u"00-11"_s), u"Location"_s, u"Kitchen"_s);
};

std::function<bool(const QString &)> room(qsizetype characters) {
  return [characters](const QString &text) { return text.size() <= characters; };
}

} // namespace

TEST_F(ProductRowsTest, DetectedRowNamesProductHostAndLocation) {
  EXPECT_EQ(detectedRowText(inKitchen), u"Vault (vault,Kitchen)"_s);
  EXPECT_EQ(detectedRowText(detected(u"Vault"_s, u"00-11"_s)), u"Vault (vault)"_s);
  EXPECT_EQ(detectedRowText({}), u"NOPRODUCTNAMESET (NOHOSTNAMESET)"_s);
}

TEST_F(ProductRowsTest, AddedRowNamesWhatIsKnown) {
  EXPECT_EQ(addedRowText(byHand(u"10.0.0.1"_s)), u"10.0.0.1"_s);
  EXPECT_EQ(addedRowText(byHand({}, u"box"_s)), u"box"_s);
  EXPECT_EQ(addedRowText(byHand(u"10.0.0.1"_s, u"box"_s)), u"box (10.0.0.1)"_s);
}

TEST_F(ProductRowsTest, SelectedRowMarksWhatWasAddedByHand) {
  EXPECT_EQ(selectedRowText(inKitchen), u"Vault (vault,Kitchen)"_s);
  EXPECT_EQ(selectedRowText(byHand(u"10.0.0.1"_s, u"box"_s)), u"box (10.0.0.1) * "_s);
  EXPECT_EQ(productRowTexts(ProductTable::Selected, {byHand(u"1.2.3.4"_s), inKitchen}),
            QStringList({u"1.2.3.4 * "_s, u"Vault (vault,Kitchen)"_s}));
}

TEST_F(ProductRowsTest, TextThatDoesNotFitIsCutWithDots) {
  EXPECT_EQ(chopStringforStar(u"living room"_s, room(11)), u"living room"_s);
  EXPECT_EQ(chopStringforStar(u"living room"_s, room(9)), u"living..."_s);
  EXPECT_EQ(chopStringforStar(u"living room"_s, room(0)), u"..."_s);
  EXPECT_EQ(chopStringforStar(u"ab\U0001F3B5cdefgh"_s, room(6)), u"ab..."_s) << "no half character";
}

TEST_F(ProductRowsTest, DockEntryLeavesOutWhatIsNotKnown) {
  EXPECT_EQ(dockMenuEntry(inKitchen), u"Vault (Kitchen, vault)"_s);
  EXPECT_EQ(dockMenuEntry(detected(u"Vault"_s, u"00-11"_s)), u"Vault (vault)"_s);
  EXPECT_EQ(dockMenuEntry(byHand(u"10.0.0.1"_s, u"box"_s)), u"box (10.0.0.1)"_s);
  EXPECT_EQ(dockMenuEntry(byHand(u"10.0.0.1"_s)), u"10.0.0.1"_s);
  EXPECT_EQ(dockMenuEntry(byHand({}, u"box"_s)), u"box"_s);
  EXPECT_EQ(dockMenuEntries({byHand({}, u"box"_s), inKitchen}), QStringList({u"box"_s, u"Vault (Kitchen, vault)"_s}));
}
