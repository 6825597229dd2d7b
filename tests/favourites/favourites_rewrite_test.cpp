#include "favourites/FavouritesRewrite.h"

#include "FavouritesWorkbench.h"
#include "HandMade.h"

#include <QCryptographicHash>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const QByteArray kOld = musicHeader() + "old";
const QByteArray kNew = musicHeader() + "new";

struct Rewrite : testing::Test {
  Rewrite() {
    mountShare(files);
    client.emplace(files);
  }
  // One whole turn; false when the file changed. Failures pass.
  bool write(const QByteArray &bytes) {
    FavouritesRewrite::Turn turn = client->rewrite.begin(FavouritesKind::Music);
    const SeenFile seen = turn.look();
    return turn.replace(seen, bytes);
  }
  bool leftBehind() { return files.exists(client->backup(u".marker"_s)) || files.exists(client->backup(u".next"_s)); }

  FakeFileSystem files;
  std::optional<FavouritesWorkbench> client;
};

} // namespace

TEST_F(Rewrite, TheShareTheClientCopyAndTheBackupHoldWhatTheyShould) {
  files.put(kServerFile, kOld);
  EXPECT_TRUE(write(kNew));
  EXPECT_EQ(files.bytes(kServerFile), kNew);
  EXPECT_EQ(files.bytes(u"/Client/NetMusicFavorites.orv"_s), kNew);
  EXPECT_EQ(files.bytes(client->backup(u".previous"_s)), kOld);
  EXPECT_FALSE(leftBehind());
  EXPECT_FALSE(files.exists(kServerLock));
  EXPECT_EQ(files.mode(u"/Client/Backup"_s), 0700U);
}

TEST_F(Rewrite, TheClientCopyComesFirstThenTheDeleteThenTheNewFile) {
  files.put(kServerFile, kOld);
  files.clearLog();
  EXPECT_TRUE(write(kNew));
  const QStringList log = files.log();
  const auto place = [&](const QString &line) { return log.indexOf(line); };
  EXPECT_GT(place(u"writeAtomically /Client/NetMusicFavorites.orv"_s), place(u"read "_s + kServerFile));
  EXPECT_GT(place(u"sync "_s + client->backup(u".previous"_s)),
            place(u"writeAtomically /Client/NetMusicFavorites.orv"_s));
  EXPECT_GT(place(u"sync "_s + client->backup(u".next"_s)), place(u"sync "_s + client->backup(u".previous"_s)));
  EXPECT_GT(place(u"sync "_s + client->backup(u".marker"_s)), place(u"sync "_s + client->backup(u".next"_s)));
  EXPECT_GT(place(u"removeFile "_s + kServerFile), place(u"sync "_s + client->backup(u".marker"_s)));
  EXPECT_GT(place(u"writeAtomically "_s + kServerFile), place(u"removeFile "_s + kServerFile));
  EXPECT_GT(log.lastIndexOf(u"read "_s + kServerFile), place(u"writeAtomically "_s + kServerFile));
  EXPECT_GT(place(u"removeFile "_s + client->backup(u".marker"_s)), log.lastIndexOf(u"read "_s + kServerFile));
  EXPECT_EQ(log.last(), u"removeFile "_s + kServerLock);
}

TEST_F(Rewrite, TheLastThreeContentsAreKept) {
  for (const char *text : {"one", "two", "three", "four", "five"}) {
    EXPECT_TRUE(write(musicHeader() + text));
  }
  EXPECT_EQ(files.bytes(client->backup(u".previous"_s)), musicHeader() + "four");
  EXPECT_EQ(files.bytes(client->backup(u".previous-2"_s)), musicHeader() + "three");
  EXPECT_EQ(files.bytes(client->backup(u".previous-3"_s)), musicHeader() + "two");
  EXPECT_FALSE(files.exists(client->backup(u".previous-4"_s)));
}

