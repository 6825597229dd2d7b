#include "StartUpFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const auto kMachineFolder = u"/Library/Application Support/Sonorel"_s;
const auto kMachinePreferences = u"/Library/Application Support/Sonorel/LastPreferences.plist"_s;
const auto kProducts = u"/Users/anna/Library/Application Support/Sonorel/DevicesDetails.xml"_s;
const auto kProperties = u"/Applications/Sonorel/App Data/MacClientProperty"_s;
const auto kReceipt = u"/Volumes/Old Disk/Library/Receipts/Sonorel 1.0.pkg/Contents/Info.plist"_s;

class CarryOverTest : public StartUpTest {
protected:
  CarryOverTest() { fakes.install(); }

  void receipt(const QString &relocatedPath) {
    fakes.files.mount(u"/Volumes/Old Disk"_s, u"hfs"_s);
    fakes.putDictionary(kReceipt, {{u"IFPkgRelocatedPath"_s, relocatedPath}});
  }
};

const QVariantMap kCarried{{u"IPAddress"_s, u"192.168.1.20"_s},
                           {u"Password"_s, QByteArray("archived")},
                           {u"Username"_s, u"anna"_s},
                           {u"MACAdress"_s, QByteArray("192.168.1.20\n00-1A-2B-3C-4D-5E\n")}};

} // namespace

TEST_F(CarryOverTest, TakesOverWhatTheMachineWidePreferencesHold) {
  fakes.putDictionary(kMachinePreferences, kCarried);
  ASSERT_TRUE(startUp.init());
  const QVariantMap properties = fakes.dictionary(kProperties);
  for (auto value = kCarried.begin(); value != kCarried.end(); ++value) {
    EXPECT_EQ(properties.value(value.key()), value.value()) << value.key().toStdString();
  }
  const QVariantMap record{{u"Is Selected"_s, u"No"_s},
                           {u"Detection Type"_s, u"1"_s},
                           {u"Password"_s, QByteArray("archived")},
                           {u"IP Address"_s, u"192.168.1.20"_s},
                           {u"Mac Address"_s, u"00-1A-2B-3C-4D-5E"_s}};
  EXPECT_EQ(fakes.dictionary(kProducts), QVariantMap({{u"Selected Devices"_s, QVariantList{record}}}));
  EXPECT_EQ(fakes.files.mode(kProducts), 0600U);
  EXPECT_EQ(fakes.dictionary(kMachinePreferences), kCarried);
}

TEST_F(CarryOverTest, BeginsTheMachineWideFolderAnew) {
  fakes.putDictionary(kMachinePreferences, kCarried);
  fakes.files.put(kMachineFolder + u"/ArtworkData.txt"_s, "old");
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(fakes.files.tree(kMachineFolder).keys(), QStringList({u"LastPreferences.plist"_s}));
  EXPECT_EQ(fakes.files.mode(kMachineFolder), 0777U);
  EXPECT_EQ(fakes.files.mode(kMachinePreferences), 0777U);
}

TEST_F(CarryOverTest, DamagedPreferencesOutliveTheFolder) {
  fakes.files.put(kMachinePreferences, "<plist><dict>");
  ASSERT_TRUE(startUp.init());
  const auto kept = u"/Library/Application Support/Sonorel LastPreferences.plist.damaged"_s;
  EXPECT_EQ(fakes.files.bytes(kept), QByteArray("<plist><dict>"));
  EXPECT_TRUE(fakes.desktop.logged(kMachinePreferences + u" is damaged"_s));
  EXPECT_TRUE(fakes.desktop.logged(u"kept as "_s + kept));
  EXPECT_EQ(fakes.files.tree(kMachineFolder).keys(), QStringList({u"LastPreferences.plist"_s}));
  EXPECT_EQ(fakes.dictionary(kMachinePreferences), QVariantMap());
}

