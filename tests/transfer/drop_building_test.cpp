#include "transfer/DropBuilding.h"

#include "support/FakeFileSystem.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

using Kind = QueueEntry::Kind;

const QString kAuracore = u"Auracore 5"_s;

class DropBuildingTest : public testing::Test {
protected:
  DropBuildingTest() {
    for (const QString &path : {u"/m/1.mp3"_s, u"/m/p.JPG"_s, u"/m/notes.txt"_s}) {
      files.put(path, "x");
    }
  }

  FakeFileSystem files;
};

} // namespace

TEST_F(DropBuildingTest, APlaylistQueuesWhatIsThereAndRecordsItByItsKind) {
  const Drop drop =
      dropOf(u"Party"_s, {u"/m/1.mp3"_s, u"/m/gone.mp3"_s, u"/m/notes.txt"_s, u"/m/p.JPG"_s}, files, kAuracore);
  EXPECT_EQ(drop.items, (QList<QueueEntry>{{Kind::Path, u"/m/1.mp3"_s, {}},
                                           {Kind::Path, u"/m/notes.txt"_s, {}},
                                           {Kind::Path, u"/m/p.JPG"_s, {}}}));
  EXPECT_EQ(drop.tracks, QStringList{u"/m/1.mp3"_s});
  EXPECT_EQ(drop.purgedPlaylist, u"Party"_s);
  EXPECT_EQ(drop.musicRecords, (QList<PlaylistInfo>{{u"Party"_s, u"/m/1.mp3"_s, {}, {}, u"N"_s}}));
  EXPECT_EQ(drop.pictureRecords, (QList<PlaylistInfo>{{u"Party"_s, u"/m/p.JPG"_s, {}, u"/m/p.JPG"_s, u"N"_s}, {}}));
  EXPECT_TRUE(drop.hasVideoOrPicture);
}

TEST_F(DropBuildingTest, AnyNameButAMarkerIsPurged) {
  const QStringList song{u"/m/1.mp3"_s};
  EXPECT_EQ(dropOf({}, song, files, kAuracore).purgedPlaylist, QString());
  EXPECT_EQ(dropOf(u"Finder"_s, song, files, kAuracore).purgedPlaylist, u"Finder"_s);
  EXPECT_EQ(dropOf(u"@!!!Red!!!@"_s, song, files, kAuracore).purgedPlaylist, std::nullopt);
  EXPECT_EQ(dropOf(u"N0PL@YL!ST"_s, song, files, kAuracore).purgedPlaylist, std::nullopt);
}

TEST_F(DropBuildingTest, AFramedNameIsNoPlaylistForOneProduct) {
  const QStringList both{u"/m/1.mp3"_s, u"/m/p.JPG"_s};
  const Drop loose = dropOf(u"@~Jazz@~"_s, both, files, u"Auralis 5"_s);
  EXPECT_EQ(loose.purgedPlaylist, std::nullopt);
  EXPECT_EQ(loose.musicRecords, (QList<PlaylistInfo>{{u"N0PL@YL!ST"_s, u"/m/1.mp3"_s, {}, {}, u"N"_s}}));
  EXPECT_TRUE(loose.pictureRecords.isEmpty());
  EXPECT_TRUE(loose.hasVideoOrPicture);

  const Drop framed = dropOf(u"@~Jazz@~"_s, both, files, u"Vaultbox 1"_s);
  EXPECT_EQ(framed.purgedPlaylist, u"@~Jazz@~"_s);
  EXPECT_EQ(framed.musicRecords, (QList<PlaylistInfo>{{u"@~Jazz@~"_s, u"/m/1.mp3"_s, {}, {}, u"N"_s}}));
  EXPECT_EQ(framed.pictureRecords, (QList<PlaylistInfo>{{u"Jazz"_s, u"/m/p.JPG"_s, {}, u"/m/p.JPG"_s, u"N"_s}, {}}));
}

TEST_F(DropBuildingTest, ARadioStationIsQueuedWithoutARecord) {
  const Drop drop = dropOf(u"Party"_s, {u"@~RadioX"_s}, files, kAuracore);
  EXPECT_EQ(drop.items, (QList<QueueEntry>{{Kind::Radio, u"@~RadioX"_s, {}}}));
  EXPECT_TRUE(drop.musicRecords.isEmpty());
}

TEST_F(DropBuildingTest, PathsOfTheFileBrowserAreNotLookedAt) {
  files.clearLog();
  const Drop drop = dropOf(u"Finder"_s, {u"/m/gone.mp3"_s, u"/m/p.JPG"_s}, files, kAuracore);
  EXPECT_EQ(drop.items, (QList<QueueEntry>{{Kind::Path, u"/m/gone.mp3"_s, {}}, {Kind::Path, u"/m/p.JPG"_s, {}}}));
  EXPECT_TRUE(drop.tracks.isEmpty());
  EXPECT_TRUE(drop.musicRecords.isEmpty());
  EXPECT_TRUE(drop.pictureRecords.isEmpty());
  EXPECT_EQ(files.log(), QStringList());
}

TEST(DropOfAlbums, TheImagesStandInThePlaceOfWhatWasDragged) {
  const auto imagesOf = [](const QStringList &dropped) {
    EXPECT_EQ(dropped, (QStringList{u"/t/1.jpg"_s, u"/t/2.jpg"_s, u"/t/3.jpg"_s}));
    return QStringList{u"/i/1.jpg"_s, u"/t/2.jpg"_s, u"/i/3.jpg"_s};
  };
  const Drop drop = dropOfAlbums(
      {QVariantMap{{u"albumName"_s, u"Summer"_s}, {u"draggedFiles"_s, QStringList{u"/t/1.jpg"_s, u"/t/2.jpg"_s}}},
       QVariantMap{{u"albumName"_s, u"Empty"_s}, {u"draggedFiles"_s, QStringList()}},
       QVariantMap{{u"albumName"_s, u"N0PL@YL!ST"_s}, {u"draggedFiles"_s, QStringList{u"/t/3.jpg"_s}}}},
      imagesOf);
  EXPECT_EQ(drop.items,
            (QList<QueueEntry>{
                {Kind::Path, u"/i/1.jpg"_s, {}}, {Kind::Path, u"/t/2.jpg"_s, {}}, {Kind::Path, u"/i/3.jpg"_s, {}}}));
  EXPECT_EQ(drop.pictureRecords, (QList<PlaylistInfo>{{u"Summer"_s, u"/i/1.jpg"_s, {}, u"/i/1.jpg"_s, u"N"_s},
                                                      {u"Summer"_s, u"/t/2.jpg"_s, {}, u"/t/2.jpg"_s, u"N"_s},
                                                      {},
                                                      {}}));
  EXPECT_FALSE(drop.hasVideoOrPicture);
}

TEST(DropOfBookmarks, EachPairIsTheNameAndTheTextOfAFile) {
  const Drop drop = dropOfBookmarks({u"a/b:c"_s, u"no address"_s}, {u"http://one/"_s});
  EXPECT_EQ(drop.items,
            (QList<QueueEntry>{{Kind::BookmarkPair, u"a_b_c.url"_s, u"[InternetShortcut]\nURL=http://one/"_s}}));
  EXPECT_EQ(drop.purgedPlaylist, std::nullopt);
}

} // namespace sonorel::test