TEST_F(Rewrite, TheSameContentBehindAnotherHeaderPushesNothingOut) {
  EXPECT_TRUE(write(musicHeader() + "precious"));
  for (const char *guidText : {"00000000-0000-0000-0000-000000000001", "00000000-0000-0000-0000-000000000002",
                               "00000000-0000-0000-0000-000000000003", "00000000-0000-0000-0000-000000000004"}) {
    EXPECT_TRUE(write(musicHeader(guidText) + "keys only"));
  }
  EXPECT_EQ(files.bytes(client->backup(u".previous"_s)),
            musicHeader("00000000-0000-0000-0000-000000000003") + "keys only");
  EXPECT_EQ(files.bytes(client->backup(u".previous-2"_s)), musicHeader() + "precious");
}

TEST_F(Rewrite, AFileThatChangedSinceTheLookStays) {
  files.put(kServerFile, kOld);
  FavouritesRewrite::Turn turn = client->rewrite.begin(FavouritesKind::Music);
  const SeenFile seen = turn.look();
  files.put(kServerFile, "somebody else's", 2000);
  EXPECT_FALSE(turn.replace(seen, kNew));
  EXPECT_EQ(files.bytes(kServerFile), "somebody else's");
  EXPECT_FALSE(leftBehind());
}

TEST_F(Rewrite, AFileThatAppearedSinceTheLookStays) {
  FavouritesRewrite::Turn turn = client->rewrite.begin(FavouritesKind::Music);
  const SeenFile seen = turn.look();
  EXPECT_FALSE(seen.attributes);
  files.put(kServerFile, "somebody else's");
  EXPECT_FALSE(turn.replace(seen, kNew));
  EXPECT_EQ(files.bytes(kServerFile), "somebody else's");
}

TEST_F(Rewrite, AFullShareGetsTheOldFileBack) {
  files.put(kServerFile, kOld);
  files.setFreeBytes(u"/Volumes/VB-SHARE$"_s, 60);
  EXPECT_THROW(write(musicHeader() + QByteArray(500, 'n')), Failure);
  EXPECT_EQ(files.bytes(kServerFile), kOld);
  EXPECT_FALSE(leftBehind());
}

TEST_F(Rewrite, AServerThatHoldsOtherBytesThanWereWrittenGetsTheOldFileBack) {
  files.put(kServerFile, kOld);
  files.beforeOperation = [&](int) {
    if (!files.log().isEmpty() && files.log().last() == u"replace "_s + kServerFile) {
      files.beforeOperation = nullptr;
      files.put(kServerFile, kNew.chopped(1), files.nowSeconds);
    }
  };
  EXPECT_THROW(write(kNew), Failure);
  EXPECT_EQ(files.bytes(kServerFile), kOld);
  EXPECT_FALSE(leftBehind());
}

TEST_F(Rewrite, AClientWhoseLockWasTakenOverDeletesNothing) {
  files.put(kServerFile, kOld);
  files.beforeOperation = [&](int) {
    if (files.exists(client->backup(u".marker"_s))) {
      files.beforeOperation = nullptr;
      files.put(kServerLock, "FOREIGN/1", files.nowSeconds);
    }
  };
  files.clearLog();
  EXPECT_THROW(write(kNew), Failure);
  EXPECT_EQ(files.bytes(kServerFile), kOld);
  EXPECT_FALSE(files.log().contains(u"removeFile "_s + kServerFile));
  EXPECT_EQ(files.bytes(kServerLock), "FOREIGN/1");
  EXPECT_FALSE(leftBehind());
}

// The server died over the delete; for a moment the system still remembers the file that is gone.
TEST_F(Rewrite, ADeleteOfWhichNobodyKnowsIsUndoneAtTheNextLook) {
  files.put(kServerFile, kOld);
  files.beforeOperation = [&](int) {
    const QString last = files.log().value(files.log().size() - 1);
    if (files.exists(client->backup(u".marker"_s)) && last == u"read "_s + kServerLock) {
      files.failAt(1, FailureKind::Unknown);
    } else if (last == u"removeFile "_s + kServerFile) {
      files.setRemembered(u"/Volumes/VB-SHARE$"_s, true);
      files.beforeOperation = nullptr;
    }
  };
  EXPECT_THROW(write(kNew), Failure);
  EXPECT_TRUE(files.exists(client->backup(u".marker"_s)));
  files.setRemembered(u"/Volumes/VB-SHARE$"_s, false);
  files.erase(kServerFile);
  EXPECT_EQ(client->rewrite.begin(FavouritesKind::Music).look().bytes, kNew);
  EXPECT_FALSE(leftBehind());
}

