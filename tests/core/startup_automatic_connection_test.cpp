#include "core/AutomaticConnection.h"

#include "support/FakeView.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

class AutomaticConnectionTest : public testing::Test {
protected:
  QStringList run() {
    AutomaticConnection(session, view,
                        {[this] { ran.append(u"create"_s); }, [this] { return product; },
                         [this](const QString &address) { ran.append(u"wake "_s + address); },
                         [this](const QString &password, const QString &address) {
                           ran.append(u"connect "_s + password + u' ' + address);
                           return connects;
                         },
                         [this] { ran.append(u"connected"_s); }, [this] { return givenUp; },
                         [this] { return refused; }, [this] { ran.append(u"password panel"_s); },
                         [this] { ran.append(u"ErrorConnect"_s); }})
        .run();
    return ran;
  }

  Session session;
  FakeView view;
  SelectedProduct product{u"192.168.1.20"_s, u"p@ss"_s, false};
  bool connects = true;
  bool refused = false;
  bool givenUp = false;
  QStringList ran;
};

} // namespace

TEST_F(AutomaticConnectionTest, WakesTheProductAndConnectsWithItsStoredPassword) {
  EXPECT_EQ(run(),
            QStringList({u"create"_s, u"wake 192.168.1.20"_s, u"connect p@ss 192.168.1.20"_s, u"connected"_s}));
  EXPECT_EQ(view.calls, QStringList());
  EXPECT_EQ(session.IPAddressString(), u"192.168.1.20"_s);
  EXPECT_EQ(session.PasswordString(), u"p@ss"_s) << "never the escaped one";
}

TEST_F(AutomaticConnectionTest, AsksForAPasswordThatIsNotStored) {
  product.password.clear();
  EXPECT_EQ(run(), QStringList({u"create"_s, u"password panel"_s}));
  EXPECT_EQ(view.calls, QStringList({u"setDockIcon Disconnect"_s, u"selectTab 2"_s}));
  EXPECT_EQ(session.IPAddressString(), u"192.168.1.20"_s);
  EXPECT_EQ(session.PasswordString(), QString());
}

TEST_F(AutomaticConnectionTest, ShowsTheConnectionTabWithoutAProduct) {
  product = {};
  EXPECT_EQ(run(), QStringList({u"create"_s}));
  EXPECT_EQ(view.calls, QStringList({u"setDockIcon Disconnect"_s, u"selectTab 2"_s}));
  ran.clear();
  product.listIsEmpty = false;
  EXPECT_EQ(run(), QStringList({u"create"_s})) << "no record is selected: there is no address to ask for";
}

TEST_F(AutomaticConnectionTest, ShowsAFailedConnection) {
  connects = false;
  EXPECT_EQ(run().last(), u"ErrorConnect"_s);
  EXPECT_EQ(view.calls, QStringList({u"setDockIcon Disconnect"_s, u"windowFrontCentre"_s, u"selectTab 2"_s}));
  EXPECT_FALSE(ran.contains(u"connected"_s));
}

TEST_F(AutomaticConnectionTest, AsksForThePasswordThatTheServerRefused) {
  connects = false;
  refused = true;
  EXPECT_EQ(run().last(), u"password panel"_s);
  EXPECT_FALSE(ran.contains(u"ErrorConnect"_s));
}

TEST_F(AutomaticConnectionTest, ShowsNoFailureWhenItWasGivenUp) {
  connects = false;
  givenUp = true;
  EXPECT_EQ(run().last(), u"connect p@ss 192.168.1.20"_s);
  EXPECT_EQ(view.calls, QStringList({u"setDockIcon Disconnect"_s}));
}
