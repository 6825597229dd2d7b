// Items that are no tracks, tracks that are no files, and what the share may hold already.
#include "TransferWorkbench.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kTooSmall = u" was not transferred: music files must be at least 128 KB in size."_s;
const QString kNotSupported = u" was not transferred because this kind of file or bookmark is not supported."_s;
const QString kTemporary = u"/private/tmp/"_s;
const QString kCaches = u"/Users/me/Library/Caches/TemporaryItems/"_s;

class TransferItemsTest : public testing::Test {
protected:
  static TrackTags waterloo() {
    TrackTags tags;
    tags.authors = QStringList{u"ABBA"_s};
    tags.album = u"Gold"_s;
    tags.title = u"Waterloo"_s;
    return tags;
  }

  TransferWorkbench bench;
};

} // namespace

TEST_F(TransferItemsTest, FoldersPipesAndDevicesAreRefusedByTheirSize) {
  bench.files.makeFolders(u"/m/folder.mp3"_s);
  bench.files.putOther(u"/m/pipe.mp3"_s);
  bench.files.putOther(u"/m/device.wav"_s);
  bench.files.putOther(u"/m/pipe"_s);
  bench.files.makeFolders(u"/m/folder"_s);
  bench.drop(u"Party"_s, {u"/m/folder.mp3"_s, u"/m/pipe.mp3"_s, u"/m/device.wav"_s, u"/m/pipe"_s, u"/m/folder"_s});
  EXPECT_EQ(bench.view.lastLog,
            u"\"folder.mp3\""_s + kTooSmall + u"\n\"pipe.mp3\""_s + kTooSmall +
                u"\n\"device.wav\" was not transferred: WAV files must be at least 5 MB in size.\n\"pipe\""_s +
                kNotSupported + u"\n\"folder\""_s + kNotSupported);
  EXPECT_TRUE(bench.processes.requests.isEmpty());
  EXPECT_TRUE(bench.musicTree().isEmpty());
}

