// A system bus of the test's own, with python3-dbusmock's logind on it. Ends with the object.
#pragma once

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <chrono>
#include <functional>
#include <thread>

namespace sonorel::test {

class MockedLogind {
public:
  enum class Kind { Template, Refusing, Absent };

  explicit MockedLogind(Kind kind = Kind::Template) {
    QFile config(m_folder.filePath(QStringLiteral("bus.conf")));
    if (!config.open(QIODevice::WriteOnly)) {
      return;
    }
    config.write(
        "<busconfig><type>system</type><listen>unix:path=" + m_folder.filePath(QStringLiteral("bus")).toUtf8() +
        "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow send_destination=\"*\"/>"
        "<allow receive_sender=\"*\"/><allow own=\"*\"/><allow user=\"*\"/></policy></busconfig>");
    config.close();
    m_daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                                                   QStringLiteral("--config-file=") + config.fileName()});
    m_daemon.waitForReadyRead();
    m_control = QDBusConnection::connectToBus(address(), QStringLiteral("control"));
    if (kind != Kind::Absent) {
      startMock(kind);
    }
  }
  MockedLogind(const MockedLogind &) = delete;
  MockedLogind &operator=(const MockedLogind &) = delete;
  ~MockedLogind() {
    QDBusConnection::disconnectFromBus(QStringLiteral("control"));
    stopMock();
    m_daemon.kill();
    m_daemon.waitForFinished();
  }

  [[nodiscard]] QString address() const {
    return QStringLiteral("unix:path=") + m_folder.filePath(QStringLiteral("bus"));
  }
  void startMock(Kind kind) {
    QStringList arguments{QStringLiteral("-m"), QStringLiteral("dbusmock"), QStringLiteral("--system")};
    if (kind == Kind::Template) {
      arguments += {QStringLiteral("--template"), QStringLiteral("logind")};
    } else {
      arguments += {kService, kPath, kManager};
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), address());
    m_mock.setProcessEnvironment(environment);
    m_mock.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_mock.start(QStringLiteral("/usr/bin/python3"), arguments);
    until([this] { return m_control.interface()->isServiceRegistered(kService); });
    if (kind == Kind::Refusing) {
      ask(kMock, QStringLiteral("AddMethod"),
          {kManager, QStringLiteral("Inhibit"), QStringLiteral("ssss"), QStringLiteral("h"),
           QStringLiteral("raise dbus.exceptions.DBusException('you may not', "
                          "name='org.freedesktop.DBus.Error.AccessDenied')")});
    }
  }
  void stopMock() {
    m_mock.kill();
    m_mock.waitForFinished();
  }

  void prepareForSleep(bool sleeps) {
    ask(kMock, QStringLiteral("EmitSignal"),
        {kManager, QStringLiteral("PrepareForSleep"), QStringLiteral("b"), QVariantList{sleeps}});
  }
  // "what who mode" of each lock that is held.
  [[nodiscard]] QStringList locks() {
    const QDBusMessage answer = ask(kManager, QStringLiteral("ListInhibitors"), {});
    QStringList held;
    if (answer.type() != QDBusMessage::ReplyMessage) {
      return held; // no logind, or one that knows of none
    }
    const auto list = answer.arguments().value(0).value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
      QString what;
      QString who;
      QString why;
      QString mode;
      uint user = 0;
      uint process = 0;
      list.beginStructure();
      list >> what >> who >> why >> mode >> user >> process;
      list.endStructure();
      held.append(what + u' ' + who + u' ' + mode);
    }
    list.endArray();
    return held;
  }

  // False when it does not come true within ten seconds.
  static bool until(const std::function<bool()> &condition) {
    for (int i = 0; i < 2000; ++i) {
      if (condition()) {
        return true;
      }
      QCoreApplication::processEvents();
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
  }

private:
  QDBusMessage ask(const QString &interface, const QString &method, const QVariantList &arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, interface, method);
    call.setArguments(arguments);
    return m_control.call(call);
  }

  const QString kService = QStringLiteral("org.freedesktop.login1");
  const QString kPath = QStringLiteral("/org/freedesktop/login1");
  const QString kManager = QStringLiteral("org.freedesktop.login1.Manager");
  const QString kMock = QStringLiteral("org.freedesktop.DBus.Mock");
  QTemporaryDir m_folder;
  QProcess m_daemon;
  QProcess m_mock;
  QDBusConnection m_control{QString()};
};

} // namespace sonorel::test
