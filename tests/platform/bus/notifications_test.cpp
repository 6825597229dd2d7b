#include "platform/Failure.h"
#include "platform/linux/DBusNotifications.h"
#include "support/FakeDesktop.h"
#include "support/FakeLoop.h"
#include "support/Printers.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QElapsedTimer>
#include <QEventLoop>

#include <gtest/gtest.h>

using namespace sonorel;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int kPatience = 20000; // milliseconds until something that does not come is a failure
const QString kDrag = u"TrackChute_DragRecieved"_s;

class DBusNotificationsTest : public testing::Test {
protected:
  QDBusConnection own = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"client"_s);
  QDBusConnection agent = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"agent"_s);
  test::FakeLoop loop;
  test::FakeDesktop desktop;
  int received = 0;
  int refused = 0;
  DBusNotifications notifications{own,
                                  loop,
                                  desktop,
                                  {[this] { ++received; }, [this] { ++refused; },
                                   [](const QString &path, QString *) {
                                     return path.startsWith(u'/') ? std::optional<QString>(path) : std::nullopt;
                                   }}};
  QList<Notification> delivered;

  ~DBusNotificationsTest() override {
    QDBusConnection::disconnectFromBus(u"client"_s);
    QDBusConnection::disconnectFromBus(u"agent"_s);
  }

  void SetUp() override {
    ASSERT_TRUE(own.isConnected()) << "run below dbus-run-session";
    qDBusRegisterMetaType<QList<QVariantMap>>();
    notifications.observe(kDrag, [this](const Notification &given) { delivered.append(given); });
    roundTrip(own);
  }

  static QDBusMessage roundTrip(const QDBusConnection &bus) {
    return bus.call(
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus"_s, u"GetId"_s));
  }
  void send(const QString &name, const QVariantList &arguments) {
    QDBusMessage signal = QDBusMessage::createSignal(u"/com/orv/TrackChute"_s, u"com.orv.TrackChute"_s, name);
    signal.setArguments(arguments);
    ASSERT_TRUE(agent.send(signal));
    roundTrip(agent);
  }
  static bool wait(const std::function<bool()> &done) {
    QElapsedTimer time;
    time.start();
    while (!done() && time.elapsed() < kPatience) {
      QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    }
    return done();
  }
};

// Stands for the door: its answers tell the count.
class Counter final : public QObject {
  Q_OBJECT

public:
  explicit Counter(const int &received) : m_received(received) {}

public Q_SLOTS:
  int count() const { return m_received; }

private:
  const int &m_received;
};

QVariantList drag(const QString &object, const QStringList &files) {
  return {object, QVariantMap{{u"draggedFiles"_s, files}}};
}

} // namespace

TEST_F(DBusNotificationsTest, DeliversADragOnTheControllersThread) {
  send(kDrag, drag(u"@~Jazz@~"_s, {u"/m/a.mp3"_s, u"/m/b ü.mp3"_s}));
  ASSERT_TRUE(wait([this] { return received == 1; }));
  EXPECT_TRUE(delivered.isEmpty()); // counted, and waiting for the loop
  loop.runPosted();
  ASSERT_EQ(delivered.size(), 1);
  EXPECT_EQ(delivered[0].object, u"@~Jazz@~"_s);
  EXPECT_EQ(delivered[0].userInfo, (QVariantMap{{u"draggedFiles"_s, QStringList{u"/m/a.mp3"_s, u"/m/b ü.mp3"_s}}}));
  EXPECT_EQ(refused, 0);
}

TEST_F(DBusNotificationsTest, DeliversAlbums) {
  notifications.observe(u"iPhoto_DragRecieved"_s, [this](const Notification &given) { delivered.append(given); });
  const QList<QVariantMap> albums{{{u"albumName"_s, u"A"_s}, {u"draggedFiles"_s, QStringList{u"/1.jpg"_s}}},
                                  {{u"albumName"_s, u""_s}, {u"draggedFiles"_s, QStringList{}}}};
  send(u"iPhoto_DragRecieved"_s, {QString(), QVariantMap{{u"PhotoData"_s, QVariant::fromValue(albums)}}});
  ASSERT_TRUE(wait([this] { return received == 1; }));
  loop.runPosted();
  ASSERT_EQ(delivered.size(), 1);
  const QVariantList given = delivered[0].userInfo.value(u"PhotoData"_s).toList();
  ASSERT_EQ(given.size(), 2);
  EXPECT_EQ(given[0].toMap().value(u"albumName"_s), QVariant(u"A"_s));
  EXPECT_EQ(given[0].toMap().value(u"draggedFiles"_s), QVariant(QStringList{u"/1.jpg"_s}));
  EXPECT_EQ(given[1].toMap().value(u"draggedFiles"_s), QVariant(QStringList{}));
}