TEST_F(TransferItemsTest, AnUnknownFormatIsLoggedAndKeepsItsName) {
  bench.files.put(u"/m/A/B/odd_name.mp3"_s, QByteArray(200'000, 'x'));
  bench.drop(u"Party"_s, {u"/m/A/B/odd_name.mp3"_s});
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/odd_name.mp3"_s});
  EXPECT_EQ(bench.desktop.lines.count(u"/m/A/B/odd_name.mp3... File has no metadata!"_s), 1);
}

// What a link leads to is carried, and counts when the track is dropped again.
TEST_F(TransferItemsTest, ALinkedTrackIsCarriedOnce) {
  const QString link = u"/m/ABBA/Gold/01.mp3"_s;
  bench.song(u"/disk/waterloo.mp3"_s, waterloo());
  bench.files.putLink(link, u"/disk/waterloo.mp3"_s);
  bench.tags.set(link, waterloo());
  for (int drop = 0; drop < 2; ++drop) {
    bench.drop(u"Party"_s, {link});
    EXPECT_EQ(bench.musicTree(), QStringList{u"ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s});
    EXPECT_EQ(bench.view.lastLog, u"The transfer has ended."_s);
  }
  EXPECT_EQ(bench.processes.programs(), QStringList{u"/bin/cp"_s});
}

// The disk is asked for the link alone: the copy finds out by itself.
TEST_F(TransferItemsTest, ALinkedTrackThatDoesNotFitFailsByItself) {
  const QString link = u"/m/ABBA/Gold/01.mp3"_s;
  bench.song(u"/disk/waterloo.mp3"_s, waterloo());
  bench.files.putLink(link, u"/disk/waterloo.mp3"_s);
  bench.files.setFreeBytes(kMountPoint.toString(), 200'000 - 1);
  bench.drop(u"Party"_s, {link});
  EXPECT_EQ(bench.view.lastLog, u"\"01.mp3\" could not be transferred."_s);
  EXPECT_TRUE(bench.musicTree().isEmpty());
}

TEST_F(TransferItemsTest, ALosslessTestWithoutTagsIsLogged) {
  bench.files.put(u"/m/A/B/x.m4a"_s, QByteArray(200'000, 'x'));
  bench.drop(u"Party"_s, {u"/m/A/B/x.m4a"_s});
  EXPECT_TRUE(bench.desktop.lines.contains(u"/m/A/B/x.m4a... File has no metadata inside AppleLossless!"_s));
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/x.m4a"_s});
}

TEST_F(TransferItemsTest, OnlyTheFirstCodecTellsLossless) {
  TrackTags tags = waterloo();
  tags.codecs = QStringList{u"AAC"_s, u"Apple Lossless"_s};
  bench.drop(u"Party"_s, {bench.song(u"/m/A/B/x.m4a"_s, tags)});
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/ABBA-Gold-Waterloo.m4a"_s});
}

TEST_F(TransferItemsTest, ARefusedAddressFileLosesItsTemporaryCopy) {
  bench.files.put(u"/m/a.inetloc"_s, "x");
  bench.files.put(u"/m/b.inetloc"_s, "x");
  bench.files.put(u"/m/c.INETLOC"_s, "x");
  bench.files.put(kTemporary + u"a.inetloc"_s, "x");
  bench.files.put(kCaches + u"a.inetloc"_s, "x");
  bench.files.put(kCaches + u"b.inetloc"_s, "x");
  bench.files.put(kTemporary + u"c.INETLOC"_s, "x");
  bench.drop(u"Finder"_s, {u"/m/a.inetloc"_s, u"/m/b.inetloc"_s, u"/m/c.INETLOC"_s});
  EXPECT_FALSE(bench.files.exists(kTemporary + u"a.inetloc"_s));
  EXPECT_TRUE(bench.files.exists(kCaches + u"a.inetloc"_s)) << "only one of the two";
  EXPECT_FALSE(bench.files.exists(kCaches + u"b.inetloc"_s));
  EXPECT_TRUE(bench.files.exists(kTemporary + u"c.INETLOC"_s)) << "the extension is compared exactly";
  EXPECT_TRUE(bench.files.exists(u"/m/a.inetloc"_s));
  EXPECT_EQ(bench.view.lastLog, u"\"a.inetloc\""_s + kNotSupported + u"\n\"b.inetloc\""_s + kNotSupported +
                                    u"\n\"c.INETLOC\""_s + kNotSupported);
}

TEST_F(TransferItemsTest, ATemporaryCopyThatCannotBeRemovedHoldsNothingUp) {
  bench.files.put(u"/m/a.inetloc"_s, "x");
  bench.files.put(kTemporary + u"a.inetloc"_s, "x");
  bench.files.failPath(kTemporary + u"a.inetloc"_s, FailureKind::Other);
  bench.drop(u"Finder"_s, {u"/m/a.inetloc"_s, bench.song(u"/m/A/B/1.mp3"_s, waterloo())});
  EXPECT_EQ(bench.musicTree(), QStringList{u"B/ABBA-Gold-Waterloo.mp3"_s});
  EXPECT_TRUE(bench.view.lastLog.endsWith(u"The transfer has ended."_s));
}

// The flat copy differs, is removed, and its copy fails: another identical copy still means that the track is there.
struct FailedReplacement {
  QString dropName;
  QString path;
  QString title;
  QStringList places;
};

TEST_F(TransferItemsTest, AnIdenticalCopyUnderAnyOfTheNamesCounts) {
  const QString longTitle(190, u't');
  const QString longName(226, u'x');
  const QString shortened = u'(' + QString(218, u'x') + u").mp3"_s;
  const QList<FailedReplacement> cases{
      {u"Party"_s,
       u"/m/ABBA/Gold/01.mp3"_s,
       u"Waterloo"_s,
       {u"ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s, u"ABBA/Gold/01.mp3"_s, u"ABBA/Gold/(01).mp3"_s, u"01.mp3"_s,
        u"(01).mp3"_s, u"(_ABBA_)-(Gold)-(Waterloo).mp3"_s, u"ABBA/Gold/(_ABBA_)-(Gold)-(Waterloo).mp3"_s}},
      // no track of a playlist: the album's folder alone
      {u"Finder"_s,
       u"/m/ABBA/Gold/01.mp3"_s,
       u"Waterloo"_s,
       {u"Gold/ABBA-Gold-Waterloo.mp3"_s, u"Gold/01.mp3"_s, u"Gold/(01).mp3"_s,
        u"Gold/(_ABBA_)-(Gold)-(Waterloo).mp3"_s}},
      // the artist's folder does not fit before these names
      {u"Party"_s,
       u"/m/ABBA, live and again/Gold/01.mp3"_s,
       longTitle,
       {u"Gold/ABBA-Gold-"_s + longTitle + u".mp3"_s, u"Gold/01.mp3"_s, u"Gold/(01).mp3"_s,
        u"Gold/(_ABBA_)-(Gold)-("_s + longTitle + u").mp3"_s}},
      {u"Party"_s,
       u"/m/ABBA/Gold/"_s + longName + u".mp3"_s,
       u"Waterloo"_s,
       {u"ABBA/Gold/"_s + shortened, shortened}},
  };
  for (const FailedReplacement &one : cases) {
    for (const QString &place : one.places) {
      TransferWorkbench fresh;
      TrackTags tags = waterloo();
      tags.title = one.title;
      const QString song = fresh.song(one.path, tags);
      fresh.files.put(kMusic + u"ABBA-Gold-"_s + one.title + u".mp3"_s, QByteArray(200'001, 'm'), 1000);
      fresh.files.put(kMusic + place, QByteArray(200'000, 'm'), 1000);
      fresh.processes.onRun = [](const ToolRequest &) { return exited(1); };
      fresh.drop(one.dropName, {song});
      EXPECT_EQ(fresh.view.lastLog, u"The transfer has ended."_s) << place.toStdString();
      EXPECT_EQ(fresh.sent.last(), u"collections"_s);
    }
  }
}

// A share that does not tell large letters from small ones has one file for both places.
TEST_F(TransferItemsTest, ATrackWhoseFileWentForOneThatIsWrittenOtherwiseIsNotOnTheShare) {
  TrackTags shouted = waterloo();
  shouted.title = u"WATERLOO"_s;
  const QString first = bench.song(u"/m/A/B/01.mp3"_s, waterloo());
  const QString second = bench.song(u"/m/A/B/02.mp3"_s, shouted, 200'001);
  const QString placeOfFirst = kMusic + u"A/B/ABBA-Gold-Waterloo.mp3"_s;
  const QString placeOfSecond = kMusic + u"A/B/ABBA-Gold-WATERLOO.mp3"_s;
  bench.files.put(placeOfSecond, "one file", 900);
  bench.files.beforeOperation = [&](int) {
    if (bench.files.log().constLast() == u"removeFile "_s + placeOfSecond && bench.files.exists(placeOfFirst)) {
      bench.files.erase(placeOfFirst);
    }
  };
  bench.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    return request.arguments.value(1) == second ? std::optional(exited(1)) : std::nullopt;
  };
  bench.drop(u"Party"_s, {first, second});
  EXPECT_EQ(bench.musicTree(), QStringList());
  EXPECT_EQ(bench.sentRecords[0].songTransferFlag, u"N"_s);
  EXPECT_EQ(bench.sentRecords[1].songTransferFlag, u"N"_s);
}

// On one that does, they are two.
TEST_F(TransferItemsTest, ATrackBesideAFailedOneThatIsWrittenOtherwiseStays) {
  TrackTags shouted = waterloo();
  shouted.title = u"WATERLOO"_s;
  const QString first = bench.song(u"/m/A/B/01.mp3"_s, waterloo());
  const QString second = bench.song(u"/m/A/B/02.mp3"_s, shouted, 200'001);
  bench.files.put(kMusic + u"A/B/ABBA-Gold-WATERLOO.mp3"_s, "another file", 900);
  bench.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    return request.arguments.value(1) == second ? std::optional(exited(1)) : std::nullopt;
  };
  bench.drop(u"Party"_s, {first, second});
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/ABBA-Gold-Waterloo.mp3"_s});
  EXPECT_EQ(bench.sentRecords[0].songTransferFlag, u"Y"_s);
  EXPECT_EQ(bench.sentRecords[1].songTransferFlag, u"N"_s);
}

TEST_F(TransferItemsTest, ADifferentFileUnderAnyOfTheNamesDoesNotCount) {
  const QString song = bench.song(u"/m/ABBA/Gold/01.mp3"_s, waterloo());
  bench.files.put(kMusic + u"ABBA-Gold-Waterloo.mp3"_s, QByteArray(200'001, 'm'), 1000);
  bench.files.put(kMusic + u"ABBA/Gold/01.mp3"_s, QByteArray(200'000, 'm'), 1001);
  bench.processes.onRun = [](const ToolRequest &) { return exited(1); };
  bench.drop(u"Party"_s, {song});
  EXPECT_EQ(bench.view.lastLog, u"\"01.mp3\" could not be transferred."_s);
}

// Two tracks of equal tags share one place; when the second one takes it and does not arrive, neither is there.
TEST_F(TransferItemsTest, ATrackWhoseFileWentForAnotherIsNotOnTheShare) {
  const QString first = bench.song(u"/m/A/B/01.mp3"_s, waterloo());
  const QString second = bench.song(u"/m/A/B/02.mp3"_s, waterloo(), 200'001);
  const QString third = bench.song(u"/m/A/B/03.mp3"_s, {});
  bench.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    return request.arguments.value(1) == second ? std::optional(exited(1)) : std::nullopt;
  };
  bench.drop(u"Party"_s, {third, first, second});
  EXPECT_EQ(bench.musicTree(), QStringList{u"A/B/(03).mp3"_s});
  EXPECT_EQ(bench.sentRecords[0].songTransferFlag, u"Y"_s);
  EXPECT_EQ(bench.sentRecords[1].songTransferFlag, u"N"_s);
  EXPECT_EQ(bench.sentRecords[2].songTransferFlag, u"N"_s);
}

} // namespace sonorel::test
