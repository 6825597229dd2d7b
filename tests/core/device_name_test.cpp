#include "core/DeviceName.h"

#include "FakePlatform.h"
#include "platform/Failure.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const auto kNameFile = u"/Volumes/VB-SHARE$/System/OrvProductName.orv"_s;
const auto kAddressFile = u"/Volumes/VB-SHARE$/System/MacIPAdress.orv"_s;
const QByteArray kAddressBytes("192.168.1.20\n00-1A-2B-3C-4D-5E\n");

class DeviceNameTest : public testing::Test {
protected:
  DeviceNameTest() {
    fakes.install();
    fakes.files.makeFolders(fakes.paths.machineFolder);
    mountShare(fakes.files);
    settings.load();
  }
  QString nameOf(const QByteArray &text) {
    fakes.files.put(kNameFile, text);
    return device.getDeviceName();
  }

  FakePlatform fakes;
  Settings settings{fakes.files, fakes.propertyLists, fakes.paths.PFPath};
  Session session;
  DeviceName device{fakes.files, fakes.propertyLists, fakes.desktop, settings,
                    session,     standardFolders(),   fakes.paths};
};

} // namespace

TEST_F(DeviceNameTest, FindsTheNameInTheText) {
  EXPECT_EQ(nameOf("Auralis 5"), u"Auralis 5"_s);
  EXPECT_EQ(nameOf("Vaultbox 1\r\n2.0"), u"Vaultbox 1"_s);
  EXPECT_EQ(nameOf("\xEF\xBB\xBFThe Auracore 5 in the kitchen"), u"Auracore 5"_s);
}

TEST_F(DeviceNameTest, SearchesInItsOwnOrder) {
  EXPECT_EQ(nameOf("Auracore 5 and Vaultbox 1"), u"Vaultbox 1"_s);
  EXPECT_EQ(nameOf("Vaultbox 1, Auralis 5"), u"Auralis 5"_s);
}

TEST_F(DeviceNameTest, IsUnknownForAnEmptyOrOtherText) {
  EXPECT_EQ(nameOf(""), u"0"_s);
  EXPECT_EQ(nameOf("Toaster 3"), u"0"_s);
  EXPECT_EQ(nameOf("auralis 5"), u"0"_s);
}

TEST_F(DeviceNameTest, IsTheDefaultProductWithoutTheFile) {
  fakes.files.erase(kNameFile);
  EXPECT_EQ(device.getDeviceName(), u"Vaultbox 1"_s);
}

TEST_F(DeviceNameTest, TriesAnUnreadableFileFiveTimes) {
  fakes.files.put(kNameFile, "Auralis 5 \xF6");
  fakes.files.clearLog();
  EXPECT_EQ(device.getDeviceName(), u"0"_s);
  EXPECT_EQ(fakes.files.log().count(u"read "_s + kNameFile), 5);
}

TEST_F(DeviceNameTest, TakesTheFirstAttemptThatSucceeds) {
  int reads = 0;
  fakes.files.put(kNameFile, "\xF6");
  fakes.files.beforeOperation = [&](int) {
    if (++reads == 10) {
      fakes.files.put(kNameFile, "Auralis 5");
    }
  };
  EXPECT_EQ(device.getDeviceName(), u"Auralis 5"_s);
}

TEST_F(DeviceNameTest, IsUnknownWhenTheShareHasGone) {
  fakes.files.unmount(u"/Volumes/VB-SHARE$"_s);
  EXPECT_EQ(device.getDeviceName(), u"0"_s);
  mountShare(fakes.files);
  fakes.files.setUnknown(u"/Volumes/VB-SHARE$"_s, true);
  EXPECT_EQ(device.getDeviceName(), u"0"_s);
}

TEST_F(DeviceNameTest, StoresTheAddressFileInBothPropertyFiles) {
  fakes.putDictionary(fakes.paths.machinePreferences, {{u"Username"_s, u"anna"_s}});
  fakes.files.put(kAddressFile, kAddressBytes);
  EXPECT_EQ(device.getDeviceName(), u"Auracore 5"_s);
  EXPECT_EQ(fakes.dictionary(fakes.paths.PFPath).value(u"MACAdress"_s), kAddressBytes);
  EXPECT_EQ(fakes.dictionary(fakes.paths.machinePreferences),
            QVariantMap({{u"Username"_s, u"anna"_s}, {u"MACAdress"_s, kAddressBytes}}));
  EXPECT_EQ(session.hardwareAddress(), u"00-1A-2B-3C-4D-5E"_s);
}

TEST_F(DeviceNameTest, MakesTheMachineWideFileWhenItIsMissing) {
  fakes.files.put(kAddressFile, kAddressBytes);
  EXPECT_EQ(device.getDeviceName(), u"Auracore 5"_s);
  EXPECT_EQ(fakes.dictionary(fakes.paths.machinePreferences), QVariantMap({{u"MACAdress"_s, kAddressBytes}}));
  EXPECT_EQ(fakes.files.mode(fakes.paths.machinePreferences), 0777U) << "as everybody else makes it";
}

// Its folder is emptied by every start of the first launch.
TEST_F(DeviceNameTest, DamagedMachineWideFileIsKeptBesideItsFolder) {
  fakes.files.put(fakes.paths.machinePreferences, "<plist><dict>");
  fakes.files.put(kAddressFile, kAddressBytes);
  EXPECT_EQ(device.getDeviceName(), u"Auracore 5"_s);
  const auto kept = u"/Library/Application Support/Sonorel LastPreferences.plist.damaged"_s;
  EXPECT_EQ(fakes.files.bytes(kept), QByteArray("<plist><dict>"));
  EXPECT_TRUE(fakes.desktop.logged(u"kept as "_s + kept));
  EXPECT_EQ(fakes.dictionary(fakes.paths.machinePreferences), QVariantMap({{u"MACAdress"_s, kAddressBytes}}));
}

TEST_F(DeviceNameTest, ForgetsTheHardwareAddressOfAnEarlierProduct) {
  session.setHardwareAddress(u"00-1A-2B-3C-4D-5E"_s);
  EXPECT_EQ(device.getDeviceName(), u"Auracore 5"_s);
  EXPECT_EQ(session.hardwareAddress(), QString());
  fakes.files.put(kAddressFile, "short\nfile");
  EXPECT_EQ(device.getDeviceName(), u"Auracore 5"_s);
  EXPECT_EQ(session.hardwareAddress(), QString());
  EXPECT_EQ(settings.data(u"MACAdress"_s), QByteArray("short\nfile")) << "the bytes are stored whatever they are";
}

TEST_F(DeviceNameTest, PassesAFailureOn) {
  fakes.files.put(kAddressFile, kAddressBytes);
  fakes.files.failPath(fakes.paths.PFPath, FailureKind::DiskFull);
  EXPECT_THROW(static_cast<void>(device.getDeviceName()), Failure);
}
