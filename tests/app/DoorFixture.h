// The door on the test's session bus, with actions that only note that they were asked for, and another program that
// calls it. Main thread.
#pragma once

#include "app/Door.h"
#include "support/Printers.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QEventLoop>

#include <gtest/gtest.h>

namespace sonorel {

inline constexpr auto kPatience = 5000; // milliseconds until a missing answer is a failure

// A second connection, as another program would have one; it collects the door's signals.
class Caller final : public QObject {
  Q_OBJECT

public:
  Caller() : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("caller"))) {
    m_bus.connect(QString(), QStringLiteral("/com/orv/Sonorel"), QStringLiteral("org.freedesktop.DBus.Properties"),
                  QStringLiteral("PropertiesChanged"), this, SLOT(changed(QString, QVariantMap, QStringList)));
    m_bus.connect(QString(), QStringLiteral("/com/orv/Sonorel"), QStringLiteral("com.orv.Sonorel.Client"),
                  QStringLiteral("TransferComplete"), this, SLOT(complete()));
  }
  ~Caller() override { QDBusConnection::disconnectFromBus(QStringLiteral("caller")); }

  // The reply, while the events of this thread go on.
  QDBusMessage call(const QString &interface, const QString &method, const QVariantList &arguments = {}) {
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("com.orv.Sonorel"),
                                                          QStringLiteral("/com/orv/Sonorel"), interface, method);
    message.setArguments(arguments);
    return m_bus.call(message, QDBus::BlockWithGui, kPatience);
  }
  QDBusMessage client(const QString &method, const QVariantList &arguments = {}) {
    return call(QStringLiteral("com.orv.Sonorel.Client"), method, arguments);
  }
  QVariant property(const QString &name) {
    const QDBusMessage reply = call(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                                    {QStringLiteral("com.orv.Sonorel.Client"), name});
    return reply.arguments().isEmpty() ? QVariant() : reply.arguments().constFirst().value<QDBusVariant>().variant();
  }
  bool wait(const std::function<bool()> &done) {
    QElapsedTimer time;
    time.start();
    while (!done() && time.elapsed() < kPatience) {
      QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return done();
  }

  QVariantMap values;      // the last announced value of each property
  QStringList invalidated; // in order, repeats included
  QStringList order;       // names of announced properties and "TransferComplete"

private Q_SLOTS:
  void changed(const QString &, const QVariantMap &properties, const QStringList &names) {
    values.insert(properties);
    invalidated += names;
    order += properties.keys() + names;
  }
  void complete() { order.append(QStringLiteral("TransferComplete")); }

private:
  QDBusConnection m_bus;
};

class DoorTest : public testing::Test {
protected:
  DoorTest() : door(QDBusConnection::sessionBus(), actions(), counter) { EXPECT_TRUE(door.open()); }
  ~DoorTest() override {
    QDBusConnection::sessionBus().unregisterService(QStringLiteral("com.orv.Sonorel"));
    QDBusConnection::sessionBus().unregisterObject(QStringLiteral("/com/orv/Sonorel"));
  }

  ClientActions actions() {
    const auto note = [this](const QString &text) { return [this, text] { done.append(text); }; };
    const auto noteRow = [this](const QString &name) {
      return [this, name](int row, const QString &text) {
        done.append(QStringLiteral("%1 %2 %3").arg(name).arg(row).arg(text));
      };
    };
    ClientActions all;
    all.isQuitting = [this] { return isQuitting; };
    all.reopen = note(QStringLiteral("reopen"));
    all.openFiles = [this](const QStringList &paths) { done.append(QStringLiteral("open ") + paths.join(u'|')); };
    all.connect = note(QStringLiteral("connect"));
    all.disconnect = note(QStringLiteral("disconnect"));
    all.cancel = note(QStringLiteral("cancel"));
    all.quit = note(QStringLiteral("quit"));
    all.help = note(QStringLiteral("help"));
    all.products = note(QStringLiteral("products"));
    all.preferences = note(QStringLiteral("preferences"));
    all.answerAlert = [this](quint32 serial, int button) {
      done.append(QStringLiteral("answer %1 %2").arg(serial).arg(button));
    };
    all.enterPassword = [this](const QString &password) { done.append(QStringLiteral("password ") + password); };
    all.cancelPassword = note(QStringLiteral("cancelPassword"));
    all.addManualProduct = [this](const QString &address, const QString &host) {
      done.append(QStringLiteral("add %1 %2").arg(address, host));
    };
    all.addDetectedProduct = noteRow(QStringLiteral("addDetected"));
    all.addAddedProduct = noteRow(QStringLiteral("addAdded"));
    all.selectProduct = noteRow(QStringLiteral("select"));
    all.removeProduct = noteRow(QStringLiteral("remove"));
    all.removeAddedProduct = noteRow(QStringLiteral("removeAdded"));
    all.removeAllProducts = note(QStringLiteral("removeAll"));
    all.selectLanguage = [this](int index) { done.append(QStringLiteral("language %1").arg(index)); };
    return all;
  }

  QStringList done;
  bool isQuitting = false;
  DropCounter counter;
  Door door;
  Caller caller;
};

} // namespace sonorel
