#include "core/SleepAndWake.h"

#include "FakePlatform.h"
#include "support/FakeView.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

const auto kShare = u"/Volumes/VB-SHARE$"_s;
const auto kMessage1 = u"The connection to the product was lost. These items were not transferred:\n"_s;

class SleepAndWakeTest : public testing::Test {
protected:
  SleepAndWakeTest() {
    installStrings(fakes.files);
    mountShare(fakes.files);
    strings.setLanguageFile(u"StringsEnglish"_s);
  }
  void unmount() {
    fakes.files.unmount(kShare);
    fakes.files.erase(kShare);
  }
  void queue(const QList<QueueEntry> &entries) {
    Drop drop;
    drop.items = entries;
    drop.tracks = {u"/Music/done.mp3"_s};
    EXPECT_EQ(board.offer(drop), DropAnswer::Started);
  }

  FakePlatform fakes;
  FakeView view;
  Strings strings{fakes.files, fakes.propertyLists, fakes.paths.resourceFilePath};
  MessageLog log{[this] { view.fillMessageLog([this] { return log.viewText(); }); }};
  TransferBoard board;
  bool connected = true;
  int disconnects = 0;
  QList<std::chrono::milliseconds> waits; // for the transfer's end
  SleepAndWake power{fakes.files,
                     strings,
                     log,
                     board,
                     view,
                     kShare,
                     {[this] { return connected; },
                      [this](std::chrono::milliseconds limit) {
                        EXPECT_TRUE(board.manualSleepWasConnected) << "the worker must see why it is ended";
                        EXPECT_TRUE(connected);
                        waits.append(limit);
                      },
                      [this] {
                        ++disconnects;
                        connected = false;
                      }}};
};

} // namespace

TEST_F(SleepAndWakeTest, DisconnectsBeforeASleepChosenByTheUser) {
  power.powerMessage(PowerMessage::SystemWillSleep);
  EXPECT_EQ(disconnects, 1);
  EXPECT_EQ(waits, QList<std::chrono::milliseconds>{1500ms}) << "before the share is left";
  EXPECT_TRUE(board.manualSleepWasConnected);
}

TEST_F(SleepAndWakeTest, RemembersThatNothingWasConnected) {
  connected = false;
  power.powerMessage(PowerMessage::SystemWillSleep);
  EXPECT_EQ(disconnects, 1);
  EXPECT_TRUE(waits.isEmpty());
  EXPECT_FALSE(board.manualSleepWasConnected);
}

TEST_F(SleepAndWakeTest, DisconnectsAtEachQuestionOfAnIdleSleepButRecordsOnlyTheFirst) {
  power.powerMessage(PowerMessage::CanSystemSleep);
  power.powerMessage(PowerMessage::CanSystemSleep);
  power.powerMessage(PowerMessage::SystemWillSleep);
  EXPECT_EQ(disconnects, 2);
  EXPECT_FALSE(board.manualSleepWasConnected);
  unmount();
  power.afterWakeup();
  EXPECT_EQ(view.tab, Tab::Connection);
  // The counter is clear again: the next notice counts as chosen by the user.
  connected = true;
  power.powerMessage(PowerMessage::SystemWillSleep);
  EXPECT_TRUE(board.manualSleepWasConnected);
}

TEST_F(SleepAndWakeTest, ListsWhatWasNotTransferred) {
  queue({{QueueEntry::Kind::Path, u"/Music/done.mp3"_s, {}},
         {QueueEntry::Kind::Path, u"/Music/left.mp3"_s, {}},
         {QueueEntry::Kind::Radio, u"@~RadioJazz FM"_s, {}},
         {QueueEntry::Kind::BookmarkPair, u"News.url"_s, u"[InternetShortcut]\nURL=http://a"_s}});
  board.fileIndex = 1;
  log.append(u"earlier\n"_s);
  power.powerMessage(PowerMessage::SystemWillSleep);
  unmount();
  power.afterWakeup();
  EXPECT_EQ(view.lastLog,
            u"earlier\n"_s + QString(87, u'-') + u'\n' + kMessage1 + u"left.mp3\nJazz FM\nNews.url\n"_s);
  EXPECT_EQ(view.tab, Tab::Transfer);
  EXPECT_EQ(board.count(), 0);
  EXPECT_EQ(board.track(0), std::nullopt);
  EXPECT_FALSE(board.manualSleepWasConnected);
  EXPECT_EQ(view.calls.mid(view.calls.size() - 2), QStringList({u"setDockIcon Disconnect"_s, u"setProgressBar 0"_s}));
}