TEST_F(CarryOverTest, KeepsAProductListThatExists) {
  fakes.putDictionary(kMachinePreferences, kCarried);
  fakes.putDictionary(kProducts, {{u"Manually Added Devices"_s, QVariantList()}});
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(fakes.dictionary(kProducts), QVariantMap({{u"Manually Added Devices"_s, QVariantList()}}));
}

TEST_F(CarryOverTest, TakesNothingFromPreferencesWithoutAPassword) {
  fakes.putDictionary(kMachinePreferences, {{u"IPAddress"_s, u"192.168.1.20"_s}, {u"Username"_s, u"anna"_s}});
  ASSERT_TRUE(startUp.init());
  EXPECT_FALSE(fakes.dictionary(kProperties).contains(u"IPAddress"_s));
  EXPECT_EQ(fakes.dictionary(kProperties).value(u"Username"_s), u"vaultbox"_s);
  EXPECT_FALSE(fakes.files.exists(kProducts));
}

TEST_F(CarryOverTest, ValueOfAWrongTypeCountsAsMissing) {
  for (const QString &key : {u"IPAddress"_s, u"Password"_s, u"Username"_s}) {
    QVariantMap carried = kCarried;
    carried.insert(key, 7);
    fakes.putDictionary(kMachinePreferences, carried);
    ASSERT_TRUE(startUp.init());
    EXPECT_FALSE(fakes.dictionary(kProperties).contains(u"IPAddress"_s)) << key.toStdString();
    EXPECT_FALSE(fakes.files.exists(kProducts)) << key.toStdString();
  }
  QVariantMap carried = kCarried;
  carried.insert(u"MACAdress"_s, u"first line\n00-1A-2B-3C-4D-5E"_s);
  fakes.putDictionary(kMachinePreferences, carried);
  ASSERT_TRUE(startUp.init());
  EXPECT_FALSE(fakes.dictionary(kProperties).contains(u"MACAdress"_s));
  const QVariantMap record = fakes.dictionary(kProducts).value(u"Selected Devices"_s).toList().first().toMap();
  EXPECT_EQ(record.keys(), QStringList({u"Detection Type"_s, u"IP Address"_s, u"Is Selected"_s, u"Password"_s}));
}

TEST_F(CarryOverTest, HardwareAddressStartsBehindTheFirstLineFeedAlsoAfterACarriageReturn) {
  QVariantMap carried = kCarried;
  carried.insert(u"MACAdress"_s, QByteArray("192.168.1.20\r\n00:1a:2b:3c:4d:5eXYZ\n11-11-11-11-11-11"));
  fakes.putDictionary(kMachinePreferences, carried);
  ASSERT_TRUE(startUp.init());
  const QVariantMap record = fakes.dictionary(kProducts).value(u"Selected Devices"_s).toList().first().toMap();
  EXPECT_EQ(record.value(u"Mac Address"_s), u"00:1a:2b:3c:4d:5e"_s);
}

TEST_F(CarryOverTest, LeavesOutAHardwareAddressThatIsTooShort) {
  QVariantMap carried = kCarried;
  carried.insert(u"MACAdress"_s, QByteArray("192.168.1.20\n00-1A-2B"));
  fakes.putDictionary(kMachinePreferences, carried);
  ASSERT_TRUE(startUp.init());
  const QVariantMap record = fakes.dictionary(kProducts).value(u"Selected Devices"_s).toList().first().toMap();
  EXPECT_FALSE(record.contains(u"Mac Address"_s));
  EXPECT_EQ(record.value(u"IP Address"_s), u"192.168.1.20"_s);
}

TEST_F(CarryOverTest, TakesNothingOverAfterTheFirstLaunch) {
  fakes.change(kProperties, {{u"FirstLaunch"_s, u"No"_s}});
  fakes.putDictionary(kMachinePreferences, kCarried);
  fakes.files.put(kMachineFolder + u"/ArtworkData.txt"_s, "kept");
  ASSERT_TRUE(startUp.init());
  EXPECT_FALSE(fakes.dictionary(kProperties).contains(u"IPAddress"_s));
  EXPECT_TRUE(fakes.files.exists(kMachineFolder + u"/ArtworkData.txt"_s));
}

