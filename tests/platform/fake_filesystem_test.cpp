// What the sweeps rely on beyond the common contract: volumes that come and go, faults and deaths at a given step.
#include "support/FakeFileSystem.h"

#include "support/Fixtures.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using sonorel::test::Died;
using sonorel::test::FakeFileSystem;

namespace {

const QString kShare = u"/Volumes/VB-SHARE$"_s;

class FakeFileSystemTest : public testing::Test {
protected:
  FakeFileSystem files;

  static FailureKind kindOf(const std::function<void()> &operation) {
    try {
      operation();
    } catch (const Failure &e) {
      return e.kind();
    }
    ADD_FAILURE() << "nothing was thrown";
    return FailureKind::Stopped;
  }
};

} // namespace

TEST_F(FakeFileSystemTest, VolumeKeepsItsContentAndCoversTheFolder) {
  files.put(kShare + u"/left behind"_s, "local");
  files.mount(kShare);
  EXPECT_EQ(files.presence(kShare + u"/left behind"_s), Presence::Absent);
  files.write(kShare + u"/a"_s, "one");
  const auto first = files.volume(kShare + u"/a"_s);
  ASSERT_TRUE(first.has_value());
  EXPECT_EQ(first->mountRoot, kShare);
  EXPECT_EQ(first->typeName, u"smbfs"_s);
  files.unmount(kShare);
  EXPECT_EQ(files.volume(kShare + u"/a"_s)->mountRoot, u"/"_s);
  EXPECT_EQ(files.presence(kShare + u"/a"_s), Presence::Absent);
  EXPECT_EQ(files.bytes(kShare + u"/left behind"_s), "local");
  files.mount(kShare);
  EXPECT_EQ(files.bytes(kShare + u"/a"_s), "one");
  EXPECT_NE(files.volume(kShare)->mountId, first->mountId);
}

TEST_F(FakeFileSystemTest, NothingIsChangedBelowAPointThatIsNotMounted) {
  files.put(kShare + u"/System/a"_s, "local");
  const auto before = files.tree(u"/"_s);
  const QString path = kShare + u"/System/a"_s;
  EXPECT_EQ(kindOf([&] { files.write(path, "x"); }), FailureKind::Unknown);
  EXPECT_EQ(kindOf([&] { files.writeAtomically(path, "x"); }), FailureKind::Unknown);
  EXPECT_EQ(kindOf([&] { files.createExclusively(path + u'2', "x"); }), FailureKind::Unknown);
  EXPECT_EQ(kindOf([&] { files.createFolder(kShare + u"/Music"_s, 0777); }), FailureKind::Unknown);
  EXPECT_EQ(kindOf([&] { files.removeFile(path); }), FailureKind::Unknown);
  EXPECT_EQ(kindOf([&] { files.removeTree(kShare + u"/System"_s); }), FailureKind::Unknown);
  EXPECT_EQ(kindOf([&] { files.rename(path, path + u'2'); }), FailureKind::Unknown);
  EXPECT_EQ(kindOf([&] { files.copy(path, path + u'2'); }), FailureKind::Unknown);
  EXPECT_EQ(files.tree(u"/"_s), before);
  files.createFolder(u"/Volumes/OTHER"_s, 0777);
  EXPECT_TRUE(files.exists(u"/Volumes/OTHER"_s));
}

TEST_F(FakeFileSystemTest, SilentVolumeConcludesNothing) {
  test::mountShare(files);
  files.setUnknown(kShare, true);
  EXPECT_EQ(files.presence(kShare + u"/System"_s), Presence::Unknown);
  EXPECT_EQ(files.presence(kShare + u"/nothing"_s), Presence::Unknown);
  EXPECT_EQ(kindOf([&] { static_cast<void>(files.attributes(kShare, Links::Follow)); }), FailureKind::Unknown);
  EXPECT_EQ(kindOf([&] { static_cast<void>(files.list(kShare)); }), FailureKind::Unknown);
  EXPECT_EQ(files.volume(kShare)->mountRoot, kShare);
  EXPECT_EQ(files.presence(u"/Volumes"_s), Presence::Present);
  files.setUnknown(kShare, false);
  EXPECT_EQ(files.presence(kShare + u"/nothing"_s), Presence::Absent);
}

TEST_F(FakeFileSystemTest, FullDiskLeavesAPartInPlaceAndNothingBeside) {
  files.mount(kShare, u"smbfs"_s, 10);
  files.write(kShare + u"/old"_s, "123456");
  EXPECT_EQ(files.volume(kShare)->freeBytes, 4U);
  EXPECT_EQ(kindOf([&] { files.writeAtomically(kShare + u"/old"_s, "abcdefgh"); }), FailureKind::DiskFull);
  EXPECT_EQ(files.tree(kShare), (QMap<QString, QByteArray>{{u"old"_s, "123456"}}));
  EXPECT_EQ(kindOf([&] { files.createExclusively(kShare + u"/new"_s, "abcdefgh"); }), FailureKind::DiskFull);
  EXPECT_EQ(files.tree(kShare), (QMap<QString, QByteArray>{{u"old"_s, "123456"}}));
  EXPECT_EQ(kindOf([&] { files.write(kShare + u"/new"_s, "abcdefgh"); }), FailureKind::DiskFull);
  EXPECT_EQ(files.tree(kShare), (QMap<QString, QByteArray>{{u"new"_s, "abcd"}, {u"old"_s, "123456"}}));
  files.removeFile(kShare + u"/new"_s);
  EXPECT_EQ(files.volume(kShare)->freeBytes, 4U);
}

