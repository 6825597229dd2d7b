// What the sleep of the machine promises, for logind and the fake.
#include "MockedLogind.h"
#include "platform/linux/LogindPower.h"
#include "support/FakeDesktop.h"
#include "support/FakeLoop.h"
#include "support/FakePower.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace sonorel;
using namespace Qt::Literals::StringLiterals;

namespace {

class FakeBench {
public:
  test::FakePower power;

  void refuse() { power.refuses = true; }
  void announceSleep() { power.send(PowerMessage::SystemWillSleep); }
  void announceWake() { power.wake(); }
  [[nodiscard]] bool isDelayed() const { return power.isDelayed; }
  static bool until(const std::function<bool()> &condition) { return condition(); }
};

class LogindBench {
public:
  LogindBench() { make(test::MockedLogind::Kind::Template); }
  ~LogindBench() { QDBusConnection::disconnectFromBus(u"power"_s); }

  void refuse() {
    logind.reset();
    QDBusConnection::disconnectFromBus(u"power"_s);
    make(test::MockedLogind::Kind::Refusing);
  }
  void announceSleep() { logind->prepareForSleep(true); }
  void announceWake() { logind->prepareForSleep(false); }
  [[nodiscard]] bool isDelayed() { return logind->locks() == QStringList{u"sleep Sonorel delay"_s}; }
  bool until(const std::function<bool()> &condition) {
    return test::MockedLogind::until([&] {
      m_loop.runPosted();
      return condition();
    });
  }

private:
  void make(test::MockedLogind::Kind kind) {
    logind = std::make_unique<test::MockedLogind>(kind);
    m_power = std::make_unique<LogindPower>(QDBusConnection::connectToBus(logind->address(), u"power"_s), m_loop,
                                            m_desktop);
  }

  std::unique_ptr<test::MockedLogind> logind;
  test::FakeLoop m_loop;
  test::FakeDesktop m_desktop;
  std::unique_ptr<LogindPower> m_power;

public:
  // The object changes with refuse.
  struct Forwarding {
    LogindBench &bench;
    bool registerForNotifications(Power::Handlers handlers) {
      return bench.m_power->registerForNotifications(std::move(handlers));
    }
  } power{*this};
};

template <typename Bench> class PowerContract : public testing::Test {
protected:
  Bench bench;
  QStringList told;

  Power::Handlers handlers() {
    Power::Handlers handlers;
    handlers.hurry = [this] { told.append(u"hurry"_s); };
    handlers.message = [this](PowerMessage message) {
      EXPECT_TRUE(bench.isDelayed()) << "the machine waits for the handler";
      told.append(message == PowerMessage::SystemWillSleep ? u"will sleep"_s : u"can sleep"_s);
    };
    handlers.didWake = [this] { told.append(u"wake"_s); };
    return handlers;
  }
  bool isTold(const QStringList &expected) {
    return bench.until([&] { return told.size() >= expected.size(); }) && told == expected;
  }
};

using Benches = testing::Types<FakeBench, LogindBench>;
TYPED_TEST_SUITE(PowerContract, Benches);

} // namespace

TYPED_TEST(PowerContract, DelaysTheSleepFromTheRegistrationOn) {
  EXPECT_FALSE(this->bench.isDelayed());
  EXPECT_TRUE(this->bench.power.registerForNotifications(this->handlers()));
  EXPECT_TRUE(this->bench.isDelayed());
}

TYPED_TEST(PowerContract, HurriesThenTellsAndLetsTheMachineSleepWhenTheHandlerHasReturned) {
  EXPECT_TRUE(this->bench.power.registerForNotifications(this->handlers()));
  this->bench.announceSleep();
  EXPECT_TRUE(this->isTold({u"hurry"_s, u"will sleep"_s})) << this->told.join(u',').toStdString();
  EXPECT_TRUE(this->bench.until([&] { return !this->bench.isDelayed(); }));
}

TYPED_TEST(PowerContract, TellsTheWakeAndDelaysTheNextSleep) {
  EXPECT_TRUE(this->bench.power.registerForNotifications(this->handlers()));
  for (int night = 0; night < 2; ++night) {
    this->told.clear();
    this->bench.announceSleep();
    EXPECT_TRUE(this->isTold({u"hurry"_s, u"will sleep"_s}));
    EXPECT_TRUE(this->bench.until([&] { return !this->bench.isDelayed(); }));
    this->bench.announceWake();
    EXPECT_TRUE(this->isTold({u"hurry"_s, u"will sleep"_s, u"wake"_s}));
    EXPECT_TRUE(this->bench.until([&] { return this->bench.isDelayed(); }));
  }
}

TYPED_TEST(PowerContract, TellsNothingWhenTheRegistrationIsRefused) {
  this->bench.refuse();
  EXPECT_FALSE(this->bench.power.registerForNotifications(this->handlers()));
  EXPECT_FALSE(this->bench.isDelayed());
  this->bench.announceSleep();
  this->bench.announceWake();
  int turns = 0;
  this->bench.until([&turns] { return ++turns > 20; });
  EXPECT_EQ(this->told, QStringList());
}
