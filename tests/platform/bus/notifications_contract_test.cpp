// What the drop intake relies on in notifications, for the real ones and the fake.
#include "platform/linux/DBusNotifications.h"
#include "support/FakeDesktop.h"
#include "support/FakeLoop.h"
#include "support/FakeNotifications.h"
#include "support/Printers.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusMetaType>

#include <gtest/gtest.h>

using namespace sonorel;
using namespace Qt::Literals::StringLiterals;

namespace {

class FakeBench {
public:
  test::FakeNotifications notifications;

  void pass() { notifications.deliverPosted(); }
};

class DBusBench {
public:
  DBusBench() { qDBusRegisterMetaType<QList<QVariantMap>>(); }
  ~DBusBench() { QDBusConnection::disconnectFromBus(u"contract"_s); }

  // The bus answers after it has handed on what was posted before; the rest waits in the two queues of this process.
  void pass() {
    for (int turn = 0; turn < 3; ++turn) {
      m_bus.call(
          QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus"_s, u"GetId"_s));
      QCoreApplication::processEvents();
      m_loop.runPosted();
    }
  }

private:
  QDBusConnection m_bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"contract"_s);
  test::FakeLoop m_loop;
  test::FakeDesktop m_desktop;

public:
  DBusNotifications notifications{
      m_bus,
      m_loop,
      m_desktop,
      {[] {}, [] {}, [](const QString &path, QString *) { return std::optional<QString>(path); }}};
};

template <typename Bench> class NotificationsContract : public testing::Test {
protected:
  Bench bench;
  Notifications &notifications = bench.notifications;
  QStringList told; // "handler object files"

  Notifications::Handler teller(const QString &handler) {
    return [this, handler](const Notification &given) {
      told.append(handler + u' ' + given.object + u' ' +
                  given.userInfo.value(u"draggedFiles"_s).toStringList().join(u','));
    };
  }
  void post(const QString &name, const QString &object, const QStringList &files) {
    notifications.post(name, {object, {{u"draggedFiles"_s, files}}});
  }
};

using Benches = testing::Types<FakeBench, DBusBench>;
TYPED_TEST_SUITE(NotificationsContract, Benches);

} // namespace

TYPED_TEST(NotificationsContract, GivesObjectAndUserInfoToTheHandlerOfTheName) {
  this->notifications.observe(u"first"_s, this->teller(u"1"_s));
  this->notifications.observe(u"second"_s, this->teller(u"2"_s));
  this->post(u"second"_s, u"Jazz"_s, {u"/m/a.mp3"_s, u"/m/ü\n.mp3"_s});
  this->post(u"third"_s, u"Rock"_s, {u"/m/b.mp3"_s});
  this->bench.pass();
  EXPECT_EQ(this->told, (QStringList{u"2 Jazz /m/a.mp3,/m/ü\n.mp3"_s}));
}

TYPED_TEST(NotificationsContract, KeepsTheOrderInWhichTheyWerePosted) {
  this->notifications.observe(u"first"_s, this->teller(u"1"_s));
  this->notifications.observe(u"second"_s, this->teller(u"2"_s));
  this->post(u"first"_s, u"A"_s, {});
  this->post(u"second"_s, QString(), {u"/b"_s});
  this->post(u"first"_s, u"C"_s, {u"/c"_s});
  this->bench.pass();
  EXPECT_EQ(this->told, (QStringList{u"1 A "_s, u"2  /b"_s, u"1 C /c"_s}));
}

TYPED_TEST(NotificationsContract, NameHasOneHandler) {
  this->notifications.observe(u"first"_s, this->teller(u"old"_s));
  this->notifications.observe(u"first"_s, this->teller(u"new"_s));
  this->post(u"first"_s, u"A"_s, {u"/a"_s});
  this->bench.pass();
  EXPECT_EQ(this->told, (QStringList{u"new A /a"_s}));
}

TYPED_TEST(NotificationsContract, NobodyIsToldAfterStopObserving) {
  this->notifications.observe(u"first"_s, this->teller(u"1"_s));
  this->notifications.observe(u"second"_s, this->teller(u"2"_s));
  this->notifications.stopObserving(u"first"_s);
  this->notifications.stopObserving(u"never observed"_s);
  this->post(u"first"_s, u"A"_s, {});
  this->post(u"second"_s, u"B"_s, {});
  this->bench.pass();
  EXPECT_EQ(this->told, (QStringList{u"2 B "_s}));
}

TYPED_TEST(NotificationsContract, NothingIsDeliveredInsidePost) {
  this->notifications.observe(u"first"_s, this->teller(u"1"_s));
  this->post(u"first"_s, u"A"_s, {});
  EXPECT_EQ(this->told, QStringList());
  this->bench.pass();
  EXPECT_EQ(this->told, (QStringList{u"1 A "_s}));
}

TYPED_TEST(NotificationsContract, HandlerMayStopObservingItself) {
  this->notifications.observe(u"first"_s, [this](const Notification &given) {
    this->told.append(given.object);
    this->notifications.stopObserving(u"first"_s);
  });
  this->post(u"first"_s, u"A"_s, {});
  this->bench.pass();
  this->post(u"first"_s, u"B"_s, {});
  this->bench.pass();
  EXPECT_EQ(this->told, (QStringList{u"A"_s}));
}

TYPED_TEST(NotificationsContract, CarriesAlbums) {
  QVariantMap seen;
  this->notifications.observe(u"albums"_s, [&seen](const Notification &given) { seen = given.userInfo; });
  const QVariantList albums{QVariantMap{{u"albumName"_s, u"A"_s}, {u"draggedFiles"_s, QStringList{u"/1.jpg"_s}}},
                            QVariantMap{{u"albumName"_s, u"B"_s}, {u"draggedFiles"_s, QStringList{}}}};
  this->notifications.post(u"albums"_s, {QString(), {{u"PhotoData"_s, albums}}});
  this->bench.pass();
  EXPECT_EQ(seen, (QVariantMap{{u"PhotoData"_s, albums}}));
}
