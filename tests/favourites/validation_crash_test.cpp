// The client dies at every single operation of a validation: at that instant the complete old or the complete new
// file exists under a known name, and the next run ends with a right one.
#include "FavouritesWorkbench.h"
#include "HandMade.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

// Keys at the end, so that the validation changes something: old and new are told apart by the order.
std::vector<QByteArray> oldContents() {
  std::vector<QByteArray> records = keyRecords();
  records.insert(records.begin(), listRecord("Party", "9", "6", guid('p')));
  return {albums(records), titles({titleRecord("E:\\vb-share\\Music\\Mac\\a.mp3", zeros36(), guid('s'), "1")}),
          titles({}),      titles({}),
          titles({}),      titles({})};
}

std::vector<QByteArray> newContents() {
  std::vector<QByteArray> records = keyRecords();
  records.push_back(listRecord("Party", "9", "6", guid('p')));
  return {albums(records), titles({}),
          titles({}),      titles({}),
          titles({}),      titles({titleRecord("E:\\vb-share\\Music\\Mac\\a.mp3", zeros36(), guid('s'), "1")})};
}

// Dies at that operation of the validation; false when it ended before.
bool validateAndDie(FakeFileSystem &files, int operation) {
  FavouritesWorkbench client(files);
  const int before = files.operations();
  files.dieAt(operation);
  try {
    client.rewrite.recoverAtConnect();
    client.dictionary.validateOrvFile();
  } catch (const Died &) {
    return true;
  }
  const bool died = files.isDead(); // in a destructor, which lets nothing out
  EXPECT_TRUE(died || files.operations() - before < operation);
  return died;
}

bool holdsComplete(FakeFileSystem &files, const QString &path) {
  if (!files.exists(path)) {
    return false;
  }
  const std::vector<QByteArray> found = contentsOf(files.bytes(path));
  return found == oldContents() || found == newContents();
}

bool completeUnderAKnownName(FakeFileSystem &files) {
  const QString backup = u"/Client/Backup/_00-11-22-33-44-55/NetMusicFavorites.orv"_s;
  if (files.exists(kServerFile)) {
    return holdsComplete(files, kServerFile);
  }
  return holdsComplete(files, backup + u".next"_s) && holdsComplete(files, backup + u".previous"_s) &&
         files.exists(backup + u".marker"_s);
}

void expectRight(FakeFileSystem &files, const char *where, int operation) {
  ASSERT_TRUE(files.exists(kServerFile)) << where << operation;
  EXPECT_EQ(contentsOf(files.bytes(kServerFile)), newContents()) << where << operation;
  EXPECT_FALSE(files.exists(kServerLock)) << where << operation;
  EXPECT_FALSE(files.exists(u"/Client/Backup/_00-11-22-33-44-55/NetMusicFavorites.orv.marker"_s))
      << where << operation;
}

void startShare(FakeFileSystem &files) {
  mountShare(files, u"Auralis 5"_s);
  files.put(kServerFile, wholeFile(musicHeader(), oldContents()));
}

} // namespace

TEST(ValidationCrash, AtEveryOperationNothingIsLostAndTheNextRunEndsRight) {
  int operation = 1;
  for (;; ++operation) {
    FakeFileSystem files;
    startShare(files);
    if (!validateAndDie(files, operation)) {
      break;
    }
    files.revive();
    EXPECT_TRUE(completeUnderAKnownName(files)) << "operation " << operation;
    const bool lockWasEmpty = files.exists(kServerLock) && files.bytes(kServerLock).isEmpty();
    FavouritesWorkbench next(files);
    next.rewrite.recoverAtConnect();
    EXPECT_TRUE(holdsComplete(files, kServerFile)) << "after the recovery, operation " << operation;
    EXPECT_TRUE(next.dictionary.validateOrvFile()) << "operation " << operation;
    EXPECT_TRUE(next.clock.sleeps.isEmpty() || lockWasEmpty)
        << "waits for its own dead lock, operation " << operation;
    expectRight(files, "operation ", operation);
  }
  EXPECT_GT(operation, 30); // the sweep really went through a whole rewrite
}

// It dies again while it makes good what the first death left.
TEST(ValidationCrash, ASecondDeathDuringTheRecoveryLosesNothingEither) {
  int first = 1;
  for (bool died = true; died; ++first) {
    FakeFileSystem probe;
    startShare(probe);
    died = validateAndDie(probe, first);
    if (!died || probe.exists(kServerFile)) {
      continue; // only deaths between the delete and the new file
    }
    for (int second = 1;; ++second) {
      FakeFileSystem files;
      startShare(files);
      EXPECT_TRUE(validateAndDie(files, first));
      files.revive();
      if (!validateAndDie(files, second)) {
        break;
      }
      files.revive();
      EXPECT_TRUE(completeUnderAKnownName(files)) << "operations " << first << " and " << second;
      FavouritesWorkbench next(files);
      next.rewrite.recoverAtConnect();
      EXPECT_TRUE(next.dictionary.validateOrvFile());
      expectRight(files, "second death at operation ", second);
    }
  }
  EXPECT_GT(first, 30);
}

// Another client that comes while the first lies dead between delete and write must not take the gap for an empty
// share.
TEST(ValidationCrash, AnotherClientWaitsAtTheLockOfADeadOne) {
  for (int operation = 1;; ++operation) {
    FakeFileSystem files;
    startShare(files);
    if (!validateAndDie(files, operation)) {
      FAIL() << "no death between the delete and the new file";
    }
    files.revive();
    if (files.exists(kServerFile)) {
      continue;
    }
    FavouritesWorkbench other(files, u"Auralis 5"_s, u"/Other"_s, 100);
    std::stop_source stop;
    int waits = 0;
    other.clock.onSleep = [&] {
      if (++waits == 10) { // the first one is started again meanwhile
        FavouritesWorkbench next(files);
        next.rewrite.recoverAtConnect();
      }
    };
    EXPECT_TRUE(other.dictionary.validateOrvFile(stop.get_token()));
    EXPECT_EQ(waits, 10);
    expectRight(files, "operation ", operation);
    return;
  }
}
