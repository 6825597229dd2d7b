#include "core/state/TransferBoard.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

QueueEntry pathEntry(const QString &path) {
  return {QueueEntry::Kind::Path, path, {}};
}

PlaylistInfo record(const QString &playlist, const QString &path, const QString &flag = u"N"_s) {
  return {playlist, path, {}, {}, flag};
}

Drop dropOf(const QString &playlist, const QStringList &paths) {
  Drop drop;
  drop.purgedPlaylist = playlist;
  for (const QString &path : paths) {
    drop.items.append(pathEntry(path));
    drop.tracks.append(path);
    drop.musicRecords.append(record(playlist, path));
  }
  return drop;
}

} // namespace

TEST(TransferBoard, IsIdleAndCompleteAtFirst) {
  TransferBoard board;
  EXPECT_EQ(board.state(), TransferState::Idle);
  EXPECT_TRUE(board.transferComplete());
  EXPECT_EQ(board.count(), 0);
  EXPECT_FALSE(board.at(0).has_value());
  EXPECT_EQ(board.acceptedDrops(), 0U);
}

TEST(TransferBoard, FirstDropStartsAndClearsAnOldCancel) {
  TransferBoard board;
  board.isCancel = true;
  board.fileIndex = 7;
  EXPECT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s, u"/m/b.mp3"_s})), DropAnswer::Started);
  EXPECT_EQ(board.state(), TransferState::Running);
  EXPECT_FALSE(board.transferComplete());
  EXPECT_FALSE(board.isCancel);
  EXPECT_EQ(board.fileIndex, 0);
  EXPECT_EQ(board.entriesFrom(0), (QList<QueueEntry>{pathEntry(u"/m/a.mp3"_s), pathEntry(u"/m/b.mp3"_s)}));
  EXPECT_EQ(board.track(1), std::optional(u"/m/b.mp3"_s));
  EXPECT_FALSE(board.track(2).has_value());
  EXPECT_EQ(board.records(false),
            (QList<PlaylistInfo>{record(u"Jazz"_s, u"/m/a.mp3"_s), record(u"Jazz"_s, u"/m/b.mp3"_s)}));
  EXPECT_FALSE(board.hasRecords(true));
  EXPECT_EQ(board.acceptedDrops(), 1U);
}

TEST(TransferBoard, DropWhileRunningIsAppended) {
  TransferBoard board;
  EXPECT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s})), DropAnswer::Started);
  EXPECT_EQ(board.offer(dropOf(u"Rock"_s, {u"/m/c.mp3"_s})), DropAnswer::Appended);
  EXPECT_EQ(board.entriesFrom(0), (QList<QueueEntry>{pathEntry(u"/m/a.mp3"_s), pathEntry(u"/m/c.mp3"_s)}));
  EXPECT_EQ(board.acceptedDrops(), 2U);
}

TEST(TransferBoard, SamePlaylistDroppedAgainLeavesOneSetOfRecords) {
  TransferBoard board;
  ASSERT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s, u"/m/b.mp3"_s})), DropAnswer::Started);
  ASSERT_EQ(board.offer(dropOf(u"Rock"_s, {u"/m/c.mp3"_s})), DropAnswer::Appended);
  ASSERT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/b.mp3"_s})), DropAnswer::Appended);
  EXPECT_EQ(board.records(false),
            (QList<PlaylistInfo>{record(u"Rock"_s, u"/m/c.mp3"_s), record(u"Jazz"_s, u"/m/b.mp3"_s)}));
}

TEST(TransferBoard, DropWithoutPurgeKeepsBothSets) {
  TransferBoard board;
  Drop colour = dropOf(u"@!!!Red!!!@"_s, {u"/m/a.mp3"_s});
  colour.purgedPlaylist.reset();
  ASSERT_EQ(board.offer(colour), DropAnswer::Started);
  ASSERT_EQ(board.offer(colour), DropAnswer::Appended);
  EXPECT_EQ(board.records(false).size(), 2);
}

TEST(TransferBoard, DropDuringCancelChangesNothing) {
  TransferBoard board;
  ASSERT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s})), DropAnswer::Started);
  board.updateRecords(false, u"/m/a.mp3"_s, [](PlaylistInfo &info) { info.songTransferFlag = u"Y"_s; });
  board.isCancel = true;
  Drop refused = dropOf(u"Jazz"_s, {u"/m/b.mp3"_s});
  refused.pictureRecords = {record(u"Jazz"_s, u"/m/p.jpg"_s)};
  refused.hasVideoOrPicture = true;
  EXPECT_EQ(board.offer(refused), DropAnswer::Refused);
  board.beginEnding();
  EXPECT_EQ(board.offer(refused), DropAnswer::Refused);
  EXPECT_EQ(board.records(false), (QList<PlaylistInfo>{record(u"Jazz"_s, u"/m/a.mp3"_s, u"Y"_s)}));
  EXPECT_FALSE(board.hasRecords(true));
  EXPECT_FALSE(board.takeVideoPresent());
  EXPECT_EQ(board.count(), 1);
  EXPECT_EQ(board.track(0), u"/m/a.mp3"_s);
  EXPECT_EQ(board.track(1), std::nullopt);
  EXPECT_EQ(board.acceptedDrops(), 1U);
  EXPECT_FALSE(board.finish());
}