TEST_F(CarryOverTest, SavesTheSettingsOfAnEarlierInstallationAndDeletesItsBundle) {
  fakes.change(kProperties, {{u"FirstLaunch"_s, u"No"_s}});
  fakes.change(kProperties, kCarried);
  receipt(u"./Applications//Old/"_s);
  fakes.files.put(u"/Applications/Old/Sonorel.app/Contents/Info.plist"_s, "old");
  fakes.files.put(u"/Applications/Old/Other.app/Contents/Info.plist"_s, "other");
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(fakes.dictionary(kMachinePreferences), kCarried);
  EXPECT_FALSE(fakes.files.exists(u"/Applications/Old/Sonorel.app"_s));
  EXPECT_TRUE(fakes.files.exists(u"/Applications/Old/Other.app/Contents/Info.plist"_s));
}

TEST_F(CarryOverTest, SavesNothingWithoutAnAddress) {
  fakes.change(kProperties, {{u"FirstLaunch"_s, u"No"_s}});
  fakes.putDictionary(kMachinePreferences, kCarried);
  receipt(u"/Applications/Old"_s);
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(fakes.dictionary(kMachinePreferences), QVariantMap());
}

// What the earlier installation saved is for the new one, which has nothing of its own to put in its place.
TEST_F(CarryOverTest, NewInstallationTakesOverWhatWasSavedAndDeletesEveryEarlierBundle) {
  fakes.putDictionary(kMachinePreferences, kCarried);
  receipt(u"/Applications/Old"_s);
  fakes.files.mount(u"/Volumes/Older Disk"_s, u"hfs"_s);
  fakes.putDictionary(u"/Volumes/Older Disk/Library/Receipts/Sonorel 1.0.pkg/Contents/Info.plist"_s,
                      {{u"IFPkgRelocatedPath"_s, u"/Applications/Older"_s}});
  const QStringList bundles{u"/Applications/Old/Sonorel.app"_s, u"/Applications/Older/Sonorel.app"_s};
  for (const QString &bundle : bundles) {
    fakes.files.put(bundle + u"/Contents/Info.plist"_s, "old");
  }
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(fakes.dictionary(kProperties).value(u"IPAddress"_s), u"192.168.1.20"_s);
  EXPECT_EQ(fakes.dictionary(kProperties).value(u"Password"_s), QByteArray("archived"));
  EXPECT_EQ(fakes.dictionary(kMachinePreferences), kCarried);
  for (const QString &bundle : bundles) {
    EXPECT_FALSE(fakes.files.exists(bundle)) << bundle.toStdString();
  }
}

TEST_F(CarryOverTest, LeavesThisBundleAlone) {
  fakes.files.put(u"/Applications/Sonorel/Sonorel.app/Contents/Info.plist"_s, "this");
  receipt(u"./Applications/Sonorel"_s);
  ASSERT_TRUE(startUp.init());
  EXPECT_TRUE(fakes.files.exists(u"/Applications/Sonorel/Sonorel.app/Contents/Info.plist"_s));
}

TEST_F(CarryOverTest, DeletesNothingForAReceiptThatLeadsAstray) {
  fakes.files.put(u"/Users/anna/Sonorel.app/kept"_s, "kept");
  for (const QString &path : {u"Users/anna"_s, u"/Users/bert/../anna"_s}) {
    receipt(path);
    ASSERT_TRUE(startUp.init());
    EXPECT_TRUE(fakes.files.exists(u"/Users/anna/Sonorel.app/kept"_s)) << path.toStdString();
  }
  fakes.files.put(kReceipt, "no property list");
  ASSERT_TRUE(startUp.init());
  EXPECT_EQ(fakes.files.bytes(kReceipt), QByteArray("no property list")) << "a foreign file stays as it is";
  EXPECT_TRUE(fakes.desktop.logged(kReceipt));
}