TEST_F(DBusNotificationsTest, DeliversBookmarks) {
  notifications.observe(u"safari_drag_Notification"_s,
                        [this](const Notification &given) { delivered.append(given); });
  const QVariantMap info{{u"Titles"_s, QStringList{u"One"_s}}, {u"Urls"_s, QStringList{u"http://one"_s}}};
  send(u"safari_drag_Notification"_s, {QString(), info});
  ASSERT_TRUE(wait([this] { return received == 1; }));
  loop.runPosted();
  ASSERT_EQ(delivered.size(), 1);
  EXPECT_EQ(delivered[0].userInfo, info);
}

TEST_F(DBusNotificationsTest, OtherSignaturesAreLoggedAndNotCounted) {
  send(kDrag, {u"only a name"_s});
  send(kDrag, {QVariantMap{}, u"wrong order"_s});
  send(kDrag, {u"x"_s, QVariantMap{{u"draggedFiles"_s, u"no list"_s}}});
  send(kDrag, drag(u"good"_s, {u"/a"_s}));
  ASSERT_TRUE(wait([this] { return received == 1; }));
  loop.runPosted();
  ASSERT_EQ(delivered.size(), 1);
  EXPECT_EQ(delivered[0].object, u"good"_s);
  ASSERT_EQ(desktop.lines.size(), 3);
  EXPECT_TRUE(desktop.lines[0].contains(u"its signature is \"s\" instead of \"sa{sv}\""_s));
  EXPECT_TRUE(desktop.lines[2].contains(u"draggedFiles is no list of texts"_s));
}

TEST_F(DBusNotificationsTest, DropOfBadPathsIsTakenBack) {
  send(kDrag, drag(u"x"_s, {u"relative"_s}));
  ASSERT_TRUE(wait([this] { return received == 1; }));
  loop.runPosted();
  EXPECT_EQ(refused, 1);
  EXPECT_TRUE(delivered.isEmpty());
}

TEST_F(DBusNotificationsTest, NobodyIsToldAfterStopObserving) {
  notifications.stopObserving(kDrag);
  send(kDrag, drag(u"x"_s, {u"/a"_s}));
  notifications.observe(u"later"_s, [this](const Notification &given) { delivered.append(given); });
  send(u"later"_s, drag(u"y"_s, {u"/b"_s}));
  ASSERT_TRUE(wait([this] { return received > 0; }));
  loop.runPosted();
  ASSERT_EQ(delivered.size(), 1);
  EXPECT_EQ(delivered[0].object, u"y"_s);
}

TEST_F(DBusNotificationsTest, HundredThousandPathsArriveWhole) {
  QStringList files;
  for (int i = 0; i < 100000; ++i) {
    files.append(u"/music/an artist of some length/an album/%1 a song.mp3"_s.arg(i));
  }
  notifications.post(kDrag, {u"many"_s, {{u"draggedFiles"_s, files}}});
  ASSERT_TRUE(wait([this] { return received == 1; }));
  loop.runPosted();
  ASSERT_EQ(delivered.size(), 1);
  EXPECT_EQ(delivered[0].userInfo.value(u"draggedFiles"_s).toStringList(), files);
}

TEST_F(DBusNotificationsTest, PostsWhatItObserves) {
  const QVariantList albums{QVariantMap{{u"albumName"_s, u"A"_s}, {u"draggedFiles"_s, QStringList{u"/1.jpg"_s}}}};
  notifications.observe(u"iPhoto_DragRecieved"_s, [this](const Notification &given) { delivered.append(given); });
  notifications.post(u"iPhoto_DragRecieved"_s, {u"o"_s, {{u"PhotoData"_s, albums}}});
  ASSERT_TRUE(wait([this] { return received == 1; }));
  loop.runPosted();
  ASSERT_EQ(delivered.size(), 1);
  EXPECT_EQ(delivered[0].userInfo, (QVariantMap{{u"PhotoData"_s, albums}}));
}

TEST_F(DBusNotificationsTest, RefusesToPostMoreThanTheBusCanCarry) {
  const QStringList files(40, QString(1024 * 1024, u'x'));
  EXPECT_THROW(notifications.post(kDrag, {u"x"_s, {{u"draggedFiles"_s, files}}}), Failure);
}

// The count must be up before the sender's next call is answered: signal and call are handled in their order.
TEST_F(DBusNotificationsTest, DropIsCountedBeforeALaterCallOfItsSenderIsAnswered) {
  Counter counter(received);
  ASSERT_TRUE(own.registerObject(u"/counter"_s, &counter, QDBusConnection::ExportAllSlots));
  for (int i = 1; i <= 20; ++i) {
    QDBusMessage signal = QDBusMessage::createSignal(u"/com/orv/TrackChute"_s, u"com.orv.TrackChute"_s, kDrag);
    signal.setArguments(drag(u"x"_s, {u"/a"_s}));
    ASSERT_TRUE(agent.send(signal));
    const QDBusMessage answer = agent.call(
        QDBusMessage::createMethodCall(own.baseService(), u"/counter"_s, QString(), u"count"_s), QDBus::BlockWithGui);
    EXPECT_EQ(answer.arguments().value(0).toInt(), i);
  }
}

#include "notifications_test.moc"
