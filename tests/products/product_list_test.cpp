#include "products/ProductList.h"

#include "platform/Failure.h"

#include "ProductFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

class ProductListTest : public test::ProductTest {};

} // namespace

TEST_F(ProductListTest, LoadsSelectedAndAddedProductsButNotTheDetectedOnes) {
  put({{u"Detected Devices"_s, QVariantList{detected(u"Old"_s, u"00"_s)}},
       {u"Manually Added Devices"_s, QVariantList{byHand(u"10.0.0.2"_s)}},
       {u"Selected Devices"_s, QVariantList{byHand(u"10.0.0.3"_s), active(byHand(u"10.0.0.4"_s))}}});
  products.load();
  EXPECT_EQ(tables.detected, QStringList());
  EXPECT_EQ(tables.added, QStringList({u"10.0.0.2"_s}));
  EXPECT_EQ(tables.selected, QStringList({u"10.0.0.3 * "_s, u"10.0.0.4 * "_s}));
  EXPECT_EQ(tables.active, 1);
}

TEST_F(ProductListTest, RemovesTheDetectedProductsAndNothingElse) {
  put({{u"Detected Devices"_s, QVariantList{detected(u"Old"_s, u"00"_s)}}, {u"Other"_s, 7}});
  products.clearDetectedDevices();
  EXPECT_EQ(content(), QVariantMap({{u"Other"_s, 7LL}}));
}

TEST_F(ProductListTest, MakesNoFileOnlyToRemoveFromIt) {
  products.clearDetectedDevices();
  EXPECT_FALSE(files.exists(path));
}

TEST_F(ProductListTest, AddsAProductByHand) {
  products.AddManualProduct(u"10.0.0.2"_s, {});
  products.AddManualProduct({}, u"box"_s);
  EXPECT_EQ(records(u"Manually Added Devices"_s),
            QVariantList({QVariantMap{{u"IP Address"_s, u"10.0.0.2"_s}, {u"Detection Type"_s, u"1"_s}},
                          QVariantMap{{u"Host Name"_s, u"box"_s}, {u"Detection Type"_s, u"1"_s}}}));
  EXPECT_EQ(tables.added, QStringList({u"10.0.0.2"_s, u"box"_s}));
  EXPECT_EQ(alerts(), QStringList());
}

TEST_F(ProductListTest, NeitherAddressNorHostAddsNothing) {
  products.AddManualProduct({}, {});
  EXPECT_FALSE(files.exists(path));
}

TEST_F(ProductListTest, SameHostOrAddressByHandIsRefusedWithAnAlert) {
  products.AddManualProduct(u"10.0.0.2"_s, u"box"_s);
  const QByteArray before = files.bytes(path);
  products.AddManualProduct(u"10.0.0.3"_s, u"box"_s);
  products.AddManualProduct(u"10.0.0.2"_s, u"other"_s);
  EXPECT_EQ(files.bytes(path), before);
  EXPECT_EQ(alerts(), QStringList({kAlreadyAdded, kAlreadyAdded}));
}

TEST_F(ProductListTest, DetectedProductIsTakenOver) {
  put(u"Detected Devices"_s, {detected(u"A"_s, u"00-11"_s), detected(u"B"_s, u"00-22"_s)});
  products.AddDetectedProductToProductsList({1, {}});
  EXPECT_EQ(selected(), QVariantList({passive(detected(u"B"_s, u"00-22"_s))}));
  EXPECT_EQ(tables.selected, QStringList({u"B (b)"_s}));
}

TEST_F(ProductListTest, SameProductTwiceIsReplacedAndKeepsItsMark) {
  const auto renamed = detected(u"New name"_s, u"00-11"_s);
  put({{u"Detected Devices"_s, QVariantList{renamed}},
       {u"Selected Devices"_s, QVariantList{passive(byHand(u"10.0.0.9"_s)),
                                            active(with(detected(u"A"_s, u"00-11"_s), u"Password"_s, u"x"_s))}}});
  products.AddDetectedProductToProductsList({0, {}});
  EXPECT_EQ(selected(), QVariantList({passive(byHand(u"10.0.0.9"_s)), active(renamed)}));
  EXPECT_EQ(alerts(), QStringList({kAlreadyAdded}));
}

TEST_F(ProductListTest, AddedProductIsTakenOver) {
  put(u"Manually Added Devices"_s, {byHand(u"10.0.0.2"_s)});
  products.AddManuallyAddedProductToProductsList({0, u"10.0.0.2"_s});
  EXPECT_EQ(selected(), QVariantList({passive(byHand(u"10.0.0.2"_s))}));
}

TEST_F(ProductListTest, RowThatIsNotThereOrHasChangedIsLeftAlone) {
  put(u"Manually Added Devices"_s, {byHand(u"10.0.0.2"_s)});
  const QByteArray before = files.bytes(path);
  for (const ProductRow &row :
       {ProductRow{-1, {}}, ProductRow{1, {}}, ProductRow{0, u"10.0.0.3"_s}, ProductRow{0, u""_s}}) {
    products.AddManuallyAddedProductToProductsList(row);
    products.AddDetectedProductToProductsList(row);
    products.RemoveAManualProductFromList(row);
    EXPECT_EQ(products.removeSelectedProduct(row, ProductList::Active::Remove), std::nullopt);
    EXPECT_FALSE(products.markActive(row));
  }
  EXPECT_EQ(files.bytes(path), before);
}