TEST(TransferBoard, DropWhileEndingWaitsAndBecomesTheNextTransfer) {
  TransferBoard board;
  ASSERT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s})), DropAnswer::Started);
  board.fileIndex = 1;
  ASSERT_TRUE(board.endWhenNothingAt(1));
  EXPECT_EQ(board.state(), TransferState::Ending);
  EXPECT_EQ(board.offer(dropOf(u"Rock"_s, {u"/m/c.mp3"_s})), DropAnswer::Waiting);
  EXPECT_EQ(board.offer(dropOf(u"Pop"_s, {u"/m/d.mp3"_s})), DropAnswer::Waiting);
  EXPECT_EQ(board.records(false), (QList<PlaylistInfo>{record(u"Jazz"_s, u"/m/a.mp3"_s)}));
  board.clearRecords(false);
  EXPECT_TRUE(board.finish());
  EXPECT_EQ(board.state(), TransferState::Running);
  EXPECT_EQ(board.fileIndex, 0);
  EXPECT_EQ(board.entriesFrom(0), (QList<QueueEntry>{pathEntry(u"/m/c.mp3"_s), pathEntry(u"/m/d.mp3"_s)}));
  EXPECT_EQ(board.records(false),
            (QList<PlaylistInfo>{record(u"Rock"_s, u"/m/c.mp3"_s), record(u"Pop"_s, u"/m/d.mp3"_s)}));
  EXPECT_EQ(board.acceptedDrops(), 2U);
  EXPECT_TRUE(board.endWhenNothingAt(2));
  EXPECT_FALSE(board.finish());
  EXPECT_TRUE(board.transferComplete());
  EXPECT_EQ(board.count(), 0);
  EXPECT_EQ(board.acceptedDrops(), 0U);
}

TEST(TransferBoard, WaitingDropIsNotCancelledWithTheTransferBeforeIt) {
  TransferBoard board;
  ASSERT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s})), DropAnswer::Started);
  board.beginEnding();
  ASSERT_EQ(board.offer(dropOf(u"Rock"_s, {u"/m/c.mp3"_s})), DropAnswer::Waiting);
  board.isCancel = true;
  EXPECT_TRUE(board.finish());
  EXPECT_FALSE(board.isCancel);
  EXPECT_EQ(board.at(0), std::optional(pathEntry(u"/m/c.mp3"_s)));
}

TEST(TransferBoard, DoesNotEndWhileAnEntryStandsAtTheIndex) {
  TransferBoard board;
  ASSERT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s})), DropAnswer::Started);
  EXPECT_FALSE(board.endWhenNothingAt(0));
  EXPECT_EQ(board.state(), TransferState::Running);
  EXPECT_TRUE(board.endWhenNothingAt(1));
  EXPECT_TRUE(board.endWhenNothingAt(1));
  EXPECT_EQ(board.state(), TransferState::Ending);
}

TEST(TransferBoard, EndsWhenTheQueueWasEmptiedUnderTheWorker) {
  TransferBoard board;
  ASSERT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s, u"/m/b.mp3"_s, u"/m/c.mp3"_s})), DropAnswer::Started);
  board.clearQueue();
  EXPECT_FALSE(board.at(1).has_value());
  EXPECT_TRUE(board.entriesFrom(1).isEmpty());
  EXPECT_EQ(board.places(), 0);
  EXPECT_EQ(board.track(0), std::nullopt);
  EXPECT_TRUE(board.endWhenNothingAt(1));
}

TEST(TransferBoard, BookmarkPairTakesTwoPlaces) {
  TransferBoard board;
  Drop drop;
  drop.items = {pathEntry(u"/m/a.mp3"_s),
                {QueueEntry::Kind::BookmarkPair, u"Notes.url"_s, u"[InternetShortcut]\nURL=http://example.org"_s},
                {QueueEntry::Kind::Radio, u"@~RadioOne"_s, {}}};
  ASSERT_EQ(board.offer(drop), DropAnswer::Started);
  EXPECT_EQ(board.count(), 3);
  EXPECT_EQ(board.places(), 4);
  EXPECT_EQ(board.entriesFrom(1), drop.items.mid(1));
}

