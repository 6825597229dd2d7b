#include "platform/linux/DBusApplications.h"
#include "support/Printers.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QProcess>

#include <gtest/gtest.h>

using namespace sonorel;
using namespace Qt::Literals::StringLiterals;

namespace {

class DBusApplicationsTest : public testing::Test {
protected:
  DBusApplications applications{QDBusConnection::sessionBus(), u"/no/such/exporter"_s};
  QProcess other;

  void start(const QString &name, const QString &how = u"--own"_s) {
    other.start(QCoreApplication::applicationFilePath(), {how, name});
    ASSERT_TRUE(other.waitForReadyRead());
    ASSERT_EQ(other.readAll(), QByteArray("owned\n"));
  }
  void TearDown() override {
    if (other.state() != QProcess::NotRunning) {
      other.kill();
      other.waitForFinished();
    }
  }
};

} // namespace

TEST_F(DBusApplicationsTest, KnowsNobodyWithoutAName) {
  EXPECT_TRUE(applications.launched().empty());
}

TEST_F(DBusApplicationsTest, FindsTheAgentByItsName) {
  start(u"com.orv.TrackChute"_s);
  const auto running = applications.launched();
  ASSERT_EQ(running.size(), 1U);
  EXPECT_EQ(running[0].name, u"TrackChute"_s);
  EXPECT_EQ(running[0].bundleIdentifier, u"com.orv.TrackChute"_s);
  EXPECT_EQ(running[0].path, u"/Applications/Sonorel/Sonorel.app/Contents/Resources/TrackChute.app"_s);
  EXPECT_EQ(running[0].processId, other.processId());
}

TEST_F(DBusApplicationsTest, FindsTheClientByItsName) {
  start(u"com.orv.Sonorel"_s);
  const auto running = applications.launched();
  ASSERT_EQ(running.size(), 1U);
  EXPECT_EQ(running[0].name, u"Sonorel"_s);
  EXPECT_EQ(running[0].path, u"/Applications/Sonorel/Sonorel.app"_s);
}

TEST_F(DBusApplicationsTest, TheArtworkExporterCountsAsRunningWhileItIsThere) {
  DBusApplications withExporter{QDBusConnection::sessionBus(), u"/bin/true"_s};
  const auto running = withExporter.launched();
  ASSERT_EQ(running.size(), 1U);
  EXPECT_EQ(running[0].name, u"iTunes"_s);
  withExporter.end(running[0]); // nothing to end
  EXPECT_EQ(withExporter.launched().size(), 1U);
}

TEST_F(DBusApplicationsTest, EndsTheOwnerOfTheName) {
  start(u"com.orv.TrackChute"_s);
  const auto running = applications.launched();
  ASSERT_EQ(running.size(), 1U);
  applications.end(running[0]);
  EXPECT_TRUE(applications.launched().empty()) << "the name is free at once";
  EXPECT_TRUE(other.waitForFinished());
  EXPECT_EQ(other.exitStatus(), QProcess::CrashExit); // by the signal
}

TEST_F(DBusApplicationsTest, EndsOneThatDoesNotObey) {
  start(u"com.orv.TrackChute"_s, u"--own-stubbornly"_s);
  const auto running = applications.launched();
  ASSERT_EQ(running.size(), 1U);
  applications.end(running[0]);
  EXPECT_TRUE(applications.launched().empty());
  EXPECT_TRUE(other.waitForFinished());
}

TEST_F(DBusApplicationsTest, LeavesAProcessAloneThatDoesNotOwnTheName) {
  start(u"com.orv.SomebodyElse"_s);
  applications.end({u"TrackChute"_s, {}, u"com.orv.TrackChute"_s, other.processId()});
  applications.end({u"TrackChute"_s, {}, u"com.orv.TrackChute"_s, 0});
  applications.end({u"TrackChute"_s, {}, u"com.orv.TrackChute"_s, -1});
  // It still answers for its name.
  EXPECT_TRUE(QDBusConnection::sessionBus().interface()->isServiceRegistered(u"com.orv.SomebodyElse"_s));
}