TEST_F(ProductListTest, RemovesARowOfTheAddedProducts) {
  put(u"Manually Added Devices"_s, {byHand(u"10.0.0.2"_s), byHand(u"10.0.0.3"_s)});
  products.RemoveAManualProductFromList({0, {}});
  EXPECT_EQ(records(u"Manually Added Devices"_s), QVariantList({byHand(u"10.0.0.3"_s)}));
}

TEST_F(ProductListTest, MarksOneAndUnmarksTheOthers) {
  put(u"Selected Devices"_s, {active(byHand(u"1"_s)), byHand(u"2"_s), byHand(u"3"_s)});
  const auto marked = products.markActive({2, {}});
  ASSERT_TRUE(marked);
  EXPECT_FALSE(marked->wasActive);
  EXPECT_EQ(marked->record, active(byHand(u"3"_s)));
  EXPECT_EQ(selected(), QVariantList({passive(byHand(u"1"_s)), passive(byHand(u"2"_s)), active(byHand(u"3"_s))}));
  EXPECT_EQ(tables.active, 2);
  EXPECT_TRUE(products.markActive({2, {}})->wasActive);
}

TEST_F(ProductListTest, ActionThatCannotWriteChangesNothingAndIsToldToTheUser) {
  put({{u"Detected Devices"_s, QVariantList{detected(u"A"_s, u"00-11"_s)}},
       {u"Manually Added Devices"_s, QVariantList{byHand(u"10.0.0.2"_s)}},
       {u"Selected Devices"_s, QVariantList{passive(byHand(u"10.0.0.9"_s))}}});
  products.load();
  const QByteArray before = files.bytes(path);
  const ProductTables shownBefore = tables;
  files.setFreeBytes(u"/"_s, 0);
  const QList<std::pair<QString, std::function<void()>>> actions{
      {u"AddManualProduct"_s, [&] { products.AddManualProduct(u"10.0.0.3"_s, {}); }},
      {u"AddDetectedProductToProductsList"_s,
       [&] {
         products.AddDetectedProductToProductsList({0, {}});
       }},
      {u"AddManuallyAddedProductToProductsList"_s,
       [&] {
         products.AddManuallyAddedProductToProductsList({0, {}});
       }},
      {u"RemoveAManualProductFromList"_s,
       [&] {
         products.RemoveAManualProductFromList({0, {}});
       }},
      {u"onProductSelection"_s,
       [&] {
         EXPECT_FALSE(products.markActive({0, {}}));
       }},
      {u"RemoveAProductProductsList"_s,
       [&] {
         EXPECT_FALSE(products.removeSelectedProduct({0, {}}, ProductList::Active::Remove));
       }},
      {u"RemoveWholeProductsFromProductList"_s,
       [&] { EXPECT_TRUE(products.removeAllSelectedProducts(ProductList::Active::Remove)); }},
  };
  for (const auto &[name, action] : actions) {
    view.calls.clear();
    desktop.lines.clear();
    action();
    EXPECT_EQ(alerts(), QStringList({kNotChanged})) << name.toStdString();
    EXPECT_TRUE(desktop.logged(u"Exception in ---> <AppController><%1> "_s.arg(name))) << name.toStdString();
  }
  EXPECT_EQ(files.bytes(path), before);
  EXPECT_EQ(tables.added, shownBefore.added);
  EXPECT_EQ(tables.selected, shownBefore.selected);
}

TEST_F(ProductListTest, WhatNobodyAskedForFailsWithoutAnAlert) {
  put({{u"Detected Devices"_s, QVariantList{detected(u"A"_s, u"00-11"_s)}},
       {u"Selected Devices"_s, QVariantList{active(byHand(u"10.0.0.9"_s))}}});
  files.setFreeBytes(u"/"_s, 0);
  products.clearDetectedDevices();
  products.addDetectedDevice(detected(u"B"_s, u"00-22"_s));
  products.removeDetectedDevice(detected(u"A"_s, u"00-11"_s));
  products.updateProductInfoInProductsLists(u"10.0.0.9"_s);
  EXPECT_EQ(desktop.lines.size(), 4);
  EXPECT_EQ(alerts(), QStringList());
}

TEST_F(ProductListTest, DamagedFileIsSetAsideBeforeANewOneIsWritten) {
  files.put(path, "garbage");
  products.AddManualProduct(u"10.0.0.3"_s, {});
  EXPECT_EQ(records(u"Manually Added Devices"_s), QVariantList({byHand(u"10.0.0.3"_s)}));
  const QString kept = desktop.lines.value(0).section(u"kept as "_s, 1);
  EXPECT_EQ(files.bytes(kept), QByteArray("garbage"));
}

TEST_F(ProductListTest, UnknownKeysAreKept) {
  const auto odd = with(byHand(u"10.0.0.2"_s), u"indexNo"_s, u"4"_s);
  put({{u"Manually Added Devices"_s, QVariantList{odd}}, {u"Later version"_s, true}});
  products.AddManuallyAddedProductToProductsList({0, {}});
  EXPECT_EQ(content().value(u"Later version"_s), QVariant(true));
  EXPECT_EQ(selected(), QVariantList({passive(odd)}));
}
