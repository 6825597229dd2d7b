// The client dies at every single operation while it writes photo albums: at that instant the complete old or the
// complete new file exists under a known name, and the next connection ends with one of them on the share.
#include "HandMade.h"
#include "MergeWorkbench.h"
#include "favourites/EmptyPhotoFavourites.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const QString kBackup = u"/Client/Backup/_00-11-22-33-44-55/PhotoFavorites.orv"_s;

// The server's file before the write; none: it is missing.
using Before = std::optional<std::vector<QByteArray>>;

std::vector<QByteArray> withAlbum() {
  return {albums({listRecord("Old", "5", "6", guid('o'))}), titles({picture("o.jpg", guid('p'))})};
}

std::vector<QByteArray> newContents(const Before &before) {
  const QByteArray added = listRecord("Rome", "7", "6", countedGuid(1));
  const QByteArray pictures = titles({picture("p\\1.jpg", countedGuid(2))});
  if (before != withAlbum()) {
    return {albums({added}), pictures};
  }
  return {albums({listRecord("Old", "5", "6", guid('o')), added}), withAlbum().at(1), pictures};
}

void startShare(FakeFileSystem &files, const Before &before) {
  mountShare(files, u"Auracore 5"_s);
  if (before) {
    files.put(kServerPhotoFile, wholeFile(photoHeader(), *before));
  }
}

// Dies at that operation of a transfer's end; false when it ended before.
bool sendAndDie(FakeFileSystem &files, int operation) {
  MergeWorkbench client(files, u"Auracore 5"_s);
  client.settings.set(u"PlaylistID"_s, u"7"_s);
  client.pictureOf(u"Rome"_s, u"/p/1.jpg"_s);
  client.endAlbum();
  files.dieAt(operation);
  try {
    static_cast<void>(client.sendPictures());
  } catch (const Died &) {
    return true;
  }
  return files.isDead(); // in a destructor, which lets nothing out
}

bool holds(FakeFileSystem &files, const QString &path, const std::vector<QByteArray> &contents) {
  return files.exists(path) && contentsOf(files.bytes(path), 73) == contents;
}

bool completeUnderAKnownName(FakeFileSystem &files, const Before &before) {
  if (files.exists(kServerPhotoFile) || !before) {
    return !files.exists(kServerPhotoFile) || holds(files, kServerPhotoFile, newContents(before)) ||
           (before && holds(files, kServerPhotoFile, *before));
  }
  return holds(files, kBackup + u".next"_s, newContents(before)) && holds(files, kBackup + u".previous"_s, *before) &&
         files.exists(kBackup + u".marker"_s);
}

// What the next connection does with the photo file, in its order.
void connectAgain(FakeFileSystem &files) {
  FavouritesWorkbench next(files, u"Auracore 5"_s);
  PhotoFavourites(next.desktop, next.identifiers, next.session, next.rewrite)
      .createIfMissing(emptyPhotoFavourites(), {});
  next.rewrite.recoverAtConnect();
}

void expectRight(FakeFileSystem &files, const Before &before, const std::string &where) {
  const std::vector<QByteArray> empty{albums({})};
  const bool old = holds(files, kServerPhotoFile, before.value_or(empty));
  EXPECT_TRUE(old || holds(files, kServerPhotoFile, newContents(before))) << where;
  EXPECT_FALSE(files.exists(kServerLock)) << where;
  EXPECT_FALSE(files.exists(kBackup + u".marker"_s)) << where;
}

// Plays a death at every operation; gives their number.
int sweep(const Before &before) {
  for (int operation = 1;; ++operation) {
    FakeFileSystem files;
    startShare(files, before);
    if (!sendAndDie(files, operation)) {
      EXPECT_TRUE(holds(files, kServerPhotoFile, newContents(before)));
      return operation;
    }
    files.revive();
    const bool deleted = before && !files.exists(kServerPhotoFile);
    EXPECT_TRUE(completeUnderAKnownName(files, before)) << "operation " << operation;
    connectAgain(files);
    expectRight(files, before, "operation " + std::to_string(operation));
    if (deleted) {
      EXPECT_TRUE(holds(files, kServerPhotoFile, newContents(before))) << "operation " << operation;
    }
  }
}

} // namespace

TEST(PhotoCrash, AtEveryOperationOfAnExtensionNothingIsLost) {
  EXPECT_GT(sweep(withAlbum()), 25); // it really went through a whole rewrite
}

TEST(PhotoCrash, AtEveryOperationOfTheFirstAlbumNothingIsLost) {
  EXPECT_GT(sweep(std::vector<QByteArray>{albums({})}), 25);
  EXPECT_GT(sweep(std::nullopt), 20);
}

TEST(PhotoCrash, ASecondDeathWhileTheFirstIsMadeGoodLosesNothingEither) {
  const Before before = withAlbum();
  int played = 0;
  for (int first = 1;; ++first) {
    FakeFileSystem probe;
    startShare(probe, before);
    if (!sendAndDie(probe, first)) {
      break;
    }
    if (probe.exists(kServerPhotoFile)) {
      continue; // only deaths between the delete and the new file
    }
    for (int second = 1;; ++second, ++played) {
      FakeFileSystem files;
      startShare(files, before);
      EXPECT_TRUE(sendAndDie(files, first));
      files.revive();
      files.dieAt(second);
      try {
        connectAgain(files);
      } catch (const Died &) {
        static_cast<void>(0);
      }
      if (!files.isDead()) {
        break;
      }
      files.revive();
      EXPECT_TRUE(completeUnderAKnownName(files, before)) << first << " and " << second;
      connectAgain(files);
      EXPECT_TRUE(holds(files, kServerPhotoFile, newContents(before))) << first << " and " << second;
      expectRight(files, before, std::to_string(first) + " and " + std::to_string(second));
    }
  }
  EXPECT_GT(played, 10);
}