TEST_F(FakeFileSystemTest, OnlyTheChosenOperationFails) {
  files.put(u"/a"_s, "one");
  files.failAt(2, FailureKind::Other);
  EXPECT_EQ(files.read(u"/a"_s), "one");
  EXPECT_EQ(kindOf([&] { static_cast<void>(files.read(u"/a"_s)); }), FailureKind::Other);
  EXPECT_EQ(files.read(u"/a"_s), "one");
  files.failPath(u"/a"_s, FailureKind::Damaged);
  EXPECT_EQ(kindOf([&] { static_cast<void>(files.read(u"/a"_s)); }), FailureKind::Damaged);
  EXPECT_EQ(kindOf([&] { static_cast<void>(files.read(u"/a"_s)); }), FailureKind::Damaged);
  files.clearFailures();
  EXPECT_EQ(files.read(u"/a"_s), "one");
}

TEST_F(FakeFileSystemTest, DeathInAWriteInPlaceLeavesAnEmptyFile) {
  files.put(u"/a"_s, "old");
  files.dieAt(2);
  EXPECT_THROW(files.write(u"/a"_s, "new"), Died);
  EXPECT_EQ(files.bytes(u"/a"_s), "");
  EXPECT_THROW(static_cast<void>(files.presence(u"/a"_s)), Died);
  files.revive();
  EXPECT_EQ(files.read(u"/a"_s), "");
}

TEST_F(FakeFileSystemTest, DeathInAnAtomicWriteLeavesTheOldFileAndATemporaryOne) {
  files.put(u"/f/a"_s, "old");
  files.dieAt(2);
  EXPECT_THROW(files.writeAtomically(u"/f/a"_s, "new"), Died);
  EXPECT_EQ(files.tree(u"/f"_s), (QMap<QString, QByteArray>{{u".sonorel-0001"_s, "new"}, {u"a"_s, "old"}}));
}

TEST_F(FakeFileSystemTest, DeathInATreeRemovalLeavesARest) {
  files.put(u"/f/a"_s, "1");
  files.put(u"/f/b"_s, "2");
  files.dieAt(3);
  EXPECT_THROW(files.removeTree(u"/f"_s), Died);
  EXPECT_EQ(files.tree(u"/f"_s), (QMap<QString, QByteArray>{{u"b"_s, "2"}}));
}

TEST_F(FakeFileSystemTest, LocksOfADeadClientAreFree) {
  files.makeFolders(u"/f"_s);
  const auto held = files.lock(u"/f/lock"_s);
  ASSERT_NE(held, nullptr);
  EXPECT_EQ(files.lock(u"/f/lock"_s), nullptr);
  files.dieAt(1);
  EXPECT_THROW(static_cast<void>(files.presence(u"/f"_s)), Died);
  files.revive();
  EXPECT_NE(files.lock(u"/f/lock"_s), nullptr);
}

TEST_F(FakeFileSystemTest, TidyingUpWhileDyingGetsAnOrdinaryFailure) {
  struct Tidy {
    FakeFileSystem &files;
    bool &failed;
    ~Tidy() {
      try {
        files.removeFile(u"/a"_s);
      } catch (const Failure &) {
        failed = true;
      }
    }
  };
  files.put(u"/a"_s, "one");
  bool failed = false;
  files.dieAt(1);
  const auto client = [&] {
    const Tidy tidy{files, failed};
    files.write(u"/a"_s, "two");
  };
  EXPECT_THROW(client(), Died);
  EXPECT_TRUE(failed);
  EXPECT_EQ(files.bytes(u"/a"_s), "one");
}

TEST_F(FakeFileSystemTest, HookMayTakeTheShareAwayBeforeAnOperation) {
  test::mountShare(files);
  const int now = files.operations();
  files.beforeOperation = [&](int operation) {
    if (operation == now + 2) {
      files.unmount(kShare);
    }
  };
  EXPECT_EQ(kindOf([&] { files.write(kShare + u"/System/a"_s, "x"); }), FailureKind::Unknown);
  EXPECT_FALSE(files.exists(kShare + u"/System"_s));
}

TEST_F(FakeFileSystemTest, LogNamesEveryStep) {
  files.put(u"/f/a"_s, "1");
  static_cast<void>(files.presence(u"/f/a"_s));
  files.write(u"/f/a"_s, "2");
  files.writeAtomically(u"/f/a"_s, "3");
  files.removeFile(u"/f/a"_s);
  EXPECT_EQ(files.log(), (QStringList{u"presence /f/a"_s, u"truncate /f/a"_s, u"write /f/a"_s,
                                      u"writeAtomically /f/a"_s, u"replace /f/a"_s, u"removeFile /f/a"_s}));
  EXPECT_EQ(files.operations(), 6);
}
