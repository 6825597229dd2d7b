#include "trackchute/DroppedFiles.h"

#include "platform/Failure.h"
#include "platform/linux/PathMap.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace sonorel::trackchute {

namespace {

std::optional<QString> takesAll(const QString &path, QString * /*reason*/) {
  return path;
}

class DroppedFilesTest : public testing::Test {
protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "trackchute-XXXXXX").string();
    m_folder = ::mkdtemp(pattern.data());
  }
  void TearDown() override { fs::remove_all(m_folder); }

  std::string file(const std::string &name) const {
    fs::create_directories((m_folder / name).parent_path());
    std::ofstream(m_folder / name) << "x";
    return (m_folder / name).string();
  }
  // Of a folder with all that it holds; the client refuses nothing.
  DroppedFiles expanded(const std::string &name) const {
    return expandDroppedFiles(std::vector{(m_folder / name).string()}, takesAll);
  }
  QString path(const QString &name) const { return QString::fromStdString(m_folder.string()) + u'/' + name; }
  static QString refusal(const std::string &argument) {
    try {
      requireAnyFile(expandDroppedFiles(std::vector{argument}, takesAll));
    } catch (const Failure &failure) {
      return failure.reason();
    }
    return u"accepted"_s;
  }

  fs::path m_folder;
};

} // namespace

TEST_F(DroppedFilesTest, PathsAreAbsoluteAndClean) {
  file("album/a.mp3");
  const auto found = expandDroppedFiles(std::vector{m_folder.string() + "//album/./x/../a.mp3"}, takesAll);
  EXPECT_EQ(found.paths, QStringList{path(u"album/a.mp3"_s)});
}

// Behind a link ".." is the folder that the file system says, not the one that the text says.
TEST_F(DroppedFilesTest, DotsBehindALinkLeadToTheFileThatWasMeant) {
  file("disk/song.mp3");
  file("disk/albums/other.mp3");
  file("song.mp3");
  fs::create_directory_symlink(m_folder / "disk/albums", m_folder / "link");
  const auto found = expandDroppedFiles(std::vector{m_folder.string() + "/link/../song.mp3"}, takesAll);
  EXPECT_EQ(found.paths, QStringList{path(u"disk/song.mp3"_s)});
}

TEST_F(DroppedFilesTest, FoldersAreExpandedInNaturalOrder) {
  for (const char *name : {"album/10 ten.mp3", "album/2 two.mp3", "album/CD 1/b.mp3", "album/1 one.mp3"}) {
    file(name);
  }
  const auto found = expanded("album");
  EXPECT_EQ(found.paths, (QStringList{path(u"album/1 one.mp3"_s), path(u"album/2 two.mp3"_s),
                                      path(u"album/10 ten.mp3"_s), path(u"album/CD 1/b.mp3"_s)}));
  EXPECT_FALSE(found.holdsPictures);
}

TEST_F(DroppedFilesTest, ArgumentsKeepTheirOrderAndOddNames) {
  const std::string dash = file("-rf.mp3");
  const std::string line = file("two\nlines.mp3");
  const auto found = expandDroppedFiles(std::vector{line, dash}, takesAll);
  EXPECT_EQ(found.paths, (QStringList{path(u"two\nlines.mp3"_s), path(u"-rf.mp3"_s)}));
}

TEST_F(DroppedFilesTest, PicturesAndFilmsAreNoticed) {
  for (const std::string extension : {"jpeg", "jpg", "gif", "tiff", "tif", "png", "bmp", "avi", "mpeg", "mpg", "m1v",
                                      "mpe", "asf", "wmv", "JPG", "WMV"}) {
    EXPECT_TRUE(expandDroppedFiles(std::vector{file("a.mp3"), file("b." + extension)}, takesAll).holdsPictures)
        << extension;
  }
  for (const std::string extension :
       {"mp3", "flac", "wma", "aac", "mp4", "wav", "m4a", "webloc", "url", "jp", "txt"}) {
    EXPECT_FALSE(expandDroppedFiles(std::vector{file("c." + extension)}, takesAll).holdsPictures) << extension;
  }
}

// As the client reads a name: a leading "." begins no extension.
TEST_F(DroppedFilesTest, NameThatIsOnlyAnExtensionIsNoPicture) {
  EXPECT_FALSE(expandDroppedFiles(std::vector{file(".jpg")}, takesAll).holdsPictures);
}

TEST_F(DroppedFilesTest, TitlesThatBeginWithADotAreTaken) {
  for (const char *name : {"...And Justice for All/01 Blackened.mp3", ".38 Special/Hits/02 Caught Up.mp3",
                           "...Baby One More Time.mp3", ".hack Sign.mp3", ".5.mp3", ".(interlude).mp3"}) {
    file(std::string("album/") + name);
  }
  const auto found = expanded("album");
  EXPECT_EQ(found.paths,
            (QStringList{path(u"album/.(interlude).mp3"_s), path(u"album/...And Justice for All/01 Blackened.mp3"_s),
                         path(u"album/...Baby One More Time.mp3"_s), path(u"album/.5.mp3"_s),
                         path(u"album/.38 Special/Hits/02 Caught Up.mp3"_s), path(u"album/.hack Sign.mp3"_s)}));
  EXPECT_EQ(found.leftOut, QStringList());
}

