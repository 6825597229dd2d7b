// Which host program stands behind a tool, and which of its arguments are paths.
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxProcesses.h"

#include <gtest/gtest.h>

#include "support/Printers.h"
#include "support/TemporaryRoots.h"

#include <chrono>
#include <thread>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kScript = u"/Applications/Sonorel/App Data/SaveToFolder_jpegonly.scpt"_s;

class LinuxTools : public testing::Test {
protected:
  TemporaryRoots temporary;
  QStringList lines;
  LinuxProcesses processes{temporary.roots, {}, [this](const QString &line) { lines.append(line); }};
  LinuxFileSystem files{temporary.roots};

  [[nodiscard]] ToolResult run(const QString &program, const QStringList &arguments) {
    return processes.run({program, arguments, {}, std::chrono::seconds(20)}, {});
  }
  void mountShare() {
    files.createFolder(u"/Volumes/VB-SHARE$"_s, 0777);
    ASSERT_TRUE(succeeded(
        run(u"/sbin/mount"_s, {u"-t"_s, u"smbfs"_s, u"//v:p@embedded/VB-SHARE$"_s, u"/Volumes/VB-SHARE$/"_s})));
  }
};

} // namespace

TEST_F(LinuxTools, RunAScriptWithPathsWherePathsBelong) {
  mountShare();
  temporary.putScript("scripts/SaveToFolder_jpegonly.scpt", "printf '%s|' \"$@\"; exit 4");
  const ToolResult result = run(u"/usr/bin/osascript"_s, {kScript, u"/Library/track.mp3"_s, u"/Library/a title"_s,
                                                          u"A name"_s, u"Artist:Album:"_s});
  EXPECT_EQ(result.status, 4);
  EXPECT_EQ(QString::fromUtf8(result.output),
            temporary.below("data/Library/track.mp3") + u"|/Library/a title|A name|Artist:Album:|"_s);
}

// The folder stays that of the volume, whatever happens to the point meanwhile.
TEST_F(LinuxTools, AScriptHoldsTheMusicFolder) {
  mountShare();
  files.createFolder(u"/Volumes/VB-SHARE$/Music/Mac"_s, 0777);
  const std::string point = temporary.below("runtime/Volumes/VB-SHARE$").toStdString();
  temporary.putScript("scripts/SaveToFolder_jpegonly.scpt", "mv '" + point + "' '" + point + ".gone' && mkdir -p '" +
                                                                point + "/Music/Mac' && " +
                                                                "echo picture >\"${SONOREL_MUSIC_FOLDER}a.jpg\"");
  const ToolResult result = run(u"/usr/bin/osascript"_s, {kScript, u"/a.mp3"_s, u"t"_s, u"a"_s, QString()});
  EXPECT_EQ(result.status, 0) << result.output.toStdString();
  EXPECT_EQ(temporary.bytes("data/Embedded/VB-SHARE$/Music/Mac/a.jpg"), "picture\n");
  EXPECT_FALSE(temporary.exists("runtime/Volumes/VB-SHARE$/Music/Mac/a.jpg"));
}

TEST_F(LinuxTools, RunNoScriptWithoutAShare) {
  temporary.putScript("scripts/SaveToFolder_jpegonly.scpt", "touch '" + temporary.below("trace").toStdString() + "'");
  EXPECT_EQ(run(u"/usr/bin/osascript"_s, {kScript, u"/a.mp3"_s, u"t"_s}).status, 1);
  EXPECT_FALSE(temporary.exists("trace"));
}

TEST_F(LinuxTools, SayThatAScriptIsMissing) {
  mountShare();
  EXPECT_EQ(run(u"/usr/bin/osascript"_s, {kScript, u"/a.mp3"_s}).ending, ToolEnding::NotStarted);
}

TEST_F(LinuxTools, RunInstalledPrograms) {
  temporary.putScript("scripts/ConvertWeblocToURL.sh", "printf '%s|' \"$@\"");
  const ToolResult result =
      run(u"/Applications/Sonorel/App Data/ConvertWeblocToURL.sh"_s, {u"/private/tmp/a \"b\".webloc"_s, u"plain"_s});
  EXPECT_EQ(QString::fromUtf8(result.output), temporary.below("data/Temporary/a \"b\".webloc") + u"|plain|"_s);
}

TEST_F(LinuxTools, RemoveNothingBelowAPointThatIsNotMounted) {
  files.createFolder(u"/Volumes/VB-SHARE$"_s, 0777);
  temporary.put("runtime/Volumes/VB-SHARE$/a person's only copy", "x");
  EXPECT_EQ(run(u"/bin/rm"_s, {u"/Volumes/VB-SHARE$/a person's only copy"_s}).status, 1);
  EXPECT_EQ(temporary.bytes("runtime/Volumes/VB-SHARE$/a person's only copy"), "x");
  std::filesystem::remove(temporary.base() / "runtime/Volumes/VB-SHARE$/a person's only copy");
  EXPECT_EQ(run(u"/bin/rmdir"_s, {u"/Volumes/VB-SHARE$"_s}).status, 0) << "the empty point itself may go";
  mountShare();
  files.write(u"/Volumes/VB-SHARE$/Music/a"_s, "x");
  EXPECT_EQ(run(u"/bin/rm"_s, {u"/Volumes/VB-SHARE$/Music/a"_s}).status, 0);
  EXPECT_EQ(files.presence(u"/Volumes/VB-SHARE$/Music/a"_s), Presence::Absent);
}

TEST_F(LinuxTools, KnowNoOtherTool) {
  const ToolResult result = run(u"/usr/bin/id"_s, {u"a secret"_s});
  EXPECT_EQ(result.ending, ToolEnding::NotStarted);
  EXPECT_EQ(lines, QStringList{u"No such tool: /usr/bin/id"_s});
}

TEST_F(LinuxTools, StartTheAgentAndLeaveItAlone) {
  temporary.putScript("bin/trackchute", "ps -o pid= -o sid= -p $$ > '" + temporary.below("new").toStdString() +
                                            "'; mv '" + temporary.below("new").toStdString() + "' '" +
                                            temporary.below("trace").toStdString() + "'");
  const QString agent =
      u"/Applications/Sonorel/Sonorel.app/Contents/Resources/TrackChute.app/Contents/MacOS/TrackChute"_s;
  ASSERT_TRUE(processes.startDetached(agent, {}));
  for (int i = 0; i < 1000 && !temporary.exists("trace"); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  const QByteArray line = QByteArray::fromStdString(temporary.bytes("trace")).simplified();
  EXPECT_EQ(line.left(line.indexOf(' ')), line.mid(line.indexOf(' ') + 1)) << "a session of its own";
}

TEST_F(LinuxTools, SayThatTheAgentIsMissing) {
  EXPECT_FALSE(processes.startDetached(
      u"/Applications/Sonorel/Sonorel.app/Contents/Resources/TrackChute.app/Contents/MacOS/TrackChute"_s, {}));
  EXPECT_FALSE(processes.startDetached(u"trackchute"_s, {}));
}

} // namespace sonorel::test
