// Run as: dbus-run-session -- bus_test. With "--own NAME" it is the other program of a test: it owns that name on the
// bus until it is ended; with "--own-stubbornly NAME" it does not obey SIGTERM.
#include <QCoreApplication>
#include <QDBusConnection>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>

namespace {

int ownName(const char *name) {
  if (!QDBusConnection::sessionBus().registerService(QString::fromUtf8(name))) {
    return 1;
  }
  std::puts("owned");
  std::fflush(stdout);
  return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv) {
  const QCoreApplication application(argc, argv);
  if (argc == 3 && qstrcmp(argv[1], "--own-stubbornly") == 0) {
    std::signal(SIGTERM, SIG_IGN);
    return ownName(argv[2]);
  }
  if (argc == 3 && qstrcmp(argv[1], "--own") == 0) {
    return ownName(argv[2]);
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