TEST_F(DroppedFilesTest, HiddenEntriesAreLeftOutAndToldWhenTheyCouldHaveBeenMeant) {
  for (const char *name : {".DS_Store", ".Trash-1000/old.mp3", "._01 one.mp3", "._cover.jpg", ".hidden",
                           ".hidden.mp3", ".hidden.JPG", ".hidden.url", ".git/config", ".@__thumb/1.jpg",
                           ".~lock.a b#", ".01 one.mp3.aB3dE9", ".Some Preferences.plist", "01 one.mp3"}) {
    file(std::string("album/") + name);
  }
  fs::create_symlink("nowhere", m_folder / "album/.broken.mp3");
  const auto found = expanded("album");
  EXPECT_EQ(found.paths, QStringList{path(u"album/01 one.mp3"_s)});
  EXPECT_FALSE(found.holdsPictures);
  EXPECT_EQ(found.leftOut,
            (QStringList{path(u"album/.@__thumb (hidden)"_s), path(u"album/.git (hidden)"_s),
                         path(u"album/.hidden.JPG (hidden)"_s), path(u"album/.hidden.mp3 (hidden)"_s),
                         path(u"album/.hidden.url (hidden)"_s), path(u"album/.Trash-1000 (hidden)"_s)}));
}

TEST_F(DroppedFilesTest, HiddenNameOnTheCommandLineIsTaken) {
  const auto found = expandDroppedFiles(std::vector{file(".music/a.mp3"), file(".b.mp3"), file("._c.mp3")}, takesAll);
  EXPECT_EQ(found.paths, (QStringList{path(u".music/a.mp3"_s), path(u".b.mp3"_s), path(u"._c.mp3"_s)}));
  EXPECT_EQ(expanded(".music").paths, QStringList{path(u".music/a.mp3"_s)});
}

TEST_F(DroppedFilesTest, WhatTheClientWouldRefuseIsLeftOutWithItsReason) {
  Roots roots;
  roots.data = path(u"data"_s);
  roots.runtime = path(u"runtime"_s);
  roots.home = path(u"anna"_s);
  const PathMap map(roots);
  const auto fromOutside = [&](const QString &outside, QString *reason) { return map.fromOutside(outside, reason); };
  file("anna/Library/Music/a.jpg");
  file("anna/Music/b.mp3");
  const auto found = expandDroppedFiles(
      std::vector{(m_folder / "anna").string(), file("runtime/Volumes/Stick/c.mp3"), file("anna/Library/d.mp3")},
      fromOutside);
  EXPECT_EQ(found.paths, (QStringList{path(u"anna/Music/b.mp3"_s), path(u"runtime/Volumes/Stick/c.mp3"_s)}));
  EXPECT_FALSE(found.holdsPictures);
  const QString library = path(u"anna/Library"_s);
  const QString reason = u"the names below "_s + library + u" are the program's own: "_s;
  EXPECT_EQ(found.leftOut, (QStringList{reason + library + u"/d.mp3"_s, reason + library + u"/Music/a.jpg"_s,
                                        reason + library + u"/d.mp3"_s}));
}

TEST_F(DroppedFilesTest, DropOfNothingIsRefusedAfterItIsToldWhatWasLeftOut) {
  file("album/.git/a.mp3");
  const auto found = expanded("album");
  EXPECT_EQ(found.leftOut, QStringList{path(u"album/.git (hidden)"_s)});
  EXPECT_EQ(refusal((m_folder / "album").string()), u"there is no file to drop"_s);
}

TEST_F(DroppedFilesTest, WhatIsNoRegularFileIsRefused) {
  EXPECT_EQ(refusal(m_folder.string()), u"there is no file to drop"_s);
  const std::string fifo = (m_folder / "fifo.mp3").string();
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_EQ(refusal(fifo), u"\"%1\" is neither a file nor a folder"_s.arg(QString::fromStdString(fifo)));
  EXPECT_EQ(refusal("/no/such.mp3"), u"there is no file \"/no/such.mp3\""_s);
}

TEST_F(DroppedFilesTest, NamesThatAreNotUtf8AreLeftOutOrRefused) {
  file("album/good.mp3");
  const std::string bad = file("album/caf\xe9.mp3");
  file("album/._caf\xe9.mp3");
  const auto found = expanded("album");
  EXPECT_EQ(found.paths, QStringList{path(u"album/good.mp3"_s)});
  EXPECT_EQ(found.leftOut, QStringList{path(u"album/caf\uFFFD.mp3"_s)});
  EXPECT_TRUE(refusal(bad).contains(u"is not UTF-8"_s));
}

TEST_F(DroppedFilesTest, FolderLoopsEnd) {
  file("album/a.mp3");
  fs::create_directory_symlink(m_folder / "album", m_folder / "album" / "again");
  const auto found = expanded("album");
  EXPECT_EQ(found.paths, QStringList{path(u"album/a.mp3"_s)});
}

TEST(NaturalOrder, DigitRunsCountByValue) {
  EXPECT_TRUE(comesBefore(u"2 b"_s, u"10 a"_s));
  EXPECT_TRUE(comesBefore(u"Track 09"_s, u"track 10"_s));
  EXPECT_TRUE(comesBefore(u"a"_s, u"B"_s));
  EXPECT_TRUE(comesBefore(u"a"_s, u"a1"_s));
  EXPECT_FALSE(comesBefore(u"a"_s, u"a"_s));
  EXPECT_NE(comesBefore(u"01"_s, u"1"_s), comesBefore(u"1"_s, u"01"_s));
}

} // namespace sonorel::trackchute
