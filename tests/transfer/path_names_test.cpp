#include "transfer/PathNames.h"

#include "transfer/FileTypes.h"

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
  EXPECT_EQ(fileTypeOf(u"MP3"), FileType::Sound);
  EXPECT_EQ(fileTypeOf(u"m4a"), FileType::Sound);
  EXPECT_EQ(fileTypeOf(u"mp4"), FileType::Sound);
  EXPECT_EQ(fileTypeOf(u"WMV"), FileType::PhotoOrVideo);
  EXPECT_EQ(fileTypeOf(u"jpg"), FileType::PhotoOrVideo);
  EXPECT_EQ(fileTypeOf(u"webloc"), FileType::Bookmark);
  EXPECT_EQ(fileTypeOf(u"m4p"), FileType::Invalid);
  EXPECT_EQ(fileTypeOf(u""), FileType::Invalid);
}

} // namespace sonorel
