// Where the programs look for their folders, for each way the environment and the installation can stand.
#include "platform/linux/Installation.h"

#include <gtest/gtest.h>

#include "support/Printers.h"
#include "support/TemporaryRoots.h"

#include <map>
#include <pwd.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

class InstallationTest : public testing::Test {
protected:
  void SetUp() override {
    for (const char *name : {"HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
      if (qEnvironmentVariableIsSet(name)) {
        m_before[name] = qgetenv(name);
      }
      qunsetenv(name);
    }
  }
  void TearDown() override {
    for (const char *name : {"HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
      qunsetenv(name);
    }
    for (const auto &[name, value] : m_before) {
      qputenv(name.c_str(), value);
    }
  }
  static QString resourceOf(const QString &programs) {
    return PathMap(rootsFromEnvironment(programs))
        .host(u"/Applications/Sonorel/Sonorel.app/Contents/Resources/StringsEnglish"_s)
        .value_or(QString());
  }

private:
  std::map<std::string, QByteArray> m_before;
};

} // namespace

TEST_F(InstallationTest, EverythingStandsBelowTheHomeFolderWithoutFurtherWord) {
  qputenv("HOME", "/home/anna");
  const Roots roots = rootsFromEnvironment(u"/usr/bin"_s);
  EXPECT_EQ(roots.home, u"/home/anna"_s);
  EXPECT_EQ(roots.data, u"/home/anna/.local/share/sonorel"_s);
  EXPECT_EQ(roots.runtime, u"/home/anna/.local/share/sonorel"_s);
  EXPECT_EQ(roots.embedded, u"/home/anna/.local/share/sonorel/Embedded/VB-SHARE$"_s);
}

TEST_F(InstallationTest, FollowsTheFoldersOfTheSession) {
  qputenv("HOME", "/home/anna");
  qputenv("XDG_DATA_HOME", "/data");
  qputenv("XDG_RUNTIME_DIR", "/run/user/1000");
  const Roots roots = rootsFromEnvironment(u"/usr/bin"_s);
  EXPECT_EQ(roots.data, u"/data/sonorel"_s);
  EXPECT_EQ(roots.runtime, u"/run/user/1000/sonorel"_s);
  EXPECT_EQ(roots.embedded, u"/data/sonorel/Embedded/VB-SHARE$"_s);
}

TEST_F(InstallationTest, FoldersThatAreNotAbsoluteAreIgnored) {
  qputenv("HOME", "/home/anna");
  qputenv("XDG_DATA_HOME", "data");
  qputenv("XDG_RUNTIME_DIR", "");
  const Roots roots = rootsFromEnvironment(u"/usr/bin"_s);
  EXPECT_EQ(roots.data, u"/home/anna/.local/share/sonorel"_s);
  EXPECT_EQ(roots.runtime, u"/home/anna/.local/share/sonorel"_s);
}

TEST_F(InstallationTest, AsksTheAccountForAHomeFolderThatTheEnvironmentDoesNotName) {
  const QString home = QString::fromLocal8Bit(::getpwuid(::getuid())->pw_dir);
  EXPECT_EQ(rootsFromEnvironment(u"/usr/bin"_s).data, home + u"/.local/share/sonorel"_s);
  qputenv("HOME", "anna");
  EXPECT_EQ(rootsFromEnvironment(u"/usr/bin"_s).home, home);
}

TEST_F(InstallationTest, ProgramsStandTogetherAndResourcesBesideThem) {
  const TemporaryRoots temporary;
  EXPECT_EQ(resourceOf(u"/usr/bin"_s), u"/usr/share/sonorel/resources/StringsEnglish"_s);
  std::filesystem::create_directories(temporary.base() / "build/bin");
  std::filesystem::create_directories(temporary.base() / "build/resources");
  EXPECT_EQ(resourceOf(temporary.below("build/bin")), temporary.below("build/resources/StringsEnglish"));
  const Roots roots = rootsFromEnvironment(u"/usr/bin"_s);
  EXPECT_EQ(roots.agent, u"/usr/bin/trackchute"_s);
  EXPECT_EQ(roots.mountProgram, u"/usr/bin/sonorel-mount"_s);
  EXPECT_EQ(roots.unmountProgram, u"/usr/bin/sonorel-umount"_s);
}

} // namespace sonorel::test
