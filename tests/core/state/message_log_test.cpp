#include "core/state/MessageLog.h"

#include "support/Printers.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

class MessageLogTest : public testing::Test {
protected:
  QStringList shown;
  MessageLog log{[this] { shown.append(log.viewText()); }};
};

} // namespace

TEST_F(MessageLogTest, AppendingShowsNothingByItself) {
  log.append(u"one"_s);
  log.append(u"\n"_s);
  EXPECT_EQ(log.fileInvalid(), u"one\n"_s);
  EXPECT_EQ(log.viewText(), QString());
  EXPECT_EQ(shown, QStringList());
}

TEST_F(MessageLogTest, ShowHandsOverTheTextAsItIsNow) {
  log.append(u"one"_s);
  log.show();
  log.append(u"\n"_s);
  EXPECT_EQ(log.viewText(), u"one"_s);
  EXPECT_EQ(log.fileInvalid(), u"one\n"_s);
  EXPECT_EQ(shown, (QStringList{u"one"_s}));
}

TEST_F(MessageLogTest, LineEndOfAShownLineIsNotSeenBeforeTheNextOne) {
  log.showLine(u"one"_s);
  EXPECT_EQ(log.viewText(), u"one"_s);
  EXPECT_EQ(log.fileInvalid(), u"one\n"_s);
  log.showLine(u"two"_s);
  EXPECT_EQ(log.viewText(), u"one\ntwo"_s);
}

TEST_F(MessageLogTest, ShowOnlyLeavesTheTextOfTheTransfer) {
  log.append(u"one\n"_s);
  log.showOnly(u"other"_s);
  EXPECT_EQ(log.fileInvalid(), u"one\n"_s);
  EXPECT_EQ(log.viewText(), u"other"_s);
  EXPECT_EQ(shown, (QStringList{u"other"_s}));
}

TEST_F(MessageLogTest, StartNewKeepsTheView) {
  log.append(u"one"_s);
  log.show();
  log.startNew();
  EXPECT_EQ(log.fileInvalid(), QString());
  EXPECT_EQ(log.viewText(), u"one"_s);
  EXPECT_EQ(shown, (QStringList{u"one"_s}));
}

TEST_F(MessageLogTest, ClearEmptiesTextAndView) {
  log.append(u"one"_s);
  log.show();
  log.clear();
  EXPECT_EQ(log.fileInvalid(), QString());
  EXPECT_EQ(log.viewText(), QString());
  EXPECT_EQ(shown, (QStringList{u"one"_s, QString()}));
}

TEST_F(MessageLogTest, SeparatorIsEightySevenDashesAndOnlyBetweenBlocks) {
  log.appendSeparator();
  EXPECT_EQ(log.fileInvalid(), QString());
  log.append(u"one\n"_s);
  log.appendSeparator();
  EXPECT_EQ(log.fileInvalid(),
            u"one\n---------------------------------------------------------------------------------------\n"_s);
}

TEST_F(MessageLogTest, ShowOnlyTextStaysWhileTheLogGrows) {
  log.append(u"one\n"_s);
  log.showOnly(u"other"_s);
  log.append(u"two\n"_s);
  EXPECT_EQ(log.viewText(), u"other"_s);
  log.show();
  EXPECT_EQ(log.viewText(), u"one\ntwo\n"_s);
}

TEST_F(MessageLogTest, HandlerMayReadTheLog) {
  QString seen;
  MessageLog *self = nullptr;
  MessageLog reading([&] { seen = self->fileInvalid() + u'|' + self->viewText(); });
  self = &reading;
  reading.append(u"one"_s);
  reading.show();
  EXPECT_EQ(seen, u"one|one"_s);
}

TEST_F(MessageLogTest, HandlerMayShowAgain) {
  QStringList texts;
  MessageLog *self = nullptr;
  MessageLog nested([&] {
    texts.append(self->viewText());
    if (texts.last() == u"one"_s) {
      self->showOnly(u"two"_s);
    }
  });
  self = &nested;
  nested.showOnly(u"one"_s);
  EXPECT_EQ(texts, (QStringList{u"one"_s, u"two"_s}));
}

// The text's own memory tells whether a line made the log anew: it grows in place, and moves a few times only.
TEST_F(MessageLogTest, LineIsNotPaidWithTheWholeLog) {
  int moves = 0;
  const QChar *place = nullptr;
  MessageLog growing([] {});
  for (int line = 0; line < 10'000; ++line) {
    growing.append(u"This line was not transferred."_s);
    growing.show();
    growing.append(u"\n"_s);
    const QString text = growing.fileInvalid();
    moves += text.constData() == place ? 0 : 1;
    place = text.constData();
  }
  EXPECT_LT(moves, 100);
  EXPECT_EQ(growing.viewText().size(), 10'000 * 31 - 1);
}

// Each thread appends its lines and shows; after every change the view shows all that was appended before.
TEST(MessageLogThreads, ViewHoldsWhatWasShown) {
  MessageLog *self = nullptr;
  std::atomic<bool> shortened{false};
  MessageLog log([&] {
    if (self->viewText().size() % 2 != 0) {
      shortened = true;
    }
  });
  self = &log;
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
      threads.emplace_back([&log] {
        for (int line = 0; line < 500; ++line) {
          log.append(u"x\n"_s);
          log.show();
        }
      });
    }
  }
  EXPECT_FALSE(shortened);
  EXPECT_EQ(log.viewText().size(), 4000);
}
