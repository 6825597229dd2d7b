#include "core/state/MessageLog.h"

#include "support/Printers.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

class MessageLogTest : public testing::Test {
protected:
  QStringList shown;
  MessageLog log{[this](const QString &text) { shown.append(text); }};
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

TEST_F(MessageLogTest, HandlerMayReadTheLog) {
  QString seen;
  MessageLog *self = nullptr;
  MessageLog reading([&](const QString &) { seen = self->fileInvalid() + u'|' + self->viewText(); });
  self = &reading;
  reading.append(u"one"_s);
  reading.show();
  EXPECT_EQ(seen, u"one|one"_s);
}

TEST_F(MessageLogTest, HandlerMayShowAgain) {
  QStringList texts;
  MessageLog *self = nullptr;
  MessageLog nested([&](const QString &text) {
    texts.append(text);
    if (text == u"one"_s) {
      self->showOnly(u"two"_s);
      texts.append(u"(after)"_s);
    }
  });
  self = &nested;
  nested.showOnly(u"one"_s);
  EXPECT_EQ(texts, (QStringList{u"one"_s, u"(after)"_s, u"two"_s}));
}

// Each thread appends its lines and shows; the texts only ever grow, and the last one shown is the whole.
TEST(MessageLogThreads, ViewNeverGoesBack) {
  std::mutex mutex;
  QList<qsizetype> lengths;
  QString last;
  MessageLog log([&](const QString &text) {
    const std::lock_guard lock(mutex);
    lengths.append(text.size());
    last = text;
  });
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
  EXPECT_TRUE(std::is_sorted(lengths.begin(), lengths.end()));
  EXPECT_EQ(lengths.size(), 2000);
  EXPECT_EQ(last.size(), 4000);
  EXPECT_EQ(log.viewText(), last);
}
