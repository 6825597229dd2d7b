#include "RealBench.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QEventLoop>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace sonorel::test {

namespace {

constexpr uint kNoReverse = 16; // a flag of AddAddress: many hosts may have one address
const auto kConnection = u"product"_s;

} // namespace

bool RealBench::isPossible() {
  return qEnvironmentVariableIsSet("SONOREL_PRODUCT_BUS");
}

RealBench::RealBench()
    : m_product(QDBusConnection::connectToBus(qEnvironmentVariable("SONOREL_PRODUCT_BUS"), kConnection)),
      m_browser(loop, desktop, {.patience = 5s, .retryAfter = 200ms}) {
  qDBusRegisterMetaType<QList<QByteArray>>();
  EXPECT_TRUE(m_product.isConnected());
  startDaemon();
}

RealBench::~RealBench() {
  m_browser.stop();
  endDaemon();
  m_product = QDBusConnection(QString());
  QDBusConnection::disconnectFromBus(kConnection); // which takes back what is published
}

QVariant RealBench::call(const QString &path, const QString &interface, const QString &method,
                         const QVariantList &arguments) {
  QDBusMessage message = QDBusMessage::createMethodCall(u"org.freedesktop.Avahi"_s, path,
                                                        u"org.freedesktop.Avahi."_s + interface, method);
  message.setArguments(arguments);
  const QDBusMessage reply = m_product.call(message);
  EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage)
      << method.toStdString() << ": " << reply.errorMessage().toStdString();
  return reply.arguments().value(0);
}

QString RealBench::newGroup() {
  return call(u"/"_s, u"Server"_s, u"EntryGroupNew"_s, {}).value<QDBusObjectPath>().path();
}

void RealBench::callGroup(const QString &path, const QString &method, const QVariantList &arguments) {
  call(path, u"EntryGroup"_s, method, arguments);
}

void RealBench::publishAddress(const Groups &groups, const QString &address) {
  callGroup(groups.address, u"AddAddress"_s, {-1, 0, kNoReverse, groups.host, address});
  callGroup(groups.address, u"Commit"_s);
}

void RealBench::publish(const Publication &publication) {
  if (m_groups.contains(publication.name)) {
    const Groups groups = m_groups.value(publication.name);
    callGroup(groups.address, u"Reset"_s);
    publishAddress(groups, publication.address);
    return;
  }
  const Groups groups{u"host-%1.local"_s.arg(++m_lastHost), newGroup(), newGroup()};
  m_groups.insert(publication.name, groups);
  publishAddress(groups, publication.address);
  callGroup(groups.service, u"AddService"_s,
            {-1, 0, 0U, publication.name, kType, QString(), groups.host, QVariant::fromValue(publication.port),
             QVariant::fromValue(publication.textRecord)});
  callGroup(groups.service, u"Commit"_s);
}

void RealBench::unpublish(const QString &name) {
  const Groups groups = m_groups.take(name);
  callGroup(groups.service, u"Free"_s);
  callGroup(groups.address, u"Free"_s);
}

void RealBench::startDaemon() {
  m_daemon.start(u"avahi-daemon"_s, {u"-f"_s, qEnvironmentVariable("SONOREL_CLIENT_AVAHI"), u"--no-drop-root"_s,
                                     u"--no-chroot"_s, u"--no-rlimits"_s});
  EXPECT_TRUE(m_daemon.waitForStarted());
}

void RealBench::endDaemon() {
  if (m_daemon.state() != QProcess::NotRunning) {
    m_daemon.terminate();
    EXPECT_TRUE(m_daemon.waitForFinished());
  }
}

void RealBench::pass() {
  QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
  loop.runPosted();
}

void RealBench::setLink(const QString &link, const QString &state) {
  EXPECT_EQ(QProcess::execute(u"ip"_s, {u"link"_s, u"set"_s, link, state}), 0);
}

} // namespace sonorel::test
