#include "scripts/JpegPicture.h"
#include "scripts/PictureFile.h"

#include "ScriptFolder.h"
#include "support/Printers.h"

#include <csignal>

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

} // namespace sonorel::test
