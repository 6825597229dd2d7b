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
