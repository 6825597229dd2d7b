#include "core/InterfaceController.h"

#include "FakePlatform.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

class InterfaceControllerTest : public testing::Test {
protected:
  InterfaceControllerTest() {
    installStrings(fakes.files);
    strings.setLanguageFile(u"StringsEnglish"_s);
    strings.reload();
  }
  void fillLog(const QString &text) {
    interface.fillMessageLog([text] { return text; });
  }
  UserInterfaceState shown() { return fakes.userInterface.last(); }
  QList<UserInterfaceState> &states() { return fakes.userInterface.states; }

  FakePlatform fakes;
  Strings strings{fakes.files, fakes.propertyLists, resourceFolder()};
  TransferBoard board;
  InterfaceController interface { fakes.loop, fakes.userInterface, board, strings };
};

} // namespace

TEST_F(InterfaceControllerTest, SettersTakeEffectOnTheLoopsThreadInTheirOrder) {
  interface.setProgressBar(40);
  interface.selectTab(Tab::Transfer);
  fillLog(u"one"_s);
  fillLog(u"two"_s);
  EXPECT_TRUE(states().isEmpty());
  fakes.loop.runPosted();
  ASSERT_EQ(states().size(), 1) << "one publication for all of them";
  EXPECT_EQ(shown().progress, 40);
  EXPECT_EQ(shown().currentTab, 1);
  EXPECT_EQ(shown().messageLog, u"two"_s);
}

TEST_F(InterfaceControllerTest, NothingIsPublishedWhenNothingChanges) {
  interface.setProgressBar(0);
  interface.stopPulse();
  fakes.loop.runPosted();
  EXPECT_TRUE(states().isEmpty());
}

TEST_F(InterfaceControllerTest, FlushDoesWhatWaitsBeforeSomethingBlocks) {
  interface.setProgressBar(10);
  interface.showConnecting(true);
  EXPECT_TRUE(shown().busy);
  EXPECT_TRUE(shown().connectionIndicator);
  EXPECT_EQ(shown().progress, 10);
  interface.showConnecting(false);
  interface.showConnectionIndicator(true);
  EXPECT_FALSE(shown().busy);
  EXPECT_TRUE(shown().connectionIndicator);
}

TEST_F(InterfaceControllerTest, PulseAlternatesEvery300Milliseconds) {
  interface.setDockIcon(u"Transfer"_s);
  interface.setDockIcon(u"Transfer"_s);
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.loop.timerCount(), 1);
  fakes.loop.advance(299ms);
  EXPECT_EQ(shown().dockImage, QString());
  fakes.loop.advance(1ms);
  EXPECT_EQ(shown().dockImage, u"Connect"_s);
  fakes.loop.advance(300ms);
  EXPECT_EQ(shown().dockImage, u"Disconnect"_s);
  fakes.loop.advance(300ms);
  EXPECT_EQ(shown().dockImage, u"Connect"_s);
  interface.setDockIcon(u"NewAppIcon"_s);
  fakes.loop.advance(3s);
  EXPECT_EQ(shown().dockImage, u"NewAppIcon"_s);
  EXPECT_EQ(fakes.loop.timerCount(), 0);
}

TEST_F(InterfaceControllerTest, StopPulseKeepsTheImageAndAnotherPulseMayBegin) {
  interface.setDockIcon(u"Transfer"_s);
  fakes.loop.advance(300ms);
  interface.stopPulse();
  fakes.loop.advance(3s);
  EXPECT_EQ(shown().dockImage, u"Connect"_s);
  EXPECT_EQ(fakes.loop.timerCount(), 0);
  interface.setDockIcon(u"Transfer"_s);
  fakes.loop.advance(300ms);
  EXPECT_EQ(shown().dockImage, u"Disconnect"_s) << "the alternation goes on where it stopped";
}

