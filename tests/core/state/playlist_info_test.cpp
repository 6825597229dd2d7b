#include "core/state/PlaylistInfo.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

PlaylistInfo record(const QString &playlist, const QString &path) {
  return {playlist, path, {}, path, u"N"_s};
}

void markTransferred(PlaylistInfo &info) {
  info.songTransferFlag = u"Y"_s;
}

QStringList flags(const PlaylistRecords &records) {
  QStringList found;
  for (const PlaylistInfo &info : records.all()) {
    found.append(info.playlistName + u':' + info.sourceSongPath + u':' + info.songTransferFlag);
  }
  return found;
}

} // namespace

TEST(PlaylistRecords, KeepsDropOrder) {
  PlaylistRecords records({record(u"A"_s, u"2"_s)});
  records.append(record(u"A"_s, u"1"_s));
  records.append(QList<PlaylistInfo>{record(u"B"_s, u"2"_s), PlaylistInfo()});
  EXPECT_EQ(flags(records), (QStringList{u"A:2:N"_s, u"A:1:N"_s, u"B:2:N"_s, u"::"_s}));
}

TEST(PlaylistRecords, UpdatesEveryRecordOfThePathInOrder) {
  PlaylistRecords records({record(u"A"_s, u"x"_s), record(u"A"_s, u"y"_s), record(u"B"_s, u"x"_s)});
  QStringList seen;
  records.update(u"x"_s, [&](PlaylistInfo &info) {
    seen.append(info.playlistName);
    markTransferred(info);
  });
  EXPECT_EQ(seen, (QStringList{u"A"_s, u"B"_s}));
  EXPECT_EQ(flags(records), (QStringList{u"A:x:Y"_s, u"A:y:N"_s, u"B:x:Y"_s}));
}

TEST(PlaylistRecords, ComparesPathsExactly) {
  PlaylistRecords records({record(u"A"_s, u"/m/Song.mp3"_s)});
  records.update(u"/m/song.mp3"_s, markTransferred);
  records.update(u"/m/Song.mp"_s, markTransferred);
  EXPECT_EQ(flags(records), (QStringList{u"A:/m/Song.mp3:N"_s}));
}

TEST(PlaylistRecords, FindsRecordsAfterAPurge) {
  PlaylistRecords records(
      {record(u"A"_s, u"x"_s), record(u"B"_s, u"y"_s), record(u"A"_s, u"z"_s), record(u"B"_s, u"x"_s)});
  records.removePlaylist(u"A"_s);
  EXPECT_EQ(flags(records), (QStringList{u"B:y:N"_s, u"B:x:N"_s}));
  records.append(record(u"A"_s, u"y"_s));
  records.update(u"x"_s, markTransferred);
  records.update(u"y"_s, markTransferred);
  records.update(u"z"_s, markTransferred);
  EXPECT_EQ(flags(records), (QStringList{u"B:y:Y"_s, u"B:x:Y"_s, u"A:y:Y"_s}));
}

TEST(PlaylistRecords, PurgesTheExactNameOnly) {
  PlaylistRecords records({record(u"@~Jazz@~"_s, u"x"_s), record(u"Jazz"_s, u"y"_s), record(u"jazz"_s, u"z"_s)});
  records.removePlaylist(u"Jazz"_s);
  EXPECT_EQ(flags(records), (QStringList{u"@~Jazz@~:x:N"_s, u"jazz:z:N"_s}));
}

TEST(PlaylistRecords, ForgetsEverythingWhenCleared) {
  PlaylistRecords records({record(u"A"_s, u"x"_s)});
  records.clear();
  EXPECT_TRUE(records.isEmpty());
  bool called = false;
  records.update(u"x"_s, [&](PlaylistInfo &) { called = true; });
  EXPECT_FALSE(called);
}

TEST(PlaylistRecords, CopiesAreIndependent) {
  PlaylistRecords records({record(u"A"_s, u"x"_s)});
  const QList<PlaylistInfo> before = records.all();
  records.update(u"x"_s, markTransferred);
  EXPECT_EQ(before.at(0).songTransferFlag, u"N"_s);
  EXPECT_EQ(records.all().at(0).songTransferFlag, u"Y"_s);
}

// A walk over all records for every file would be 10^10 comparisons of long equal beginnings: minutes.
TEST(PlaylistRecords, UpdatesAHundredThousandPathsWithoutAWalk) {
  const QString folder(200, u'f');
  PlaylistRecords records;
  for (int i = 0; i < 100'000; ++i) {
    records.append(record(u"A"_s, folder + QString::number(i)));
  }
  for (int i = 0; i < 100'000; ++i) {
    records.update(folder + QString::number(i), markTransferred);
  }
  for (const PlaylistInfo &info : records.all()) {
    ASSERT_EQ(info.songTransferFlag, u"Y"_s);
  }
}
