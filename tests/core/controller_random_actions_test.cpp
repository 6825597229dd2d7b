// Random walks over everything that people, scripts and the machine can ask for. Whatever came before: what is shown
// is true, nothing hangs, every drop finds its end, and the client ends when it is asked to.
#include "ControllerFixture.h"

#include <array>
#include <random>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

constexpr int kSteps = 40;

class ControllerRandomActionsTest : public ControllerTest, public testing::WithParamInterface<unsigned> {
protected:
  struct Step {
    QString name;
    std::function<void()> take;
  };

  [[nodiscard]] bool chance(int percent) { return std::uniform_int_distribution(1, 100)(m_random) <= percent; }
  [[nodiscard]] std::size_t below(std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(m_random);
  }

  std::vector<Step> steps() {
    const auto row = [this] { return shown().selectedProducts.value(0); };
    return {{u"connect"_s, [this] { controller->connect(); }},
            {u"disconnect"_s, [this] { controller->disconnect(); }},
            {u"cancel"_s, [this] { controller->cancel(); }},
            {u"quit during a transfer"_s, [this] { quitDuringATransfer(); }},
            {u"reopen"_s, [this] { controller->reopen(false); }},
            {u"open"_s, [this] { controller->openFiles({u"/Users/anna/Music/One.mp3"_s}); }},
            {u"drop"_s, [this] { drop(); }},
            {u"drop"_s, [this] { drop(); }},
            {u"the worker's turn"_s, [this] { fakes.worker.run(); }},
            {u"the worker's turn"_s, [this] { fakes.worker.run(); }},
            {u"enter a password"_s, [this] { controller->enterPassword(u"secret"_s); }},
            {u"cancel the password"_s, [this] { controller->cancelPassword(); }},
            {u"select"_s, [this, row] { controller->selectProduct(0, row()); }},
            {u"remove"_s, [this, row] { controller->removeProduct(0, row()); }},
            {u"remove all"_s, [this] { controller->removeAllProducts(); }},
            {u"add"_s, [this] { controller->addManualProduct(u"192.168.1.20"_s, {}); }},
            {u"take over"_s, [this] { controller->addAddedProduct(0, shown().addedProducts.value(0)); }},
            {u"answer"_s, [this] { answer(); }},
            {u"language"_s, [this] { controller->selectLanguage(static_cast<int>(below(2))); }},
            {u"sleep and wake"_s, [this] { sleepAndWake(); }},
            {u"two minutes"_s, [this] { fakes.loop.advance(120s); }},
            {u"a mount that fails"_s,
             [this] {
               fakes.processes.mountAnswers.assign(3, MountAnswer{1, "no route", false});
             }},
            {u"a mount that is refused"_s, [this] {
               fakes.processes.mountAnswers.assign(3, MountAnswer{1, "Authentication error", false});
             }}};
  }

  // Refused, unless a cancel or a disconnect comes before it.
  void quitDuringATransfer() {
    if (shown().transferring) {
      controller->quit();
    }
  }
  void drop() {
    ++m_drops;
    fakes.notifications.deliver(
        u"TrackChute_DragRecieved"_s,
        {u"@~Evening@~"_s, {{u"draggedFiles"_s, QStringList{song(u"One"_s), song(u"Two"_s)}}}});
  }
  void answer() {
    if (!fakes.userInterface.questions.isEmpty()) {
      const Question &oldest = fakes.userInterface.questions.first();
      controller->answerAlert(oldest.serial,
                              static_cast<int>(below(static_cast<std::size_t>(oldest.buttons.size()))));
    }
  }
  void sleepAndWake() {
    fakes.power.send(PowerMessage::SystemWillSleep);
    fakes.power.wake();
  }
  // Now, or as soon as the controller's thread pauses in what it does.
  void take(const Step &step) {
    m_walk.append(step.name);
    if (chance(20) && !m_inThePause) {
      m_walk.last() += u" (in the next pause)"_s;
      m_inThePause = step.take;
    } else {
      step.take();
    }
  }
  void look() {
    const UserInterfaceState now = shown();
    const std::string walk = m_walk.join(u"\n"_s).toStdString();
    const auto exception = [](const QString &line) { return line.contains(u"Exception in"_s); };
    ASSERT_TRUE(std::none_of(fakes.desktop.lines.begin(), fakes.desktop.lines.end(), exception)) << walk;
    ASSERT_EQ(now.connected, fakes.files.isMounted(kPoint)) << walk;
    ASSERT_EQ(now.transferring, fakes.worker.hasBody()) << walk;
    ASSERT_FALSE(now.busy || now.connectionIndicator) << walk;
    if (!now.transferring) {
      ASSERT_EQ(now.dockImage, now.connected ? u"Connect"_s : u"Disconnect"_s) << walk;
      ASSERT_EQ(now.progress, 0) << walk;
      ASSERT_FALSE(now.cancelEnabled || now.cancelHighlighted) << walk;
      ASSERT_TRUE(now.languageEnabled) << walk;
      ASSERT_EQ(finished, m_drops) << walk;
    }
  }
  void end() {
    m_inThePause = {};
    controller->cancel();
    controller->quit();
    fakes.loop.runPosted();
    const std::string walk = m_walk.join(u"\n"_s).toStdString();
    EXPECT_EQ(fakes.userInterface.quitStatus, 0) << walk;
    EXPECT_FALSE(fakes.files.isMounted(kPoint)) << walk;
    EXPECT_EQ(finished, m_drops) << walk;
    EXPECT_TRUE(fakes.userInterface.questions.isEmpty()) << walk;
    EXPECT_FALSE(fakes.worker.hasBody()) << walk;
  }
  UserInterfaceState shown() { return fakes.userInterface.last(); }

  std::function<void()> m_inThePause;

private:
  std::mt19937 m_random{GetParam()};
  QStringList m_walk;
  quint32 m_drops = 0;
};

} // namespace

TEST_P(ControllerRandomActionsTest, EndsWellAndShowsTheTruth) {
  startConnected();
  fakes.clock.onSleep = [this] {
    if (const auto asked = std::exchange(m_inThePause, {})) {
      fakes.loop.post(asked);
    }
  };
  const std::vector<Step> all = steps();
  for (int step = 0; step < kSteps; ++step) {
    take(all[below(all.size())]);
    if (chance(70)) { // else the next one is asked for before this one is done
      fakes.loop.runPosted();
      if (fakes.userInterface.quitStatus) {
        break;
      }
      ASSERT_NO_FATAL_FAILURE(look());
    }
  }
  fakes.loop.runPosted();
  end();
}

INSTANTIATE_TEST_SUITE_P(Seeds, ControllerRandomActionsTest, testing::Range(0U, 100U));
