// The knobs of the fake tools; their common behaviour is in the contract.
#include "support/FakeProcesses.h"

#include "support/Fixtures.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const QString kPoint = u"/Volumes/VB-SHARE$"_s;

class FakeProcessesTest : public testing::Test {
protected:
  FakeFileSystem files;
  FakeProcesses processes{files};

  ToolResult run(const QString &program, const QStringList &arguments) {
    ToolRequest request;
    request.program = program;
    request.arguments = arguments;
    return processes.run(request, {});
  }
};

} // namespace

TEST_F(FakeProcessesTest, CopiesBytesAndTime) {
  files.put(u"/m/a.mp3"_s, "sound", 777);
  files.makeFolders(u"/t"_s);
  EXPECT_TRUE(succeeded(run(u"/bin/cp"_s, {u"-p"_s, u"/m/a.mp3"_s, u"/t/b.mp3"_s})));
  EXPECT_EQ(files.bytes(u"/t/b.mp3"_s), "sound");
  EXPECT_EQ(files.modified(u"/t/b.mp3"_s), 777);
}

TEST_F(FakeProcessesTest, KilledCopyLeavesHalfOfTheBytes) {
  files.put(u"/m/a.mp3"_s, "sounds", 777);
  files.makeFolders(u"/t"_s);
  processes.failAt(1, exited(137));
  EXPECT_EQ(run(u"/bin/cp"_s, {u"-p"_s, u"/m/a.mp3"_s, u"/t/b.mp3"_s}).status, 137);
  EXPECT_EQ(files.bytes(u"/t/b.mp3"_s), "sou");
  EXPECT_TRUE(succeeded(run(u"/bin/cp"_s, {u"-p"_s, u"/m/a.mp3"_s, u"/t/b.mp3"_s})));
  EXPECT_EQ(files.bytes(u"/t/b.mp3"_s), "sounds");
}

TEST_F(FakeProcessesTest, CopyOntoAFullShareLeavesAPart) {
  files.put(u"/m/a.mp3"_s, "sounds");
  files.mount(kPoint, u"smbfs"_s, 4);
  const ToolResult result = run(u"/bin/cp"_s, {u"-p"_s, u"/m/a.mp3"_s, kPoint + u"/b.mp3"_s});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(files.bytes(kPoint + u"/b.mp3"_s), "soun");
}

TEST_F(FakeProcessesTest, DeathOfTheClientEndsTheCopyToo) {
  files.put(u"/m/a.mp3"_s, "sounds", 777);
  files.makeFolders(u"/t"_s);
  files.dieAt(6); // read, attributes, presence, truncate, write, setModified
  EXPECT_THROW(run(u"/bin/cp"_s, {u"-p"_s, u"/m/a.mp3"_s, u"/t/b.mp3"_s}), Died);
  EXPECT_EQ(files.bytes(u"/t/b.mp3"_s), "sounds");
  EXPECT_NE(files.modified(u"/t/b.mp3"_s), 777);
  EXPECT_THROW(run(u"/bin/rm"_s, {u"/t/b.mp3"_s}), Died);
}

TEST_F(FakeProcessesTest, MountsAndUnmounts) {
  const QStringList arguments{u"-t"_s, u"smbfs"_s, u"//user:pw@10.0.0.1/VB-SHARE$"_s, kPoint};
  EXPECT_NE(run(u"/sbin/mount"_s, arguments).status, 0);
  files.makeFolders(kPoint);
  EXPECT_TRUE(succeeded(run(u"/sbin/mount"_s, arguments)));
  EXPECT_TRUE(files.isMounted(kPoint));
  EXPECT_NE(run(u"/sbin/mount"_s, arguments).status, 0);
  EXPECT_TRUE(succeeded(run(u"/sbin/umount"_s, {u"-f"_s, kPoint})));
  EXPECT_FALSE(files.isMounted(kPoint));
  EXPECT_NE(run(u"/sbin/umount"_s, {kPoint}).status, 0);
}

TEST_F(FakeProcessesTest, MountAnswersInTurn) {
  files.makeFolders(kPoint);
  const QStringList arguments{u"-t"_s, u"smbfs"_s, u"//user:pw@10.0.0.1/VB-SHARE$"_s, kPoint};
  processes.mountAnswers = {{2, "Authentication error", false}, {0, {}, true}};
  const ToolResult refused = run(u"/sbin/mount"_s, arguments);
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.output, "Authentication error");
  EXPECT_EQ(run(u"/sbin/mount"_s, arguments).ending, ToolEnding::DeadlinePassed);
  EXPECT_FALSE(files.isMounted(kPoint));
  EXPECT_TRUE(succeeded(run(u"/sbin/mount"_s, arguments)));
}

TEST_F(FakeProcessesTest, HangingToolEndsWithTheStopToken) {
  files.makeFolders(kPoint);
  std::stop_source stop;
  processes.mountAnswers = {{0, {}, true}};
  processes.onHang = [&](std::chrono::milliseconds) { stop.request_stop(); };
  ToolRequest request;
  request.program = u"/sbin/mount"_s;
  request.arguments = {u"-t"_s, u"smbfs"_s, u"//10.0.0.1/VB-SHARE$"_s, kPoint};
  EXPECT_EQ(processes.run(request, stop.get_token()).ending, ToolEnding::Stopped);
}

TEST_F(FakeProcessesTest, RemovesFilesAndEmptyFolders) {
  files.put(u"/f/a"_s, "1");
  EXPECT_NE(run(u"/bin/rmdir"_s, {u"/f"_s}).status, 0);
  EXPECT_TRUE(succeeded(run(u"/bin/rm"_s, {u"/f/a"_s})));
  EXPECT_NE(run(u"/bin/rm"_s, {u"/f/a"_s}).status, 0);
  EXPECT_TRUE(succeeded(run(u"/bin/rmdir"_s, {u"/f"_s})));
  EXPECT_FALSE(files.exists(u"/f"_s));
}