TEST_F(Rewrite, ADeleteThatFailsLeavesTheFileAndIsAFailure) {
  files.put(kServerFile, kOld);
  files.beforeOperation = [&](int) {
    if (files.exists(client->backup(u".marker"_s)) && files.log().last() == u"read "_s + kServerLock) {
      files.failAt(1, FailureKind::Other);
      files.beforeOperation = nullptr;
    }
  };
  EXPECT_THROW(write(kNew), Failure);
  EXPECT_EQ(files.log().filter(u"removeFile "_s + kServerFile).size(), 1);
  EXPECT_EQ(files.log().filter(u"writeAtomically "_s + kServerFile).size(), 0);
  EXPECT_EQ(files.bytes(kServerFile), kOld);
  EXPECT_FALSE(leftBehind());
}

// Whatever one operation answers, the share holds the old or the new file, or the next look writes the new one.
TEST_F(Rewrite, AnyOneFailingOperationLosesNothing) {
  for (const FailureKind kind :
       {FailureKind::Other, FailureKind::Unknown, FailureKind::DiskFull, FailureKind::Absent}) {
    for (int operation = 1;; ++operation) {
      FakeFileSystem disk;
      mountShare(disk);
      disk.put(kServerFile, kOld);
      FavouritesWorkbench one(disk);
      const int before = disk.operations();
      bool failed = false;
      disk.failAt(operation, kind);
      try {
        FavouritesRewrite::Turn turn = one.rewrite.begin(FavouritesKind::Music);
        const SeenFile seen = turn.look();
        // A look that says "absent" although the file stands would make a fresh file of it.
        EXPECT_EQ(seen.bytes, kOld) << "operation " << operation;
        failed = !turn.replace(seen, kNew);
      } catch (const Failure &) {
        failed = true;
      }
      disk.clearFailures();
      if (disk.operations() - before < operation) {
        break;
      }
      if (!failed) {
        EXPECT_EQ(disk.bytes(kServerFile), kNew) << "operation " << operation;
      }
      one.rewrite.recoverAtConnect();
      ASSERT_TRUE(disk.exists(kServerFile)) << "operation " << operation;
      const QByteArray now = disk.bytes(kServerFile);
      EXPECT_TRUE(now == kOld || now == kNew) << "operation " << operation;
      EXPECT_FALSE(disk.exists(one.backup(u".marker"_s))) << "operation " << operation;
    }
  }
}

TEST_F(Rewrite, ALostShareIsMadeGoodAtTheNextConnection) {
  files.put(kServerFile, kOld);
  files.beforeOperation = [&](int) {
    if (!files.log().isEmpty() && files.log().last() == u"removeFile "_s + kServerFile) {
      files.setUnknown(u"/Volumes/VB-SHARE$"_s, true);
    }
  };
  EXPECT_THROW(write(kNew), Failure);
  files.beforeOperation = nullptr;
  files.setUnknown(u"/Volumes/VB-SHARE$"_s, false);
  EXPECT_FALSE(files.exists(kServerFile));
  EXPECT_TRUE(leftBehind());
  FavouritesWorkbench next(files);
  next.rewrite.recoverAtConnect();
  EXPECT_EQ(files.bytes(kServerFile), kNew);
  EXPECT_FALSE(leftBehind());
  EXPECT_FALSE(files.exists(kServerLock));
}

TEST_F(Rewrite, WhatAnotherClientWroteMeanwhileStaysAndOursIsKept) {
  files.put(client->backup(u".next"_s), kNew);
  files.put(client->backup(u".marker"_s),
            "_00-11-22-33-44-55\n" + QCryptographicHash::hash(kNew, QCryptographicHash::Sha256).toHex() + '\n');
  files.put(kServerFile, musicHeader() + "theirs");
  client->rewrite.recoverAtConnect();
  EXPECT_EQ(files.bytes(kServerFile), musicHeader() + "theirs");
  EXPECT_EQ(files.bytes(client->backup(u".previous"_s)), kNew);
  EXPECT_FALSE(leftBehind());
}