TEST(TransferBoard, VideoFlagIsTakenOnce) {
  TransferBoard board;
  Drop drop;
  drop.hasVideoOrPicture = true;
  ASSERT_EQ(board.offer(drop), DropAnswer::Started);
  ASSERT_EQ(board.offer(Drop()), DropAnswer::Appended);
  EXPECT_TRUE(board.takeVideoPresent());
  EXPECT_FALSE(board.takeVideoPresent());
}

TEST(TransferBoard, BrokenOffTransferCountsAsCompleteAfterReset) {
  TransferBoard board;
  ASSERT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s})), DropAnswer::Started);
  board.clearQueue();
  board.resetToIdle();
  EXPECT_TRUE(board.transferComplete());
  EXPECT_EQ(board.acceptedDrops(), 0U);
  EXPECT_EQ(board.offer(dropOf(u"Rock"_s, {u"/m/c.mp3"_s})), DropAnswer::Started);
  EXPECT_EQ(board.entriesFrom(0), (QList<QueueEntry>{pathEntry(u"/m/c.mp3"_s)}));
}

TEST(TransferBoard, DropThatWaitedForABrokenOffTransferIsNotLost) {
  TransferBoard board;
  ASSERT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s})), DropAnswer::Started);
  board.beginEnding();
  ASSERT_EQ(board.offer(dropOf(u"Rock"_s, {u"/m/c.mp3"_s})), DropAnswer::Waiting);
  board.clearQueue();
  board.resetToIdle();
  EXPECT_EQ(board.offer(dropOf(u"Pop"_s, {u"/m/d.mp3"_s})), DropAnswer::Started);
  EXPECT_EQ(board.entriesFrom(0), (QList<QueueEntry>{pathEntry(u"/m/c.mp3"_s), pathEntry(u"/m/d.mp3"_s)}));
  EXPECT_EQ(board.acceptedDrops(), 2U);
}

TEST(TransferBoard, UpdateReachesEveryRecordOfThePathInOneArrayOnly) {
  TransferBoard board;
  Drop drop;
  drop.musicRecords = {record(u"Jazz"_s, u"/m/a.mp3"_s), record(u"Rock"_s, u"/m/b.mp3"_s),
                       record(u"Pop"_s, u"/m/a.mp3"_s)};
  drop.pictureRecords = {record(u"Trip"_s, u"/m/a.mp3"_s)};
  ASSERT_EQ(board.offer(drop), DropAnswer::Started);
  board.updateRecords(false, u"/m/a.mp3"_s, [](PlaylistInfo &info) { info.songTransferFlag = u"Y"_s; });
  EXPECT_EQ(board.records(false),
            (QList<PlaylistInfo>{record(u"Jazz"_s, u"/m/a.mp3"_s, u"Y"_s), record(u"Rock"_s, u"/m/b.mp3"_s),
                                 record(u"Pop"_s, u"/m/a.mp3"_s, u"Y"_s)}));
  EXPECT_EQ(board.records(true), (QList<PlaylistInfo>{record(u"Trip"_s, u"/m/a.mp3"_s)}));
  board.replaceRecords(false, {record(u"New"_s, u"/m/a.mp3"_s)});
  board.updateRecords(false, u"/m/a.mp3"_s, [](PlaylistInfo &info) { info.songTransferFlag = u"Y"_s; });
  EXPECT_EQ(board.records(false), (QList<PlaylistInfo>{record(u"New"_s, u"/m/a.mp3"_s, u"Y"_s)}));
}

TEST(TransferBoard, AbortKeepsTheQueueAndAnswersForItsDrops) {
  TransferBoard board;
  EXPECT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s})), DropAnswer::Started);
  EXPECT_EQ(board.offer(dropOf(u"Rock"_s, {u"/m/b.mp3"_s})), DropAnswer::Appended);
  EXPECT_TRUE(board.isCarrying());
  EXPECT_EQ(board.abort(), 2U);
  EXPECT_FALSE(board.isCarrying());
  EXPECT_FALSE(board.transferComplete());
  EXPECT_EQ(board.count(), 2);
  EXPECT_EQ(board.acceptedDrops(), 0U);
}

TEST(TransferBoard, DropAfterAnAbortStartsAnew) {
  TransferBoard board;
  EXPECT_EQ(board.offer(dropOf(u"Jazz"_s, {u"/m/a.mp3"_s})), DropAnswer::Started);
  EXPECT_EQ(board.abort(), 1U);
  board.clearQueue();
  EXPECT_EQ(board.offer(dropOf(u"Rock"_s, {u"/m/b.mp3"_s})), DropAnswer::Started);
  EXPECT_EQ(board.entriesFrom(0), (QList<QueueEntry>{pathEntry(u"/m/b.mp3"_s)}));
  EXPECT_EQ(board.acceptedDrops(), 1U);
}
