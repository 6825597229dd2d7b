#include "app/FirstClient.h"

#include "app/Door.h"

#include <QDBusConnection>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace sonorel {

namespace {

// A client on the bus, as long as it stands.
class Client {
public:
  Client() { EXPECT_TRUE(m_door.open()); }
  ~Client() {
    QDBusConnection::sessionBus().unregisterService(u"com.orv.Sonorel"_s);
    QDBusConnection::sessionBus().unregisterObject(u"/com/orv/Sonorel"_s);
  }
  Client(const Client &) = delete;
  Client &operator=(const Client &) = delete;

  int reopened = 0;
  bool isQuitting = false;

private:
  ClientActions actions() {
    ClientActions actions;
    actions.isQuitting = [this] { return isQuitting; };
    actions.reopen = [this] { ++reopened; };
    return actions;
  }
  DropCounter m_counter;
  Door m_door{QDBusConnection::sessionBus(), actions(), m_counter};
};

class FirstClientTest : public testing::Test {
protected:
  Turn turn() {
    return awaitTurn(QDBusConnection::sessionBus(), {[this] { return lockIsFree; },
                                                     [this](std::chrono::milliseconds pause) {
                                                       waited += pause;
                                                       EXPECT_LE(waited, 30s) << "it waits without end";
                                                       return (!onPause || onPause()) && waited <= 30s;
                                                     }});
  }

  bool lockIsFree = true;
  std::chrono::milliseconds waited{0};
  std::function<bool()> onPause; // false: told to end
};

} // namespace

TEST_F(FirstClientTest, StartsAtOnceWhenNobodyIsThere) {
  EXPECT_EQ(turn(), Turn::Ours);
  EXPECT_EQ(waited, 0ms);
}

TEST_F(FirstClientTest, ReopensTheClientThatRuns) {
  Client client;
  lockIsFree = false;
  EXPECT_EQ(turn(), Turn::Theirs);
  EXPECT_EQ(client.reopened, 1);
  EXPECT_EQ(waited, 0ms);
}

TEST_F(FirstClientTest, ReopensAClientOfAnotherDataFolderToo) {
  Client client;
  EXPECT_EQ(turn(), Turn::Theirs);
  EXPECT_EQ(client.reopened, 1);
}

TEST_F(FirstClientTest, WaitsForAClientThatIsStillStarting) {
  std::optional<Client> client;
  lockIsFree = false;
  onPause = [&] {
    if (waited == 1s) {
      client.emplace();
    }
    return true;
  };
  EXPECT_EQ(turn(), Turn::Theirs);
  EXPECT_EQ(client->reopened, 1);
}

TEST_F(FirstClientTest, ClientThatNeverComesToTheBusIsToldAfterFiveSeconds) {
  lockIsFree = false;
  EXPECT_EQ(turn(), Turn::NoAnswer);
  EXPECT_EQ(waited, 5s);
}

TEST_F(FirstClientTest, TakesThePlaceOfAClientThatQuits) {
  std::optional<Client> client(std::in_place);
  client->isQuitting = true;
  lockIsFree = false;
  onPause = [&] {
    if (waited == 6s) {
      EXPECT_EQ(client->reopened, 0);
      lockIsFree = true; // given back before the name
    } else if (waited == 7s) {
      client.reset();
    }
    return true;
  };
  EXPECT_EQ(turn(), Turn::Ours);
  EXPECT_EQ(waited, 7s);
}

TEST_F(FirstClientTest, ReopensAClientThatRefusesToQuit) {
  Client client;
  client.isQuitting = true;
  lockIsFree = false;
  onPause = [&] {
    client.isQuitting = waited < 2s;
    return true;
  };
  EXPECT_EQ(turn(), Turn::Theirs);
  EXPECT_EQ(client.reopened, 1);
}

TEST_F(FirstClientTest, GivesUpOnAClientThatDoesNotEnd) {
  Client client;
  client.isQuitting = true;
  lockIsFree = false;
  EXPECT_EQ(turn(), Turn::StillQuitting);
  EXPECT_EQ(waited, 20s);
}

TEST_F(FirstClientTest, EndsWhenItIsToldToWhileItWaits) {
  Client client;
  client.isQuitting = true;
  lockIsFree = false;
  onPause = [&] { return waited < 300ms; };
  EXPECT_EQ(turn(), Turn::GivenUp);
  EXPECT_EQ(waited, 300ms);
}

} // namespace sonorel
