#include "app/FirstClient.h"

#include "app/Door.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <atomic>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

TEST(FirstClient, NobodyIsThereAtFirst) {
  EXPECT_FALSE(isClientOn(QDBusConnection::sessionBus()));
}

TEST(FirstClient, ReopensTheClientThatRuns) {
  int reopened = 0;
  ClientActions actions;
  actions.reopen = [&reopened] { ++reopened; };
  const DropCounter counter;
  const QDBusConnection bus = QDBusConnection::sessionBus();
  Door door(bus, actions, counter);
  ASSERT_TRUE(door.open());
  EXPECT_TRUE(isClientOn(bus));
  EXPECT_TRUE(activateFirstClient(bus));
  EXPECT_EQ(reopened, 1);
  QDBusConnection(bus).unregisterService(u"com.orv.Sonorel"_s);
}

} // namespace sonorel
