#include "core/state/Settings.h"

#include "platform/linux/LibplistPropertyLists.h"
#include "support/FakeFileSystem.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using sonorel::test::FakeFileSystem;

namespace {

const QByteArray kFile = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>FirstLaunch</key>
	<string>Yes</string>
	<key>MACAdress</key>
	<data>AQID</data>
	<key>SomethingElse</key>
	<array><integer>7</integer></array>
	<key>SpaceNumber</key>
	<integer>3</integer>
</dict>
</plist>
)";

class SettingsTest : public testing::Test {
protected:
  const QString path = u"/Applications/Sonorel/App Data/MacClientProperty"_s;
  FakeFileSystem files;
  LibplistPropertyLists lists;
  Settings settings{files, lists, path};

  [[nodiscard]] QVariantMap stored() { return lists.decode(files.bytes(path)).toMap(); }
};

} // namespace

TEST_F(SettingsTest, ReadsEveryKind) {
  files.put(path, kFile);
  EXPECT_EQ(settings.load(), QString());
  EXPECT_EQ(settings.text(u"FirstLaunch"_s), u"Yes"_s);
  EXPECT_EQ(settings.data(u"MACAdress"_s), QByteArray("\x01\x02\x03"));
  EXPECT_EQ(settings.number(u"SpaceNumber"_s, -1), 3);
  EXPECT_TRUE(settings.contains(u"SomethingElse"_s));
}

TEST_F(SettingsTest, WrongTypeReadsAsAbsent) {
  files.put(path, kFile);
  ASSERT_EQ(settings.load(), QString());
  EXPECT_EQ(settings.text(u"SpaceNumber"_s), QString());
  EXPECT_EQ(settings.text(u"SomethingElse"_s), QString());
  EXPECT_EQ(settings.data(u"FirstLaunch"_s), QByteArray());
  EXPECT_EQ(settings.number(u"FirstLaunch"_s, 42), 42);
  EXPECT_EQ(settings.number(u"MACAdress"_s, 42), 42);
  EXPECT_EQ(settings.number(u"NoSuchKey"_s, 42), 42);
}

TEST_F(SettingsTest, MissingFileLeavesEverythingEmptyAndSaysSo) {
  EXPECT_TRUE(settings.load().contains(u"no such file"_s));
  EXPECT_TRUE(settings.all().isEmpty());
  EXPECT_FALSE(files.exists(path));
}

TEST_F(SettingsTest, DamagedFileIsSetAsideWhole) {
  files.put(path, "<plist><dict><key>GUID</key>");
  const QString odd = settings.load();
  EXPECT_TRUE(odd.contains(path)) << odd.toStdString();
  EXPECT_TRUE(settings.all().isEmpty());
  EXPECT_FALSE(files.exists(path));
  EXPECT_EQ(files.tree(u"/Applications/Sonorel/App Data"_s).values(),
            (QList<QByteArray>{"<plist><dict><key>GUID</key>"}));
}

TEST_F(SettingsTest, FileOfAnotherKindIsSetAside) {
  files.put(path, "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>");
  EXPECT_TRUE(settings.load().contains(u"no dictionary"_s));
  EXPECT_FALSE(files.exists(path));
}

TEST_F(SettingsTest, FileThatCannotBeReadIsNotReplacedButSetAside) {
  files.put(path, kFile);
  files.failAt(1, FailureKind::Other);
  EXPECT_NE(settings.load(), QString());
  EXPECT_TRUE(files.exists(path));
  settings.setAndSave(u"GUID"_s, u"{1}"_s);
  EXPECT_EQ(stored(), (QVariantMap{{u"GUID"_s, u"{1}"_s}}));
  EXPECT_TRUE(files.tree(u"/Applications/Sonorel/App Data"_s).values().contains(kFile));
}

TEST_F(SettingsTest, SavesTheWholeFileAndKeepsUnknownKeys) {
  files.put(path, kFile);
  ASSERT_EQ(settings.load(), QString());
  settings.setAndSave(u"GUID"_s, u"{1}"_s);
  EXPECT_EQ(stored(), (QVariantMap{{u"FirstLaunch"_s, u"Yes"_s},
                                   {u"GUID"_s, u"{1}"_s},
                                   {u"MACAdress"_s, QByteArray("\x01\x02\x03")},
                                   {u"SomethingElse"_s, QVariantList{7LL}},
                                   {u"SpaceNumber"_s, 3LL}}));
}

TEST_F(SettingsTest, SetAndRemoveStayInMemoryUntilSaved) {
  files.put(path, kFile);
  ASSERT_EQ(settings.load(), QString());
  settings.set(u"LastLanguage"_s, u"StringsDansk"_s);
  settings.remove(u"FirstLaunch"_s);
  EXPECT_EQ(settings.text(u"LastLanguage"_s), u"StringsDansk"_s);
  EXPECT_FALSE(settings.contains(u"FirstLaunch"_s));
  EXPECT_EQ(files.bytes(path), kFile);
  settings.save();
  EXPECT_EQ(stored().value(u"LastLanguage"_s), QVariant(u"StringsDansk"_s));
  EXPECT_FALSE(stored().contains(u"FirstLaunch"_s));
}

TEST_F(SettingsTest, NewFileIsPrivateAndAnOldModeIsKept) {
  files.makeFolders(u"/Applications/Sonorel/App Data"_s);
  settings.setAndSave(u"GUID"_s, u"{1}"_s);
  EXPECT_EQ(files.mode(path), 0600U);
  files.setMode(path, 0640);
  settings.setAndSave(u"GUID"_s, u"{2}"_s);
  EXPECT_EQ(files.mode(path), 0640U);
}

TEST_F(SettingsTest, OldFileIsWholeWhereverASaveBreaksOff) {
  files.put(path, kFile);
  ASSERT_EQ(settings.load(), QString());
  const int before = files.operations();
  settings.save();
  const int steps = files.operations() - before;
  ASSERT_GE(steps, 2);
  for (int step = 1; step <= steps; ++step) {
    for (const FailureKind kind : {FailureKind::Other, FailureKind::DiskFull, FailureKind::Unknown}) {
      files.put(path, kFile);
      files.failAt(step, kind);
      EXPECT_THROW(settings.save(), Failure) << step;
      EXPECT_EQ(files.bytes(path), kFile) << step;
    }
  }
}

TEST_F(SettingsTest, ChangeIsWrittenOnce) {
  files.put(path, kFile);
  ASSERT_EQ(settings.load(), QString());
  files.clearLog();
  settings.change([](QVariantMap &values) {
    values.insert(u"A"_s, u"1"_s);
    values.insert(u"B"_s, u"2"_s);
  });
  EXPECT_EQ(files.log().filter(u"writeAtomically"_s).size(), 1);
  EXPECT_EQ(stored().value(u"A"_s), QVariant(u"1"_s));
  EXPECT_EQ(stored().value(u"B"_s), QVariant(u"2"_s));
}

TEST_F(SettingsTest, ChangesOfTwoThreadsAreBothKept) {
  files.put(path, kFile);
  ASSERT_EQ(settings.load(), QString());
  {
    std::jthread other([this] {
      for (int i = 0; i < 100; ++i) {
        settings.setAndSave(u"worker"_s, QString::number(i));
      }
    });
    for (int i = 0; i < 100; ++i) {
      settings.setAndSave(u"controller"_s, QString::number(i));
    }
  }
  EXPECT_EQ(stored().value(u"worker"_s), QVariant(u"99"_s));
  EXPECT_EQ(stored().value(u"controller"_s), QVariant(u"99"_s));
}
