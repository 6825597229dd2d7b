// The client dies at every single operation while it writes the lists of a transfer, while it fails to, and while the
// next run writes what was kept: once the lists are kept no death loses them, and none writes a list twice.
#include "MergeWorkbench.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

constexpr int kNever = 1'000'000;

enum class Share { Sound, RefusesFavourites, Gone };

const QStringList kMusic{u"1 Red: Gold/2"_s, u"2 Green: "_s,          u"3 Yellow: "_s,
                         u"4 Blue: "_s,      u"5 @~Old@~: o.mp3/1"_s, u"6 @~Party@~: a.mp3/1"_s};
const QStringList kMusicBefore{u"1 Red: "_s, u"2 Green: "_s, u"3 Yellow: "_s, u"4 Blue: "_s, u"5 @~Old@~: o.mp3/1"_s};
const QStringList kPhotos{u"6 Rome: Rome\\1.jpg"_s, u"7 : "_s, u"7 Oslo: Oslo\\2.jpg"_s};

bool isKept(const FakeFileSystem &files) {
  const QStringList names = files.tree(u"/Client/Backup"_s).keys();
  return std::any_of(names.begin(), names.end(), [](const QString &name) {
    return name.contains(u".unwritten-"_s) && !name.section(u'/', -1).startsWith(u'.');
  });
}

// A share with one list, as a client left it.
void startShare(FakeFileSystem &files) {
  mountShare(files, u"Auracore 5"_s);
  MergeWorkbench client(files, u"Auracore 5"_s);
  client.track(u"Old"_s, u"o.mp3"_s);
  ASSERT_TRUE(client.send());
}

// The end of a transfer; false when it was over before that operation.
bool sendAndDie(FakeFileSystem &files, bool photos, Share share, int operation) {
  MergeWorkbench client(files, u"Auracore 5"_s, u"/Client"_s, 100);
  client.settings.load();
  client.connected = share != Share::Gone;
  if (share == Share::RefusesFavourites) {
    files.failPath(photos ? kServerPhotoFile : kServerFile, FailureKind::Unknown);
  }
  client.track(u"Party"_s, u"a.mp3"_s);
  client.track(u"@!!!Red!!!@"_s, u"b.mp3"_s, u"Gold"_s);
  client.pictureOf(u"Rome"_s, u"/Rome/1.jpg"_s);
  client.endAlbum();
  client.pictureOf(u"Oslo"_s, u"/Oslo/2.jpg"_s);
  files.dieAt(operation);
  try {
    static_cast<void>(photos ? client.sendPictures() : client.send());
  } catch (const Died &) {
    return true;
  }
  return files.isDead();
}

// What a connection does with the favourites; false when it died at that operation.
bool connectAndDie(FakeFileSystem &files, int operation, QStringList *music = nullptr,
                   QStringList *photos = nullptr) {
  files.revive();
  files.clearFailures();
  MergeWorkbench next(files, u"Auracore 5"_s, u"/Client"_s, 1000);
  next.settings.load();
  files.dieAt(operation);
  try {
    next.rewrite.recoverAtConnect();
    EXPECT_TRUE(next.dictionary.validateOrvFile() || files.isDead());
    next.metaData.retryUnwritten({});
  } catch (const Died &) {
    return false;
  }
  if (files.isDead()) {
    return false;
  }
  files.dieAt(kNever);
  if (music != nullptr) {
    *music = next.shown();
    *photos = files.exists(kServerPhotoFile) ? next.shownPhotos() : QStringList();
  }
  return true;
}

QStringList connectedShare(FakeFileSystem &files, bool photos) {
  QStringList music;
  QStringList albums;
  EXPECT_TRUE(connectAndDie(files, kNever, &music, &albums));
  EXPECT_FALSE(isKept(files));
  EXPECT_EQ(photos ? music : albums, photos ? kMusicBefore : QStringList());
  return photos ? albums : music;
}

// Gives the number of operations played.
int sweep(bool photos, Share share) {
  const QStringList expected = photos ? kPhotos : kMusic;
  bool wasKept = false; // from its operation on the lists must not get lost any more
  for (int operation = 1;; ++operation) {
    SCOPED_TRACE("operation " + std::to_string(operation));
    FakeFileSystem files;
    startShare(files);
    const bool died = sendAndDie(files, photos, share, operation);
    wasKept = wasKept || isKept(files);
    const QStringList shown = connectedShare(files, photos);
    if (wasKept || !died) {
      EXPECT_EQ(shown, expected);
    } else {
      EXPECT_FALSE(shown.contains(expected.last()));
    }
    if (!died || testing::Test::HasFailure()) {
      EXPECT_TRUE(wasKept);
      return operation;
    }
  }
}

// The first run leaves the lists on the disk; the second dies while it writes them.
int sweepSecondRun(bool photos) {
  for (int operation = 1;; ++operation) {
    SCOPED_TRACE("operation " + std::to_string(operation));
    FakeFileSystem files;
    startShare(files);
    EXPECT_FALSE(sendAndDie(files, photos, Share::Gone, kNever));
    const bool died = !connectAndDie(files, operation);
    EXPECT_EQ(connectedShare(files, photos), photos ? kPhotos : kMusic);
    if (!died || testing::Test::HasFailure()) {
      return operation;
    }
  }
}

} // namespace

TEST(UnwrittenCrash, AtEveryOperationOfAnUndisturbedEndNothingIsLostOrWrittenTwice) {
  EXPECT_GT(sweep(false, Share::Sound), 40);
  EXPECT_GT(sweep(true, Share::Sound), 30);
}

TEST(UnwrittenCrash, AtEveryOperationOfAFailingEndNothingIsLostOrWrittenTwice) {
  EXPECT_GT(sweep(false, Share::RefusesFavourites), 10);
  EXPECT_GT(sweep(true, Share::RefusesFavourites), 10);
  EXPECT_GT(sweep(false, Share::Gone), 5);
  EXPECT_GT(sweep(true, Share::Gone), 5);
}

TEST(UnwrittenCrash, AtEveryOperationOfTheNextRunNothingIsLostOrWrittenTwice) {
  EXPECT_GT(sweepSecondRun(false), 80);
  EXPECT_GT(sweepSecondRun(true), 70);
}
