#include "core/QuitRequests.h"

#include "platform/Failure.h"
#include "support/FakeLoop.h"
#include "support/Printers.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

class QuitRequestsTest : public testing::Test {
protected:
  FakeLoop loop;
  Interruption interruption;
  QStringList ran;
  bool agrees = true;
  std::function<void()> whileAsked = [] {};
  QuitRequests quit{loop,
                    interruption,
                    {[this] {
                       ran.append(u"ask"_s);
                       EXPECT_FALSE(interruption.token().stop_requested()) << "its own pauses are not cut short";
                       whileAsked();
                       return agrees;
                     },
                     [this](bool hurry) { ran.append(hurry ? u"cancel at once"_s : u"cancel"_s); },
                     [this] { ran.append(u"join"_s); },
                     [this] {
                       ran.append(u"terminate"_s);
                       EXPECT_FALSE(interruption.token().stop_requested()) << "the last steps are not cut short";
                     },
                     [this](const std::exception &e) { ran.append(u"failed: "_s + reasonOf(e)); }}};
};

} // namespace

TEST_F(QuitRequestsTest, EndsWhenTheApplicationAgrees) {
  quit.byUser();
  EXPECT_EQ(ran, QStringList()) << "nothing runs on the caller's thread";
  loop.runPosted();
  EXPECT_EQ(ran, QStringList({u"ask"_s, u"terminate"_s}));
}

TEST_F(QuitRequestsTest, EndsWhatTheControllerIsWaitingFor) {
  const std::stop_token waiting = interruption.token();
  quit.byUser();
  EXPECT_TRUE(waiting.stop_requested());
}

TEST_F(QuitRequestsTest, MayRefuseTheUserAsOftenAsHeAsks) {
  agrees = false;
  for (int i = 0; i < 3; ++i) {
    quit.byUser();
    loop.runPosted();
  }
  EXPECT_EQ(ran, QStringList({u"ask"_s, u"ask"_s, u"ask"_s}));
}

TEST_F(QuitRequestsTest, RefusesTheSystemOnlyOnce) {
  agrees = false;
  quit.bySystem();
  loop.runPosted();
  EXPECT_EQ(ran, QStringList({u"ask"_s}));
  quit.bySystem();
  loop.runPosted();
  EXPECT_EQ(ran, QStringList({u"ask"_s, u"cancel at once"_s, u"join"_s, u"ask"_s, u"terminate"_s}));
}

TEST_F(QuitRequestsTest, InterruptsTheFirstRequestByTheSecond) {
  agrees = false;
  bool first = true;
  whileAsked = [&] {
    if (std::exchange(first, false)) {
      const std::stop_token pause = interruption.token();
      quit.bySystem();
      EXPECT_TRUE(pause.stop_requested());
    }
  };
  quit.bySystem();
  loop.runPosted();
  EXPECT_EQ(ran, QStringList({u"ask"_s, u"cancel at once"_s, u"join"_s, u"ask"_s, u"terminate"_s}));
}

TEST_F(QuitRequestsTest, IsAskedFromTheRequestToItsRefusal) {
  EXPECT_FALSE(quit.isAsked());
  agrees = false;
  quit.byUser();
  quit.byUser();
  EXPECT_TRUE(quit.isAsked());
  loop.runPosted();
  EXPECT_FALSE(quit.isAsked());
  quit.unconditionally();
  EXPECT_TRUE(quit.isAsked());
  loop.runPosted();
  quit.byUser();
  loop.runPosted();
  EXPECT_TRUE(quit.isAsked());
}

TEST_F(QuitRequestsTest, EndsUnconditionallyWithoutHurry) {
  agrees = false;
  quit.unconditionally();
  loop.runPosted();
  EXPECT_EQ(ran, QStringList({u"cancel"_s, u"join"_s, u"ask"_s, u"terminate"_s}));
  EXPECT_TRUE(quit.isTerminated());
}

TEST_F(QuitRequestsTest, EndsOnce) {
  quit.bySystem();
  quit.bySystem();
  quit.byUser();
  loop.runPosted();
  EXPECT_EQ(ran, QStringList({u"ask"_s, u"terminate"_s}));
}

TEST_F(QuitRequestsTest, LeavesTheLastStepsWholeWhenAskedAgainMeanwhile) {
  bool interrupted = false;
  whileAsked = [&] {
    const std::stop_token pause = interruption.token();
    quit.bySystem();
    interrupted = pause.stop_requested();
  };
  quit.bySystem();
  loop.runPosted();
  EXPECT_TRUE(interrupted);
  EXPECT_EQ(ran, QStringList({u"ask"_s, u"terminate"_s}));
}

TEST_F(QuitRequestsTest, EndsAlsoWhenAStepFails) {
  whileAsked = [] { throw Failure(u"no answer"_s); };
  quit.byUser();
  loop.runPosted();
  EXPECT_EQ(ran, QStringList({u"ask"_s, u"failed: no answer"_s, u"terminate"_s}));
}

TEST_F(QuitRequestsTest, EndsByForceAlsoWhenAStepFails) {
  whileAsked = [] { throw Failure(u"no answer"_s); };
  quit.unconditionally();
  loop.runPosted();
  EXPECT_EQ(ran, QStringList({u"cancel"_s, u"join"_s, u"ask"_s, u"failed: no answer"_s, u"terminate"_s}));
}