TEST_F(InterfaceControllerTest, CancelIsNeverEnabledWhileACancelIsUnderWay) {
  interface.setEnableDisableCancelBtn(true);
  interface.setHighlightCancelBtn(true);
  fakes.loop.runPosted();
  EXPECT_TRUE(shown().cancelEnabled);
  EXPECT_TRUE(shown().cancelHighlighted);
  interface.setEnableDisableCancelBtn(true); // asked before, runs after
  interface.setHighlightCancelBtn(true);
  board.isCancel = true;
  fakes.loop.runPosted();
  EXPECT_FALSE(shown().cancelEnabled);
  EXPECT_FALSE(shown().cancelHighlighted);
}

TEST_F(InterfaceControllerTest, WishesOfAWorkerThatComeAfterTheCancelChangeNothing) {
  board.isCancel = true;
  interface.setDockIcon(u"Connect"_s);
  interface.setProgressBar(0);
  interface.setDockIcon(u"Transfer"_s);
  interface.setProgressBar(50);
  fakes.loop.runPosted();
  fakes.loop.advance(700ms);
  EXPECT_EQ(shown().dockImage, u"Connect"_s);
  EXPECT_EQ(shown().progress, 0);
}

TEST_F(InterfaceControllerTest, TransferringFollowsTheBoard) {
  ASSERT_EQ(board.offer({{{QueueEntry::Kind::Path, u"/a.mp3"_s, {}}}, {}, {}, {}, {}, false}), DropAnswer::Started);
  interface.transferStateChanged();
  fakes.loop.runPosted();
  EXPECT_TRUE(shown().transferring);
  EXPECT_FALSE(board.finish());
  interface.transferStateChanged();
  fakes.loop.runPosted();
  EXPECT_FALSE(shown().transferring);
}

TEST_F(InterfaceControllerTest, AlertIsAQuestionWithOneButton) {
  interface.alert(u"message"_s, u"text"_s);
  fakes.loop.runPosted();
  ASSERT_EQ(fakes.userInterface.questions.size(), 1);
  const Question question = fakes.userInterface.questions.first();
  EXPECT_EQ(question.serial, 1U);
  EXPECT_EQ(question.message, u"message"_s);
  EXPECT_EQ(question.informativeText, u"text"_s);
  EXPECT_EQ(question.buttons, QStringList({u"OK"_s}));
  interface.answerAlert(1, 0);
  EXPECT_EQ(fakes.userInterface.closed, QList<quint32>({1}));
}

TEST_F(InterfaceControllerTest, AnswersReachTheirQuestionOnce) {
  QStringList answers;
  interface.ask({.message = u"first"_s, .informativeText = {}, .buttons = {u"No"_s, u"Yes"_s}},
                [&](int button) { answers.append(u"first %1"_s.arg(button)); });
  interface.ask({.message = u"second"_s, .informativeText = {}, .buttons = {u"OK"_s}},
                [&](int button) { answers.append(u"second %1"_s.arg(button)); });
  interface.answerAlert(2, 0); // takes what waits as asked
  interface.answerAlert(1, 2);
  interface.answerAlert(1, -1);
  interface.answerAlert(7, 0);
  EXPECT_EQ(answers, QStringList({u"second 0"_s}));
  interface.answerAlert(1, 1);
  interface.answerAlert(1, 1);
  EXPECT_EQ(answers, QStringList({u"second 0"_s, u"first 1"_s}));
  EXPECT_EQ(fakes.userInterface.closed, QList<quint32>({2, 1}));
}

TEST_F(InterfaceControllerTest, WithdrawnQuestionIsClosedUnanswered) {
  QList<int> answers;
  const auto note = [&](int button) { answers.append(button); };
  const quint32 first = interface.ask({.message = u"first"_s, .informativeText = {}, .buttons = {u"OK"_s}}, note);
  fakes.loop.runPosted();
  const quint32 second = interface.ask({.message = u"second"_s, .informativeText = {}, .buttons = {u"OK"_s}}, note);
  interface.withdraw(first);
  interface.withdraw(second); // not yet open
  fakes.loop.runPosted();
  interface.answerAlert(first, 0);
  interface.withdraw(first);
  fakes.loop.runPosted();
  EXPECT_TRUE(fakes.userInterface.questions.isEmpty());
  EXPECT_EQ(fakes.userInterface.closed, QList<quint32>({1, 2}));
  EXPECT_EQ(answers, QList<int>());
}

