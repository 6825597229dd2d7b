#include "core/ShippedDefaults.h"

#include "FakePlatform.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

class ShippedDefaultsTest : public testing::Test {
protected:
  ShippedDefaultsTest() {
    fakes.install();
    fakes.files.clearLog();
  }
  void install() { ShippedDefaults(fakes.files, fakes.propertyLists, fakes.desktop, fakes.paths).install(); }

  FakePlatform fakes;
  const QString properties = fakes.paths.PFPath;
  const QString dropper = fakes.paths.dropperPropertyFilePath;
};

} // namespace

TEST_F(ShippedDefaultsTest, CopiesWhatIsMissing) {
  fakes.files.erase(properties);
  fakes.files.erase(dropper);
  install();
  EXPECT_EQ(fakes.dictionary(properties).value(u"Volume"_s), u"/Volumes/"_s);
  EXPECT_EQ(fakes.files.mode(properties), 0600U);
  EXPECT_EQ(fakes.dictionary(dropper), QVariantMap({{u"DeviceConnected"_s, QString()}}));
}

TEST_F(ShippedDefaultsTest, AddsNewKeysAndKeepsWhatTheUserHas) {
  fakes.change(properties, {{u"Username"_s, u"anna"_s}, {u"VideoFolder"_s, QVariant()}, {u"Own"_s, u"kept"_s}});
  install();
  const QVariantMap values = fakes.dictionary(properties);
  EXPECT_EQ(values.value(u"Username"_s), u"anna"_s);
  EXPECT_EQ(values.value(u"VideoFolder"_s), u"/Video/"_s);
  EXPECT_EQ(values.value(u"Own"_s), u"kept"_s);
}

TEST_F(ShippedDefaultsTest, WritesNothingWhenNothingIsNew) {
  install();
  EXPECT_EQ(fakes.files.log().filter(u"write"_s), QStringList());
}

TEST_F(ShippedDefaultsTest, SetsADamagedFileAside) {
  fakes.files.put(properties, "<plist>");
  install();
  EXPECT_EQ(fakes.dictionary(properties).value(u"Shared Folder"_s), u"VB-SHARE$"_s);
  EXPECT_EQ(fakes.files.bytes(properties + u".damaged"_s), QByteArray("<plist>"));
  EXPECT_TRUE(fakes.desktop.logged(u"is damaged"_s));
}

TEST_F(ShippedDefaultsTest, LogsAFailureAndLeavesTheRest) {
  fakes.files.erase(properties);
  fakes.files.erase(dropper);
  fakes.files.failPath(properties, FailureKind::DiskFull);
  install();
  EXPECT_TRUE(fakes.desktop.logged(properties + u" could not be prepared"_s));
  EXPECT_TRUE(fakes.files.exists(dropper));
}

TEST_F(ShippedDefaultsTest, DoesNothingWhereNothingIsShipped) {
  fakes.files.erase(fakes.paths.resourceFilePath + u"App Data"_s);
  fakes.files.erase(properties);
  install();
  EXPECT_FALSE(fakes.files.exists(properties));
}
