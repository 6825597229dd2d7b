#include "MockedLogind.h"
#include "platform/linux/LinuxLoop.h"
#include "platform/linux/LogindPower.h"
#include "support/FakeDesktop.h"
#include "support/FakeLoop.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

using namespace sonorel;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Kind = test::MockedLogind::Kind;

class LogindPowerTest : public testing::Test {
protected:
  void TearDown() override { QDBusConnection::disconnectFromBus(u"power"_s); }

  QDBusConnection connect(const test::MockedLogind &logind) {
    return QDBusConnection::connectToBus(logind.address(), u"power"_s);
  }
  Power::Handlers handlers() {
    return {[] {}, [this](PowerMessage) { told.append(u"will sleep"_s); }, [this] { told.append(u"wake"_s); }};
  }
  bool until(const std::function<bool()> &condition) {
    return test::MockedLogind::until([&] {
      loop.runPosted();
      return condition();
    });
  }

  test::FakeLoop loop;
  test::FakeDesktop desktop;
  QStringList told;
};

} // namespace

TEST_F(LogindPowerTest, LetsGoBeforeLogindWaitsNoLonger) {
  EXPECT_EQ(LogindPower::kPatience, 4s) << "logind itself waits five seconds";
}

TEST_F(LogindPowerTest, MachineWithoutABusCountsAsRegistered) {
  LogindPower power(QDBusConnection::connectToBus(u"unix:path=/nonexistent/bus"_s, u"power"_s), loop, desktop);
  EXPECT_TRUE(power.registerForNotifications(handlers()));
  EXPECT_TRUE(desktop.logged(u"there is no system bus"_s));
}

TEST_F(LogindPowerTest, MachineWithoutLogindCountsAsRegisteredAndHearsOfOneThatComesLater) {
  test::MockedLogind logind(Kind::Absent);
  LogindPower power(connect(logind), loop, desktop);
  EXPECT_TRUE(power.registerForNotifications(handlers()));
  EXPECT_EQ(desktop.lines.size(), 1) << "one line and no more";
  logind.startMock(Kind::Template);
  EXPECT_TRUE(until([&] { return logind.locks().size() == 1; }));
  logind.prepareForSleep(true);
  EXPECT_TRUE(until([&] { return told == QStringList{u"will sleep"_s} && logind.locks().isEmpty(); }));
}

TEST_F(LogindPowerTest, LogindThatRefusesIsAFailure) {
  test::MockedLogind logind(Kind::Refusing);
  LogindPower power(connect(logind), loop, desktop);
  EXPECT_FALSE(power.registerForNotifications(handlers()));
  EXPECT_TRUE(desktop.logged(u"the sleep of the machine cannot be delayed: you may not"_s));
}

// A thread that hangs on the share must not keep the machine awake, nor let go of the lock of the next sleep.
TEST_F(LogindPowerTest, HandlerThatDoesNotReturnIsNotWaitedForForEver) {
  test::MockedLogind logind;
  LinuxLoop controllers;
  LogindPower power(connect(logind), controllers, desktop, 200ms);
  std::promise<void> goesOn;
  std::atomic<int> returned{0};
  EXPECT_TRUE(power.registerForNotifications({[] {},
                                              [&, hang = goesOn.get_future().share()](PowerMessage) {
                                                hang.wait();
                                                ++returned;
                                              },
                                              [] {}}));
  std::thread thread([&] { controllers.run(); });
  logind.prepareForSleep(true);
  EXPECT_TRUE(test::MockedLogind::until([&] { return logind.locks().isEmpty(); }));
  EXPECT_EQ(returned, 0);
  logind.prepareForSleep(false);
  EXPECT_TRUE(test::MockedLogind::until([&] { return logind.locks().size() == 1; }));
  goesOn.set_value();
  EXPECT_TRUE(test::MockedLogind::until([&] { return returned == 1; }));
  std::promise<void> after;
  controllers.post([&] { after.set_value(); });
  after.get_future().wait();
  EXPECT_EQ(logind.locks().size(), 1) << "that belongs to the next sleep";
  controllers.stop();
  thread.join();
}

TEST_F(LogindPowerTest, SleepThatComesToNothingKeepsOneLock) {
  test::MockedLogind logind;
  LogindPower power(connect(logind), loop, desktop);
  EXPECT_TRUE(power.registerForNotifications(handlers()));
  logind.prepareForSleep(false);
  EXPECT_TRUE(until([&] { return told == QStringList{u"wake"_s}; }));
  EXPECT_EQ(logind.locks().size(), 1);
}

TEST_F(LogindPowerTest, EndOfTheClientLetsGo) {
  test::MockedLogind logind;
  {
    LogindPower power(connect(logind), loop, desktop);
    EXPECT_TRUE(power.registerForNotifications(handlers()));
    EXPECT_EQ(logind.locks().size(), 1);
  }
  EXPECT_TRUE(until([&] { return logind.locks().isEmpty(); }));
}