TEST_F(InterfaceControllerTest, QuestionIsOpenedWithAllThatWasAsked) {
  interface.ask(
      {.message = u"message"_s, .informativeText = {}, .buttons = {u"No"_s, u"Yes"_s}, .helpAnchor = u"Removing"_s},
      [](int) {});
  fakes.loop.runPosted();
  ASSERT_EQ(fakes.userInterface.questions.size(), 1);
  EXPECT_EQ(fakes.userInterface.questions.first().buttons, QStringList({u"No"_s, u"Yes"_s}));
  EXPECT_EQ(fakes.userInterface.questions.first().helpAnchor, u"Removing"_s);
}

TEST_F(InterfaceControllerTest, EndOfTheProgramAnswersEveryQuestion) {
  QList<int> answers;
  const auto note = [&](int button) { answers.append(button); };
  interface.ask({.message = u"open"_s, .informativeText = {}, .buttons = {u"OK"_s}}, note);
  fakes.loop.runPosted();
  interface.ask({.message = u"asked and not yet open"_s, .informativeText = {}, .buttons = {u"OK"_s}}, note);
  interface.closeQuestions();
  interface.ask({.message = u"too late"_s, .informativeText = {}, .buttons = {u"OK"_s}}, note);
  fakes.loop.runPosted();
  EXPECT_EQ(answers, QList<int>({-1, -1, -1}));
  EXPECT_TRUE(fakes.userInterface.questions.isEmpty());
}

TEST_F(InterfaceControllerTest, CompletionIsToldAfterItsValues) {
  fillLog(u"The transfer has ended."_s);
  interface.transferComplete();
  fillLog(u"the next one"_s);
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.userInterface.transfersCompleted, 1);
  ASSERT_EQ(states().size(), 2);
  EXPECT_EQ(states().first().messageLog, u"The transfer has ended."_s);
}

TEST_F(InterfaceControllerTest, LogIsReadOnceHoweverOftenItChanged) {
  int reads = 0;
  for (int line = 1; line <= 10'000; ++line) {
    interface.fillMessageLog([&reads, line] {
      ++reads;
      return u"%1 lines"_s.arg(line);
    });
  }
  EXPECT_EQ(reads, 0);
  fakes.loop.runPosted();
  EXPECT_EQ(reads, 1);
  EXPECT_EQ(shown().messageLog, u"10000 lines"_s);
  fillLog(u"and one more"_s);
  fakes.loop.runPosted();
  EXPECT_EQ(shown().messageLog, u"and one more"_s);
}

TEST_F(InterfaceControllerTest, WindowPasswordPanelAndProducts) {
  interface.windowFrontCentre();
  interface.attention();
  interface.showPasswordPanel(true);
  interface.setProducts({{u"d"_s}, {u"a"_s}, {u"s"_s}, {u"m"_s}, 0});
  interface.setLanguageEnabled(false);
  fakes.loop.runPosted();
  EXPECT_TRUE(shown().windowVisible);
  EXPECT_EQ(fakes.userInterface.raises, 1);
  EXPECT_EQ(fakes.userInterface.attentions, 1);
  EXPECT_TRUE(shown().passwordWanted);
  EXPECT_EQ(shown().detectedProducts, QStringList({u"d"_s}));
  EXPECT_EQ(shown().addedProducts, QStringList({u"a"_s}));
  EXPECT_EQ(shown().selectedProducts, QStringList({u"s"_s}));
  EXPECT_EQ(shown().dockMenuProducts, QStringList({u"m"_s}));
  EXPECT_EQ(shown().activeProduct, 0);
  EXPECT_FALSE(shown().languageEnabled);
}

TEST_F(InterfaceControllerTest, ManyThreadsMayAsk) {
  std::thread worker([this] {
    for (int i = 1; i <= 1000; ++i) {
      interface.setProgressBar(i / 10.0);
    }
  });
  while (shown().progress < 50) {
    fakes.loop.runPosted();
  }
  worker.join();
  fakes.loop.runPosted();
  EXPECT_EQ(shown().progress, 100);
}