TEST_F(SleepAndWakeTest, ShowsTheTransferTabWhenTheQueueWasDone) {
  queue({{QueueEntry::Kind::Path, u"/Music/done.mp3"_s, {}}});
  board.fileIndex = 1;
  power.powerMessage(PowerMessage::SystemWillSleep);
  power.afterWakeup();
  EXPECT_EQ(view.tab, Tab::Transfer);
  EXPECT_EQ(view.lastLog, QString()) << "nothing was pending: the log is not shown";
}

TEST_F(SleepAndWakeTest, ShowsTheConnectionTabWhenNothingWasQueued) {
  power.powerMessage(PowerMessage::SystemWillSleep);
  power.afterWakeup();
  EXPECT_EQ(view.tab, Tab::Connection);
  EXPECT_EQ(view.lastLog, QString());
}

TEST_F(SleepAndWakeTest, LeftOverItemsAreListedAlsoWhenTheShareStayed) {
  queue({{QueueEntry::Kind::Path, u"/Music/left.mp3"_s, {}}});
  power.powerMessage(PowerMessage::SystemWillSleep);
  power.afterWakeup();
  EXPECT_EQ(view.lastLog, kMessage1 + u"left.mp3\n"_s) << "no line of dashes above the first block";
  EXPECT_EQ(view.tab, Tab::Transfer);
}

TEST_F(SleepAndWakeTest, IdleSleepKeepsTheQueue) {
  queue({{QueueEntry::Kind::Path, u"/Music/left.mp3"_s, {}}});
  power.powerMessage(PowerMessage::CanSystemSleep);
  unmount();
  power.afterWakeup();
  EXPECT_EQ(view.tab, Tab::Connection);
  EXPECT_EQ(view.lastLog, QString());
  EXPECT_EQ(board.count(), 1);
}

// What an idle sleep has recorded is told by the first wake that finds the share gone.
TEST_F(SleepAndWakeTest, ConnectionOfTheFirstQuestionIsRememberedUntilAWakeFindsTheShareGone) {
  queue({{QueueEntry::Kind::Path, u"/Music/left.mp3"_s, {}}});
  power.powerMessage(PowerMessage::CanSystemSleep);
  power.powerMessage(PowerMessage::CanSystemSleep); // nothing is connected any more
  power.afterWakeup();
  connected = true;
  power.powerMessage(PowerMessage::SystemWillSleep);
  unmount();
  view.tab.reset();
  power.afterWakeup();
  EXPECT_EQ(view.tab, Tab::Connection);
  EXPECT_EQ(view.lastLog, QString());
  EXPECT_EQ(board.count(), 1);
  EXPECT_TRUE(board.manualSleepWasConnected);
  power.afterWakeup();
  EXPECT_EQ(view.tab, Tab::Transfer);
  EXPECT_EQ(view.lastLog, kMessage1 + u"left.mp3\n"_s) << "once told it is forgotten";
}

TEST_F(SleepAndWakeTest, ShowsTheConnectionTabAfterAnyOtherWake) {
  power.afterWakeup();
  EXPECT_EQ(view.tab, Tab::Connection);
  EXPECT_EQ(view.calls,
            QStringList({u"stopPulse"_s, u"selectTab 2"_s, u"setDockIcon Disconnect"_s, u"setProgressBar 0"_s}));
}
