#include "products/ProductListFile.h"

#include "platform/Failure.h"

#include "ProductFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

class ProductListFileTest : public test::ProductTest {
protected:
  ProductListFile file{files, lists, desktop, path};
};

} // namespace

TEST_F(ProductListFileTest, MissingFileIsNoFailure) {
  EXPECT_EQ(file.read(), std::nullopt);
  EXPECT_FALSE(file.exists());
  EXPECT_TRUE(desktop.lines.isEmpty());
}

TEST_F(ProductListFileTest, IsForThisUserOnly) {
  put(u"Selected Devices"_s, {});
  ASSERT_NE(files.mode(path), 0600U);
  file.write({{u"Selected Devices"_s, QVariantList{byHand(u"10.0.0.1"_s)}}});
  EXPECT_EQ(files.mode(path), 0600U);
  EXPECT_EQ(selected(), QVariantList({byHand(u"10.0.0.1"_s)}));
}

TEST_F(ProductListFileTest, OldFileStandsWhenTheDiskIsFull) {
  put(u"Selected Devices"_s, {byHand(u"10.0.0.1"_s)});
  const QByteArray before = files.bytes(path);
  files.failPath(path, FailureKind::DiskFull);
  EXPECT_THROW(file.write({}), Failure);
  files.clearFailures();
  EXPECT_EQ(files.bytes(path), before);
}

TEST_F(ProductListFileTest, FileThatCannotBeParsedIsSetAside) {
  for (const QByteArray &bytes : {QByteArray("<plist>cut"), lists.encodeXml(u"no dictionary"_s), QByteArray()}) {
    files.put(path, bytes);
    desktop.lines.clear();
    EXPECT_EQ(file.read(), std::nullopt) << bytes.toStdString();
    EXPECT_FALSE(files.exists(path));
    ASSERT_EQ(desktop.lines.size(), 1);
    const QString kept = desktop.lines.first().section(u"kept as "_s, 1);
    EXPECT_EQ(files.bytes(kept), bytes) << kept.toStdString();
  }
}

TEST_F(ProductListFileTest, HugeFileIsSetAsideUnread) {
  files.put(path, QByteArray(17 * 1024 * 1024, 'x'));
  EXPECT_EQ(file.read(), std::nullopt);
  EXPECT_FALSE(files.exists(path));
  EXPECT_TRUE(desktop.logged(u"too large"_s));
}

TEST_F(ProductListFileTest, FileThatCannotBeReadIsLeftAlone) {
  put(u"Selected Devices"_s, {byHand(u"10.0.0.1"_s)});
  files.failPath(path, FailureKind::Other);
  EXPECT_THROW(static_cast<void>(file.read()), Failure);
  files.clearFailures();
  EXPECT_EQ(selected(), QVariantList({byHand(u"10.0.0.1"_s)}));
}

TEST_F(ProductListFileTest, OddEntriesArePassedOverAndToldOnce) {
  put({{u"Selected Devices"_s, QVariantList{u"text"_s, byHand(u"10.0.0.1"_s), 5}},
       {u"Detected Devices"_s, u"no array"_s}});
  for (int i = 0; i < 2; ++i) {
    const auto content = file.read();
    ASSERT_TRUE(content);
    EXPECT_EQ(productRecords(*content, kSelectedDevices), ProductRecords({byHand(u"10.0.0.1"_s)}));
    EXPECT_EQ(productRecords(*content, kDetectedDevices), ProductRecords());
  }
  EXPECT_EQ(desktop.lines, QStringList({path + u": \"Detected Devices\" is no array; 2 of the entries of "
                                               u"\"Selected Devices\" are no records"_s}));
}

TEST_F(ProductListFileTest, OddEntriesAreKeptInACopyBeforeTheyAreWrittenOver) {
  const QVariantMap odd{{u"Selected Devices"_s, QVariantList{u"text"_s, byHand(u"10.0.0.1"_s)}},
                        {u"Manually Added Devices"_s, QVariantMap{{u"a"_s, u"b"_s}}}};
  put(odd);
  products.clearDetectedDevices();
  EXPECT_EQ(content(), odd) << "nothing to write";
  products.AddManualProduct(u"10.0.0.2"_s, {});
  products.AddManualProduct(u"10.0.0.3"_s, {});
  EXPECT_EQ(records(u"Manually Added Devices"_s), QVariantList({byHand(u"10.0.0.2"_s), byHand(u"10.0.0.3"_s)}));
  const QString copy = path + u".before-change-1"_s;
  EXPECT_EQ(lists.decode(files.bytes(copy)).toMap(), odd);
  EXPECT_EQ(files.mode(copy), 0600U);
  EXPECT_FALSE(files.exists(path + u".before-change-2"_s));
  EXPECT_TRUE(desktop.logged(u"what it held is kept as "_s + copy));
}

TEST_F(ProductListFileTest, CutFileIsReadWholeOrSetAside) {
  const QVariantMap whole{{u"Selected Devices"_s, QVariantList{byHand(u"10.0.0.1"_s), byHand({}, u"box"_s)}}};
  const QByteArray bytes = lists.encodeXml(whole);
  for (qsizetype length = 0; length < bytes.size(); ++length) {
    files.put(path, bytes.left(length));
    desktop.lines.clear();
    if (const auto read = file.read()) {
      EXPECT_EQ(*read, whole) << "cut at " << length;
    } else {
      ASSERT_EQ(desktop.lines.size(), 1) << "cut at " << length;
      EXPECT_EQ(files.bytes(desktop.lines.first().section(u"kept as "_s, 1)), bytes.left(length));
    }
  }
}

TEST_F(ProductListFileTest, FolderThatTakesNothingCostsNothing) {
  put(u"Selected Devices"_s, {active(byHand(u"10.0.0.1"_s)), passive(byHand(u"10.0.0.2"_s))});
  const QByteArray before = files.bytes(path);
  products.load();
  files.setFreeBytes(u"/"_s, 0);
  EXPECT_FALSE(products.markActive({1, {}}));
  products.addDetectedDevice(detected(u"Vault"_s, u"00-11"_s));
  EXPECT_EQ(files.bytes(path), before);
  EXPECT_EQ(tables.selected.size(), 2);
  EXPECT_TRUE(desktop.logged(u"Exception in ---> <AppController><onProductSelection> "_s));
  EXPECT_TRUE(desktop.logged(u"Exception in ---> <AppController><netServiceDidResolveAddress> "_s));
}
