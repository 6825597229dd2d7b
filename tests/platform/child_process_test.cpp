#include "platform/linux/ChildProcess.h"

#include <gtest/gtest.h>

#include "support/Printers.h"
#include "support/TemporaryRoots.h"

#include <csignal>
#include <fcntl.h>
#include <thread>

using namespace std::chrono_literals;

namespace sonorel::test {

namespace {

ToolResult shell(const QByteArray &script, std::chrono::milliseconds deadline = 20s,
                 const std::optional<QByteArray> &input = {}) {
  return runChild({"/bin/sh", {"-c", script}, input, {}, -1}, deadline, {});
}

std::chrono::milliseconds timeOf(const std::function<void()> &call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

} // namespace

TEST(ChildProcess, GivesStatusAndBothStreams) {
  const ToolResult result = shell("echo out; echo err >&2; exit 7");
  EXPECT_EQ(result.ending, ToolEnding::Exited);
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.output, QByteArray("out\nerr\n"));
}

TEST(ChildProcess, PassesArgumentsByPosition) {
  const QList<QByteArray> arguments{"-c", "printf '%s|' \"$@\"", "sh", "a b", "$(id)", "", "x\ny", "'q'"};
  const ToolResult result = runChild({"/bin/sh", arguments, {}, {}, -1}, 20s, {});
  EXPECT_EQ(result.output, QByteArray("a b|$(id)||x\ny|'q'|"));
}

TEST(ChildProcess, ReportsTheSignalThatEndedIt) {
  EXPECT_EQ(shell("kill -9 $$").status, 128 + SIGKILL);
}

TEST(ChildProcess, IsNotStartedWithoutAProgram) {
  const ToolResult result = runChild({"/no/such/program", {}, {}, {}, -1}, 20s, {});
  EXPECT_EQ(result.ending, ToolEnding::NotStarted);
  EXPECT_EQ(result.status, -1);
}

TEST(ChildProcess, ReadsItsInputToTheEnd) {
  EXPECT_EQ(shell("cat", 20s, QByteArray("//user:p%40ss@nas/VB-SHARE$")).output,
            QByteArray("//user:p%40ss@nas/VB-SHARE$"));
  EXPECT_EQ(shell("wc -c", 20s, QByteArray(1'000'000, 'x')).output.trimmed(), QByteArray("1000000"));
  EXPECT_EQ(shell("cat; echo end").output, QByteArray("end\n")) << "without input there is nothing to wait for";
}

TEST(ChildProcess, SurvivesAChildThatDoesNotReadItsInput) {
  const ToolResult result = shell("exec <&-; exit 3", 20s, QByteArray(1'000'000, 'x'));
  EXPECT_EQ(result.status, 3);
}

TEST(ChildProcess, KeepsTheFirst64KiBAndLetsTheRestPass) {
  const ToolResult result = shell("yes | head -c 300000; exit 5");
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.output.size(), 65'536);
}

TEST(ChildProcess, SpeaksEnglish) {
  EXPECT_EQ(shell("echo $LC_ALL").output, QByteArray("C\n"));
}

TEST(ChildProcess, AddsToTheEnvironment) {
  const ToolResult result =
      runChild({"/bin/sh", {"-c", "echo $SONOREL_MUSIC_FOLDER"}, {}, {"SONOREL_MUSIC_FOLDER=/a b"}, -1}, 20s, {});
  EXPECT_EQ(result.output, QByteArray("/a b\n"));
}

TEST(ChildProcess, InheritsNoDescriptors) {
  const int open = ::open("/dev/null", O_RDONLY); // deliberately without close-on-exec
  const ToolResult result = shell("ls /proc/$$/fd");
  ::close(open);
  EXPECT_EQ(result.output.simplified(), QByteArray("0 1 2"));
}

TEST(ChildProcess, FindsThePassedFolder) {
  const TemporaryRoots temporary;
  temporary.put("outside/file", "x");
  const int folder = ::open(temporary.below("outside").toUtf8().constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  const ToolResult result = runChild({"/bin/ls", {"/proc/self/fd/3/"}, {}, {}, folder}, 20s, {});
  ::close(folder);
  EXPECT_EQ(result.output, QByteArray("file\n"));
}

TEST(ChildProcess, DoesNotWaitForThoseThatInheritedItsOutput) {
  ToolResult result;
  const auto time = timeOf([&] { result = shell("sleep 30 & echo done"); });
  EXPECT_EQ(result.output, QByteArray("done\n"));
  EXPECT_EQ(result.status, 0);
  EXPECT_LT(time, 10s);
}

TEST(ChildProcess, EndsAtItsDeadlineWithAllThatItStarted) {
  const TemporaryRoots temporary;
  const QByteArray late = temporary.below("late").toUtf8();
  ToolResult result;
  const auto time =
      timeOf([&] { result = shell("(sleep 0.6; touch '" + late + "') & echo begun; sleep 60", 100ms); });
  EXPECT_EQ(result.ending, ToolEnding::DeadlinePassed);
  EXPECT_EQ(result.output, QByteArray("begun\n"));
  EXPECT_EQ(result.status, 128 + SIGTERM);
  EXPECT_LT(time, 2s);
  EXPECT_TRUE(shell("sleep 0.8; test ! -e '" + late + "'").status == 0) << "nothing happens after the deadline";
}

TEST(ChildProcess, IsKilledWhenItDoesNotListen) {
  ToolResult result;
  const auto time = timeOf([&] { result = shell("echo $$; trap '' TERM; while :; do sleep 0.05; done", 100ms); });
  EXPECT_EQ(result.ending, ToolEnding::DeadlinePassed);
  EXPECT_EQ(result.status, 128 + SIGKILL);
  EXPECT_LT(time, 5s);
  const pid_t process = result.output.trimmed().toInt();
  ASSERT_GT(process, 1);
  EXPECT_NE(::kill(process, 0), 0) << "it has gone";
}

TEST(ChildProcess, EndsWhenTheStopTokenIsSet) {
  std::stop_source stop;
  const std::jthread other([&stop] {
    std::this_thread::sleep_for(50ms);
    stop.request_stop();
  });
  ToolResult result;
  const auto time = timeOf([&] { result = runChild({"/bin/sleep", {"60"}, {}, {}, -1}, 0ms, stop.get_token()); });
  EXPECT_EQ(result.ending, ToolEnding::Stopped);
  EXPECT_LT(time, 5s);
}

TEST(ChildProcess, IsNotStartedAfterAStop) {
  const TemporaryRoots temporary;
  std::stop_source stop;
  stop.request_stop();
  const QByteArray trace = temporary.below("trace").toUtf8();
  EXPECT_EQ(runChild({"/bin/touch", {trace}, {}, {}, -1}, 0ms, stop.get_token()).ending, ToolEnding::Stopped);
  EXPECT_FALSE(temporary.exists("trace"));
}

TEST(ChildProcess, DoesNotKeepTheClientsSignalHandling) {
  ::signal(SIGTERM, SIG_IGN);
  sigset_t blocked;
  sigset_t old;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGINT);
  pthread_sigmask(SIG_BLOCK, &blocked, &old);
  const ToolResult result =
      runChild({"/bin/grep", {"-E", "SigBlk|SigIgn", "/proc/self/status"}, {}, {}, -1}, 20s, {});
  pthread_sigmask(SIG_SETMASK, &old, nullptr);
  ::signal(SIGTERM, SIG_DFL);
  const QList<QByteArray> words = result.output.simplified().split(' ');
  ASSERT_EQ(words.size(), 4);
  EXPECT_EQ(words.at(1), QByteArray("0000000000000000"));
  EXPECT_EQ(words.at(3).toULongLong(nullptr, 16) & (1ULL << (SIGTERM - 1)), 0U);
}

} // namespace sonorel::test
