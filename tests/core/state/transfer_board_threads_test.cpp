#include "core/state/TransferBoard.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

// A worker runs the queue down while drops keep coming: whatever the interleaving, every item of every drop is
// handled exactly once and in order, and a worker is started exactly when none runs.
TEST(TransferBoardThreads, EveryItemOfEveryDropIsHandledOnce) {
  constexpr int kDrops = 500;
  TransferBoard board;
  QStringList handled; // only touched by the one running worker
  std::jthread worker;
  std::atomic<int> workers{0};
  std::atomic<int> most{0};

  const auto body = [&] {
    const int running = ++workers;
    most = qMax(most.load(), running);
    do {
      qsizetype index = 0;
      while (!board.endWhenNothingAt(index)) {
        const auto entry = board.at(index++);
        handled.append(entry->item);
        board.updateRecords(false, entry->item, [](PlaylistInfo &info) { info.songTransferFlag = u"Y"_s; });
      }
      --workers;
    } while (board.finish() && ++workers > 0);
  };

  QStringList dropped;
  for (int number = 0; number < kDrops; ++number) {
    Drop drop;
    for (int item = 0; item < 3; ++item) {
      const QString path = QString::number(number) + u'/' + QString::number(item);
      drop.items.append({QueueEntry::Kind::Path, path, {}});
      drop.musicRecords.append({u"Jazz"_s, path, {}, {}, u"N"_s});
      dropped.append(path);
    }
    if (board.offer(drop) == DropAnswer::Started) {
      worker = std::jthread(body); // joins the one before
    }
  }
  worker.join();
  EXPECT_EQ(handled, dropped);
  EXPECT_EQ(most, 1);
  EXPECT_TRUE(board.transferComplete());
  for (const PlaylistInfo &info : board.records(false)) {
    ASSERT_EQ(info.songTransferFlag, u"Y"_s) << info.sourceSongPath.toStdString();
  }
  EXPECT_EQ(board.records(false).size(), kDrops * 3);
}

// A cancel that comes at any moment: a refused drop leaves nothing behind, an accepted one is in the queue.
TEST(TransferBoardThreads, RefusedDropsLeaveNoRecord) {
  for (int round = 0; round < 300; ++round) {
    TransferBoard board;
    Drop first;
    first.items = {{QueueEntry::Kind::Path, u"first"_s, {}}};
    ASSERT_EQ(board.offer(first), DropAnswer::Started);
    std::jthread canceller([&] { board.isCancel = true; });
    int accepted = 0;
    for (int number = 0; number < 20; ++number) {
      Drop drop;
      drop.items = {{QueueEntry::Kind::Path, u"more"_s, {}}};
      drop.musicRecords = {{u"Jazz"_s, u"more"_s, {}, {}, u"N"_s}};
      accepted += board.offer(drop) == DropAnswer::Appended ? 1 : 0;
    }
    canceller.join();
    ASSERT_EQ(board.records(false).size(), accepted);
    ASSERT_EQ(board.count(), 1 + accepted);
    ASSERT_EQ(board.acceptedDrops(), static_cast<quint32>(1 + accepted));
  }
}
