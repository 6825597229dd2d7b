#include "core/ShareCleanup.h"

#include "FakePlatform.h"
#include "platform/Failure.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const auto kSystem = u"/Volumes/VB-SHARE$/System/"_s;
constexpr qint64 kDay = 86'400;

class ShareCleanupTest : public testing::Test {
protected:
  ShareCleanupTest() { mountShare(fakes.files); }
  void tellTheServersTime(qint64 seconds) { fakes.files.put(kSystem + u"ClientConnected.orv"_s, "x", seconds); }
  void put(const QString &name, qint64 ageSeconds) {
    fakes.files.put(kSystem + name, "x", fakes.clock.nowSeconds() - ageSeconds);
  }
  void run(const QString &mark = u"0a1b2c3d"_s) {
    ShareCleanup(fakes.files, fakes.clock, fakes.desktop, standardFolders(), mark).run();
  }
  QStringList left() { return fakes.files.list(kSystem); }

  FakePlatform fakes;
};

} // namespace

TEST_F(ShareCleanupTest, RemovesItsOwnFilesAtOnceAndOthersAfterADay) {
  put(u".sonorel-0a1b2c3d-11111111"_s, 1);
  put(u".sonorel-ffffffff-22222222"_s, kDay);
  put(u".sonorel-ffffffff-33333333"_s, kDay + 1);
  put(u".sonorel-44444444"_s, 2 * kDay);
  tellTheServersTime(fakes.clock.nowSeconds());
  run();
  EXPECT_EQ(left(),
            QStringList({u".sonorel-ffffffff-22222222"_s, u"ClientConnected.orv"_s, u"OrvProductName.orv"_s}));
}

TEST_F(ShareCleanupTest, AgesAreThoseOfTheServersClock) {
  put(u".sonorel-ffffffff-22222222"_s, 5 * kDay + 1); // this computer is five days ahead
  put(u".sonorel-ffffffff-33333333"_s, 6 * kDay + 1);
  tellTheServersTime(fakes.clock.nowSeconds() - 5 * kDay);
  run();
  EXPECT_TRUE(fakes.files.exists(kSystem + u".sonorel-ffffffff-22222222"_s)) << "somebody writes it at this moment";
  EXPECT_FALSE(fakes.files.exists(kSystem + u".sonorel-ffffffff-33333333"_s));
}

TEST_F(ShareCleanupTest, FileFromTheFutureMakesNothingOld) {
  put(u".sonorel-ffffffff-22222222"_s, 1);
  tellTheServersTime(fakes.clock.nowSeconds() + 30 * kDay);
  run();
  EXPECT_TRUE(fakes.files.exists(kSystem + u".sonorel-ffffffff-22222222"_s));
}

TEST_F(ShareCleanupTest, LooksIntoTheBookmarkFolderToo) {
  const QString bookmarks = u"/Volumes/VB-SHARE$/Favorites/Mac/"_s;
  fakes.files.put(bookmarks + u".sonorel-0a1b2c3d-11111111"_s, "x", fakes.clock.nowSeconds());
  fakes.files.put(bookmarks + u"Page.url"_s, "x", 0);
  run();
  EXPECT_EQ(fakes.files.list(bookmarks), QStringList{u"Page.url"_s});
  EXPECT_TRUE(fakes.desktop.lines.isEmpty());
}

TEST_F(ShareCleanupTest, LeavesTheLockAndEverythingElse) {
  put(u".sonorel-lock"_s, 9 * kDay);
  put(u"NetMusicFavorites.orv"_s, 9 * kDay);
  put(u".hidden"_s, 9 * kDay);
  fakes.files.makeFolders(kSystem + u".sonorel-0a1b2c3d-folder"_s);
  const QStringList before = left();
  run();
  EXPECT_EQ(left(), before);
}

TEST_F(ShareCleanupTest, WithoutAMarkNothingIsItsOwn) {
  put(u".sonorel-11111111"_s, 1);
  put(u".sonorel--2222222"_s, 1);
  run({});
  EXPECT_EQ(left().size(), 3);
}

TEST_F(ShareCleanupTest, ShareThatDoesNotAnswerIsLeftAlone) {
  put(u".sonorel-0a1b2c3d-11111111"_s, 1);
  fakes.files.setUnknown(u"/Volumes/VB-SHARE$"_s, true);
  run();
  EXPECT_TRUE(fakes.files.stored(kSystem + u".sonorel-0a1b2c3d-11111111"_s).has_value());
  EXPECT_EQ(fakes.desktop.lines.size(), 1);
}
