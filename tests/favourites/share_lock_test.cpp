#include "favourites/ShareLock.h"

#include "FavouritesWorkbench.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

const QByteArray kOwn = "OWN";
const QByteArray kForeign = "FOREIGN/1";

struct Lock : testing::Test {
  Lock() { mountShare(files); }
  ShareLock::Tools tools() { return {files, clock, identifiers, desktop}; }

  FakeFileSystem files;
  FakeClock clock{&files};
  FakeIdentifiers identifiers;
  FakeDesktop desktop;
};

} // namespace

TEST_F(Lock, StandsAsLongAsItLives) {
  {
    ShareLock lock(tools(), kServerLock, kOwn, {});
    EXPECT_EQ(files.bytes(kServerLock), "OWN/00000000-0000-0000-0000-000000000001");
    lock.requireHeld();
  }
  EXPECT_FALSE(files.exists(kServerLock));
  EXPECT_TRUE(clock.sleeps.isEmpty());
}

TEST_F(Lock, WaitsUntilTheOtherClientIsDone) {
  files.put(kServerLock, kForeign, FakeFileSystem::kStart);
  clock.onSleep = [&] {
    if (clock.sleeps.size() == 3) {
      files.erase(kServerLock);
    }
  };
  const ShareLock lock(tools(), kServerLock, kOwn, {});
  EXPECT_EQ(clock.sleeps, (QList<std::chrono::milliseconds>{500ms, 500ms, 500ms}));
  EXPECT_TRUE(files.bytes(kServerLock).startsWith("OWN/"));
}

// Whatever the product's clock says: many have none that is right.
TEST_F(Lock, ALockThatStandsForSixtySecondsIsADeadClients) {
  for (const qint64 ahead : {-100'000, -60, 0, 100'000}) {
    clock.sleeps.clear();
    files.put(kServerLock, kForeign, files.nowSeconds + ahead);
    const ShareLock lock(tools(), kServerLock, kOwn, {});
    EXPECT_EQ(clock.sleeps.size(), 120) << ahead;
    EXPECT_TRUE(files.bytes(kServerLock).startsWith("OWN/"));
  }
}

TEST_F(Lock, OfAShareWhoseClockIsBehindALivingLockIsWaitedFor) {
  files.put(kServerLock, kForeign, FakeFileSystem::kStart - 100'000);
  clock.onSleep = [&] {
    EXPECT_EQ(files.bytes(kServerLock), kForeign);
    if (clock.sleeps.size() == 3) {
      files.erase(kServerLock);
    }
  };
  const ShareLock lock(tools(), kServerLock, kOwn, {});
  EXPECT_EQ(clock.sleeps.size(), 3);
}

TEST_F(Lock, AnotherHoldersTurnIsWaitedForAnew) {
  files.put(kServerLock, kForeign, FakeFileSystem::kStart);
  clock.onSleep = [&] {
    if (clock.sleeps.size() == 100) {
      files.put(kServerLock, "FOREIGN/2", files.nowSeconds);
    }
  };
  const ShareLock lock(tools(), kServerLock, kOwn, {});
  EXPECT_EQ(clock.sleeps.size(), 220);
}

TEST_F(Lock, AnEmptyLockIsGivenUpSooner) {
  files.put(kServerLock, QByteArray(), FakeFileSystem::kStart);
  const ShareLock lock(tools(), kServerLock, kOwn, {});
  EXPECT_EQ(clock.sleeps.size(), 10);
}

TEST_F(Lock, OnesOwnLockWasLeftByAnEarlierRun) {
  files.put(kServerLock, "OWN/1", FakeFileSystem::kStart);
  const ShareLock lock(tools(), kServerLock, kOwn, {});
  EXPECT_TRUE(clock.sleeps.isEmpty());
}

TEST_F(Lock, TheStopTokenEndsTheWait) {
  files.put(kServerLock, kForeign, FakeFileSystem::kStart);
  std::stop_source stop;
  clock.onSleep = [&] { stop.request_stop(); };
  try {
    const ShareLock lock(tools(), kServerLock, kOwn, stop.get_token());
    FAIL() << "the lock was taken";
  } catch (const Failure &failure) {
    EXPECT_EQ(failure.kind(), FailureKind::Stopped);
  }
  EXPECT_EQ(files.bytes(kServerLock), kForeign);
}

TEST_F(Lock, ALockThatSomebodyTookOverIsNoLongerHeldAndNotRemoved) {
  {
    ShareLock lock(tools(), kServerLock, kOwn, {});
    files.put(kServerLock, kForeign, files.nowSeconds);
    EXPECT_THROW(lock.requireHeld(), Failure);
  }
  EXPECT_EQ(files.bytes(kServerLock), kForeign);
}

TEST_F(Lock, AFullDiskLeavesNoEmptyLockBehind) {
  files.setFreeBytes(u"/Volumes/VB-SHARE$"_s, 3);
  try {
    const ShareLock lock(tools(), kServerLock, kOwn, {});
    ADD_FAILURE() << "locked without a mark";
  } catch (const Failure &failure) {
    EXPECT_EQ(failure.kind(), FailureKind::DiskFull) << failure.reason().toStdString();
  }
  EXPECT_FALSE(files.exists(kServerLock));
}

TEST_F(Lock, AShareThatIsGoneWhenItEndsIsLogged) {
  {
    const ShareLock lock(tools(), kServerLock, kOwn, {});
    files.setUnknown(u"/Volumes/VB-SHARE$"_s, true);
  }
  EXPECT_TRUE(desktop.logged(u"Exception in ---> <AppController><unlockFavourites>"_s));
}
