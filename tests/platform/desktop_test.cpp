#include "platform/linux/AutostartEntry.h"
#include "platform/linux/LinuxDesktop.h"
#include "support/Printers.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>

using namespace sonorel;
using namespace Qt::Literals::StringLiterals;

namespace {

class LinuxDesktopTest : public testing::Test {
protected:
  QTemporaryDir folder;
  LinuxDesktop desktop{{folder.path(), u"/opt/new place/sonoreld"_s,
                        [](const QString &path) { return std::optional<QString>(path); }}};

  [[nodiscard]] QString autostart(const QString &name) const { return folder.filePath(u"autostart/"_s + name); }
  [[nodiscard]] QByteArray content(const QString &name) const {
    QFile file(autostart(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
  }
  void put(const QString &name, const QByteArray &bytes) const {
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"autostart"_s));
    QFile file(autostart(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }
};

const QString kApp = u"/Applications/Sonorel/Sonorel.app"_s;

} // namespace

TEST_F(LinuxDesktopTest, HasNoLoginItemsAtFirst) {
  EXPECT_TRUE(desktop.loginItems().empty());
}

TEST_F(LinuxDesktopTest, LoginItemStartsThisInstallation) {
  EXPECT_TRUE(desktop.setLoginItems({{kApp, true}}));
  EXPECT_EQ(content(u"sonorel.desktop"_s), QByteArray("[Desktop Entry]\n"
                                                      "Type=Application\n"
                                                      "Name=Sonorel\n"
                                                      "Exec=\"/opt/new place/sonoreld\"\n"
                                                      "X-Sonorel-Path=/Applications/Sonorel/Sonorel.app\n"
                                                      "X-Sonorel-Hide=true\n"));
  const auto items = desktop.loginItems();
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(items[0].path, kApp);
  EXPECT_TRUE(items[0].hide);
}

TEST_F(LinuxDesktopTest, RemovedItemsLeaveNoFile) {
  EXPECT_TRUE(desktop.setLoginItems({{kApp, false}, {u"/other.app"_s, false}}));
  EXPECT_EQ(desktop.loginItems().size(), 2U);
  EXPECT_TRUE(desktop.setLoginItems({{kApp, false}}));
  EXPECT_EQ(QDir(folder.filePath(u"autostart"_s)).entryList(QDir::Files), QStringList{u"sonorel.desktop"_s});
  EXPECT_TRUE(desktop.setLoginItems({}));
  EXPECT_TRUE(QDir(folder.filePath(u"autostart"_s)).isEmpty());
}

TEST_F(LinuxDesktopTest, EntriesOfOthersStay) {
  put(u"sonorel-notes.desktop"_s, "[Desktop Entry]\nExec=notes\n");
  EXPECT_TRUE(desktop.setLoginItems({{kApp, false}}));
  EXPECT_TRUE(desktop.setLoginItems({}));
  EXPECT_EQ(content(u"sonorel-notes.desktop"_s), QByteArray("[Desktop Entry]\nExec=notes\n"));
  EXPECT_TRUE(desktop.loginItems().empty());
}

TEST_F(LinuxDesktopTest, AgentsOwnEntryIsRemoved) {
  put(u"trackchute.desktop"_s, "[Desktop Entry]\n");
  put(u"clock.desktop"_s, "[Desktop Entry]\n");
  desktop.removeAgentLoginItems();
  EXPECT_EQ(QDir(folder.filePath(u"autostart"_s)).entryList(QDir::Files), QStringList{u"clock.desktop"_s});
}

TEST_F(LinuxDesktopTest, LoginItemsOfTheAgentAreRemovedAndNoOthers) {
  const QString agent = u"/Applications/Sonorel/Sonorel.app/Contents/Resources/TrackChute.app"_s;
  EXPECT_TRUE(
      desktop.setLoginItems({{agent, false}, {kApp, false}, {agent, true}, {u"/NotTrackChute.app"_s, false}}));
  desktop.removeAgentLoginItems();
  const auto items = desktop.loginItems();
  ASSERT_EQ(items.size(), 2U);
  EXPECT_EQ(items[0].path, kApp);
  EXPECT_EQ(items[1].path, u"/NotTrackChute.app"_s);
}

TEST_F(LinuxDesktopTest, OneEntryOverReinstallations) {
  for (const QString &client : {u"/opt/old/sonoreld"_s, u"/usr/bin/sonoreld"_s, u"/usr/bin/sonoreld"_s}) {
    LinuxDesktop installed({folder.path(), client, [](const QString &path) { return std::optional<QString>(path); }});
    auto items = installed.loginItems();
    std::erase_if(items, [](const LoginItem &item) { return item.path.endsWith(u"Sonorel.app"_s); });
    items.push_back({kApp, false});
    EXPECT_TRUE(installed.setLoginItems(items));
    EXPECT_EQ(QDir(folder.filePath(u"autostart"_s)).entryList(QDir::Files), QStringList{u"sonorel.desktop"_s});
    EXPECT_TRUE(content(u"sonorel.desktop"_s).contains("\nExec=\"" + client.toUtf8() + "\"\n"));
  }
}

TEST_F(LinuxDesktopTest, EntryOfAnEarlierInstallationStartsThisOneAndKeepsWhatTheUserChose) {
  LinuxDesktop earlier(
      {folder.path(), u"/opt/old/sonoreld"_s, [](const QString &path) { return std::optional<QString>(path); }});
  EXPECT_TRUE(earlier.setLoginItems({{u"/opt/other"_s, false}, {kApp, true}}));
  const QByteArray other = content(u"sonorel.desktop"_s);
  put(u"sonorel-2.desktop"_s, content(u"sonorel-2.desktop"_s) +
                                  "X-GNOME-Autostart-enabled=false\n[Desktop Action Own]\nExec=\"/usr/bin/own\"\n");
  put(u"sonorel-notes.desktop"_s, "[Desktop Entry]\nExec=notes\n");
  desktop.renewLoginItems();
  EXPECT_EQ(content(u"sonorel-2.desktop"_s), QByteArray("[Desktop Entry]\n"
                                                        "Type=Application\n"
                                                        "Name=Sonorel\n"
                                                        "Exec=\"/opt/new place/sonoreld\"\n"
                                                        "X-Sonorel-Path=/Applications/Sonorel/Sonorel.app\n"
                                                        "X-Sonorel-Hide=true\n"
                                                        "X-GNOME-Autostart-enabled=false\n"
                                                        "[Desktop Action Own]\n"
                                                        "Exec=\"/usr/bin/own\"\n"));
  EXPECT_EQ(content(u"sonorel.desktop"_s), other);
  EXPECT_EQ(content(u"sonorel-notes.desktop"_s), QByteArray("[Desktop Entry]\nExec=notes\n"));
}

TEST_F(LinuxDesktopTest, CommandOfTheUsersOwnIsKept) {
  const QByteArray own =
      "[Desktop Entry]\nExec=nice \"/opt/old/sonoreld\"\nX-Sonorel-Path=/Applications/Sonorel/Sonorel.app\n";
  put(u"sonorel.desktop"_s, own);
  desktop.renewLoginItems();
  EXPECT_EQ(content(u"sonorel.desktop"_s), own);
}

TEST_F(LinuxDesktopTest, EntryThatTheUserRemovedIsNotMadeAnew) {
  desktop.renewLoginItems();
  EXPECT_FALSE(QFile::exists(autostart(u"sonorel.desktop"_s)));
}

TEST_F(LinuxDesktopTest, FailsWhereTheFolderCannotBeMade) {
  QFile file(folder.filePath(u"autostart"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  EXPECT_FALSE(desktop.setLoginItems({{kApp, false}}));
}

TEST_F(LinuxDesktopTest, DocumentIsOpenedWithoutTheBlockedSignals) {
  QFile opener(folder.filePath(u"xdg-open"_s));
  ASSERT_TRUE(opener.open(QIODevice::WriteOnly));
  // Not by the shell, which takes all signals back when it starts.
  opener.write(
      "#!/usr/bin/perl\nopen(S, '<', '/proc/self/status'); ($mask) = grep { /^SigBlk/ } <S>;\n"
      "open(O, '>', \"$ARGV[0].new\"); print O $mask; close(O); rename(\"$ARGV[0].new\", \"$ARGV[0].opened\");\n");
  opener.close();
  ASSERT_TRUE(opener.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
  const QString document = folder.filePath(u"help me.html"_s);
  ASSERT_TRUE(QFile(document).open(QIODevice::WriteOnly));

  const QByteArray path = qgetenv("PATH");
  qputenv("PATH", folder.path().toUtf8() + ":" + path);
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
  EXPECT_TRUE(desktop.openDocument(document));
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  qputenv("PATH", path);

  QFile opened(document + u".opened"_s);
  for (int i = 0; i < 500 && !opened.exists(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ASSERT_TRUE(opened.open(QIODevice::ReadOnly));
  EXPECT_EQ(opened.readAll().simplified(), QByteArray("SigBlk: 0000000000000000"));
}

TEST_F(LinuxDesktopTest, DocumentThatIsMissingIsNotOpened) {
  EXPECT_FALSE(desktop.openDocument(folder.filePath(u"absent.html"_s)));
}

TEST_F(LinuxDesktopTest, DesktopNumberCannotBeToldWithoutAnXServer) {
  ASSERT_TRUE(qunsetenv("DISPLAY"));
  EXPECT_EQ(desktop.spaceNumber(), -1);
}

TEST(AutostartEntry, EscapesWhatTheFormatWouldMisread) {
  const LoginItem item{u"/a\\b\nc"_s, false};
  const QByteArray bytes = encodeAutostartEntry(item, u"/odd \"$`%\\x"_s);
  EXPECT_TRUE(bytes.contains("\nExec=\"/odd \\\\\"\\\\$\\\\`%%\\\\\\\\x\"\n")) << bytes.constData();
  const auto decoded = decodeAutostartEntry(bytes);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->path, item.path);
}
