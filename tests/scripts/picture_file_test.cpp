#include "scripts/JpegPicture.h"
#include "scripts/PictureFile.h"

#include "ScriptFolder.h"
#include "support/Printers.h"

#include <csignal>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::string_literals;

namespace sonorel::test {

namespace {

const std::string kStart = "\xFF\xD8"s;
const std::string kComment = "\xFF\xFE\x00\x04hi"s;
const std::string kFrame = "\xFF\xC2\x00\x0B\x08\x00\x01\x00\x01\x01\x01\x11\x00"s;
const std::string kScan = "\xFF\xDA\x00\x08\x01\x01\x00\x00\x3F\x00"s;

} // namespace

TEST(JpegPicture, AHeadWithFrameAndScanIsAJpeg) {
  EXPECT_TRUE(isJpeg(kStart + kFrame + kScan));
  EXPECT_TRUE(isJpeg(kStart + kComment + "\xFF"s + kFrame + kScan + "anything"));
  EXPECT_TRUE(isJpeg(kStart + "\xFF\xD0"s + kFrame + kScan));
}

TEST(JpegPicture, AnythingElseIsNone) {
  const std::string whole = kStart + kComment + kFrame + kScan;
  const std::size_t scan = kStart.size() + kComment.size() + kFrame.size();
  for (std::size_t length = 0; length < scan + 4; ++length) {
    EXPECT_FALSE(isJpeg(whole.substr(0, length))) << length;
  }
  EXPECT_FALSE(isJpeg(kStart + kScan));
  EXPECT_FALSE(isJpeg(kStart + kFrame + "\xFF\xD9\x00\x00"s));
  EXPECT_FALSE(isJpeg("\x89PNG\r\n\x1A\n"s + kFrame + kScan));
  EXPECT_FALSE(isJpeg(kStart + std::string(64, '\xFF')));
}

TEST(PictureFolder, FollowsTheFolderText) {
  EXPECT_EQ(pictureFolder("/m/", "Artist:Album:"), "/m/Artist/Album/");
  EXPECT_EQ(pictureFolder("/m", "Album"), "/m/Album/");
  EXPECT_EQ(pictureFolder("/m", ""), "/m/");
  EXPECT_THROW((void)pictureFolder("m", ""), std::invalid_argument);
  EXPECT_THROW((void)pictureFolder("/m", "a:..:"), std::invalid_argument);
  EXPECT_THROW((void)pictureFolder("/m", ":"), std::invalid_argument);
}

TEST(PictureFile, ARequestToEndLeavesNothingBehind) {
  const ScriptFolder files;
  const std::string folder = files.makeFolder(u"music"_s).toStdString();
  EXPECT_EXIT(
      {
        obeyRequestsToEnd();
        std::raise(SIGTERM);
        try {
          placePicture(folder, "a.jpg", "bytes");
        } catch (const std::exception &) {
          std::exit(7);
        }
        std::exit(0);
      },
      testing::ExitedWithCode(7), "");
  EXPECT_EQ(files.filesIn(u"music"_s), QStringList());
}

// The process that runs the exporter is killed: the exporter, which it can no longer ask, ends as well.
TEST(PictureFile, TheEndOfTheClientIsARequestToEnd) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(::pipe(ends), 0);
  const pid_t client = ::fork();
  if (client == 0) {
    if (::fork() == 0) {
      sigset_t none;
      sigset_t term;
      ::sigemptyset(&none);
      ::sigemptyset(&term);
      ::sigaddset(&term, SIGTERM);
      ::sigprocmask(SIG_BLOCK, &term, nullptr); // until it is waited for
      ::alarm(30);                              // in no case for ever
      obeyRequestsToEnd();
      (void)!::write(ends[1], "r", 1);
      ::sigsuspend(&none);
      (void)!::write(ends[1], "e", 1);
    } else {
      ::pause();
    }
    ::_exit(0);
  }
  const auto said = [&ends] {
    pollfd one{ends[0], POLLIN, 0};
    char letter = '-';
    return ::poll(&one, 1, 10'000) == 1 && ::read(ends[0], &letter, 1) == 1 ? letter : '-';
  };
  EXPECT_EQ(said(), 'r');
  ::kill(client, SIGKILL);
  ::waitpid(client, nullptr, 0);
  EXPECT_EQ(said(), 'e');
  ::close(ends[0]);
  ::close(ends[1]);
}

} // namespace sonorel::test
