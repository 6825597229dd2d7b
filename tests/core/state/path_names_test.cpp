#include "core/state/PathNames.h"

#include "core/state/FileTypes.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

TEST(PathNames, TheExtensionFollowsTheLastDotThatIsNotTheFirstCharacter) {
  EXPECT_EQ(pathExtension(u"/a/Song.MP3"_s), u"MP3"_s);
  EXPECT_EQ(pathExtension(u"/a/a.tar.mp3"_s), u"mp3"_s);
  EXPECT_EQ(pathExtension(u"/a/.mp3"_s), u""_s);
  EXPECT_EQ(pathExtension(u"/a.b/c"_s), u""_s);
  EXPECT_EQ(pathExtension(u"a."_s), u""_s);
  EXPECT_EQ(pathExtension(u"x.mp3 live"_s), u"mp3 live"_s);
  EXPECT_EQ(pathExtension(u""_s), u""_s);
}

TEST(PathNames, TheLastComponentIgnoresTrailingSlashes) {
  EXPECT_EQ(lastPathComponent(u"/a/b/"_s), u"b"_s);
  EXPECT_EQ(lastPathComponent(u"/"_s), u""_s);
  EXPECT_EQ(lastPathComponent(u""_s), u""_s);
  EXPECT_EQ(lastPathComponent(u"name"_s), u"name"_s);
  EXPECT_EQ(lastPathComponent(u"/a/b\\c.mp3"_s), u"b\\c.mp3"_s);
}

TEST(PathNames, APlainPathLeadsNowhereElse) {
  for (const QString &plain : {u"/a"_s, u"/a/b.jpg"_s, u"/a/..b/.c"_s}) {
    EXPECT_TRUE(isPlainPath(plain)) << plain.toStdString();
  }
  for (const QString &other : {u""_s, u"a/b"_s, u"/a/../b"_s, u"/a/./b"_s, u"/a//b"_s, u"/a/"_s, u"/.."_s, u"/"_s}) {
    EXPECT_FALSE(isPlainPath(other)) << other.toStdString();
  }
}

TEST(PathNames, NameWithoutExtensionAndBack) {
  EXPECT_EQ(nameWithoutExtension(u"/a/a.b.mp3"_s), u"a.b"_s);
  EXPECT_EQ(nameWithoutExtension(u"/a/.mp3"_s), u".mp3"_s);
  EXPECT_EQ(nameWithoutExtension(u"..."_s), u".."_s);
  EXPECT_EQ(withExtension(u"a"_s, u"mp3"_s), u"a.mp3"_s);
  EXPECT_EQ(withExtension(u"a"_s, u""_s), u"a"_s);
}

TEST(FileTypes, AreToldByTheExtensionIgnoringCase) {
  const auto expectAll = [](const QStringList &extensions, FileType type) {
    for (const QString &extension : extensions) {
      EXPECT_EQ(fileTypeOf(extension), type) << extension.toStdString();
      EXPECT_EQ(fileTypeOf(extension.toUpper()), type) << extension.toStdString();
    }
  };
  expectAll({u"mp3"_s, u"flac"_s, u"wma"_s, u"aac"_s, u"mp4"_s, u"wav"_s, u"m4a"_s}, FileType::Sound);
  expectAll({u"jpeg"_s, u"jpg"_s, u"gif"_s, u"tiff"_s, u"tif"_s, u"png"_s, u"bmp"_s, u"avi"_s, u"mpeg"_s, u"mpg"_s,
             u"m1v"_s, u"mpe"_s, u"asf"_s, u"wmv"_s},
            FileType::PhotoOrVideo);
  expectAll({u"webloc"_s, u"url"_s}, FileType::Bookmark);
  expectAll({u"ogg"_s, u"opus"_s, u"aiff"_s, u"m4p"_s, u"heic"_s, u"webp"_s, u"mov"_s, u"m4v"_s, u"mkv"_s,
             u"inetloc"_s, u"mp33"_s, u"mp"_s, u""_s},
            FileType::Invalid);
}

} // namespace sonorel