TEST_F(Rewrite, AMarkerThatDoesNotFitTheKeptFileMeansNothing) {
  files.put(client->backup(u".next"_s), kNew);
  files.put(client->backup(u".marker"_s), "_00-11-22-33-44-55\n0000\n");
  client->rewrite.recoverAtConnect();
  EXPECT_FALSE(files.exists(kServerFile));
  EXPECT_FALSE(leftBehind());
}

TEST_F(Rewrite, NothingIsRecoveredOntoAShareThatIsNotThere) {
  files.put(client->backup(u".next"_s), kNew);
  files.put(client->backup(u".marker"_s),
            "_00-11-22-33-44-55\n" + QCryptographicHash::hash(kNew, QCryptographicHash::Sha256).toHex() + '\n');
  files.unmount(u"/Volumes/VB-SHARE$"_s);
  client->rewrite.recoverAtConnect();
  EXPECT_TRUE(leftBehind());
  EXPECT_TRUE(client->desktop.logged(u"Exception in ---> <AppController><recoverAtConnect>"_s));
}

TEST_F(Rewrite, EachProductHasItsOwnBackup) {
  EXPECT_EQ(client->rewrite.backupFolderOfProduct(), u"/Client/Backup/_00-11-22-33-44-55"_s);
  client->session.setHardwareAddress(QString());
  client->session.setConnectedAddress(u"192.168.1.7"_s);
  client->session.setIPAddressString(u"192.168.1.8"_s); // chosen, not connected yet
  EXPECT_EQ(client->rewrite.backupFolderOfProduct(), u"/Client/Backup/_192.168.1.7"_s);
  client->session.setConnectedAddress(u"../../etc:x"_s);
  EXPECT_EQ(client->rewrite.backupFolderOfProduct(), u"/Client/Backup/_.._.._etc_x"_s);
}

// A write that failed on one product must never reach another one.
TEST_F(Rewrite, AnInterruptedRewriteOfOneProductDoesNotReachAnother) {
  files.put(kServerFile, kOld);
  files.beforeOperation = [&](int) {
    if (!files.log().isEmpty() && files.log().last() == u"removeFile "_s + kServerFile) {
      files.setUnknown(u"/Volumes/VB-SHARE$"_s, true);
    }
  };
  EXPECT_THROW(write(kNew), Failure);
  files.beforeOperation = nullptr;
  files.setUnknown(u"/Volumes/VB-SHARE$"_s, false);
  client->session.setHardwareAddress(u"66-77-88-99-AA-BB"_s);
  client->rewrite.recoverAtConnect();
  EXPECT_FALSE(files.exists(kServerFile));
  client->session.setHardwareAddress(u"00-11-22-33-44-55"_s);
  client->rewrite.recoverAtConnect();
  EXPECT_EQ(files.bytes(kServerFile), kNew);
}

TEST_F(Rewrite, TwoClientsInTurnSeeEachOthersFile) {
  FavouritesWorkbench other(files, u"Auralis 5"_s, u"/Other"_s, 100);
  EXPECT_TRUE(write(kOld));
  FavouritesRewrite::Turn turn = other.rewrite.begin(FavouritesKind::Music);
  EXPECT_EQ(turn.look().bytes, kOld);
}

TEST_F(Rewrite, ASecondClientWaitsForTheFirst) {
  FavouritesWorkbench other(files, u"Auralis 5"_s, u"/Other"_s, 100);
  {
    FavouritesRewrite::Turn turn = client->rewrite.begin(FavouritesKind::Music);
    std::stop_source stop;
    other.clock.onSleep = [&] { stop.request_stop(); };
    EXPECT_THROW(static_cast<void>(other.rewrite.begin(FavouritesKind::Music, stop.get_token())), Failure);
    EXPECT_EQ(other.clock.sleeps.size(), 1);
  }
  EXPECT_NO_THROW(static_cast<void>(other.rewrite.begin(FavouritesKind::Music)));
}
