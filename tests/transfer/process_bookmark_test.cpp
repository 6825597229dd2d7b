#include "transfer/ProcessBookmark.h"

#include "support/FakeDesktop.h"
#include "support/FakeFileSystem.h"
#include "support/FakeScripts.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kTemporary = u"/private/tmp/Bookmark"_s;

class ProcessBookmarkTest : public testing::Test {
protected:
  ProcessBookmarkTest() {
    files.makeFolders(u"/private/tmp"_s);
    files.put(u"/m/Page.webloc"_s, "<plist/>");
    scripts.onConvert = [this](const QString &path) -> std::optional<QString> {
      files.put(path.chopped(7) + u".url"_s, "[InternetShortcut]\nURL=http://x/");
      return std::nullopt;
    };
  }
  // The converter cannot write into that folder.
  void readOnly(const QString &folder) {
    const auto write = scripts.onConvert;
    scripts.onConvert = [write, folder](const QString &path) -> std::optional<QString> {
      return path.startsWith(folder) ? std::optional(u"read-only"_s) : write(path);
    };
  }

  FakeFileSystem files;
  FakeScripts scripts;
  FakeDesktop desktop;
  ProcessBookmark bookmark{files, scripts, desktop};
};

} // namespace

TEST(BookmarkScript, RunsTheConverterInAShell) {
  EXPECT_EQ(bookmarkScript(u"/R/ConvertWeblocToURL.sh"_s, u"/m/My Page.webloc"_s),
            u"set x to do shell script \"sh \\\"/R/ConvertWeblocToURL.sh\\\" \\\"/m/My Page.webloc\\\"\""_s);
}

TEST(BookmarkScript, APathCannotLeaveTheLiteral) {
  EXPECT_EQ(bookmarkScript(u"/c"_s, u"/a\"b\\c"_s),
            u"set x to do shell script \"sh \\\"/c\\\" \\\"/a\\\"b\\\\c\\\"\""_s);
}

TEST_F(ProcessBookmarkTest, MakesTheUrlFileBesideTheBookmark) {
  EXPECT_EQ(bookmark.processBookmark(u"/m/Page.webloc"_s), u"/m/Page.url"_s);
  EXPECT_EQ(scripts.converted, QStringList{u"/m/Page.webloc"_s});
  EXPECT_TRUE(desktop.lines.isEmpty());
}

TEST_F(ProcessBookmarkTest, UsesATemporaryFolderWhenItCannotWriteBeside) {
  readOnly(u"/m/"_s);
  EXPECT_EQ(bookmark.processBookmark(u"/m/Page.webloc"_s), kTemporary + u"/Page.url"_s);
  EXPECT_EQ(files.mode(kTemporary), 0700U);
  bookmark.clear();
  EXPECT_FALSE(files.exists(kTemporary));
  EXPECT_EQ(files.bytes(u"/m/Page.webloc"_s), QByteArray("<plist/>"));
  EXPECT_TRUE(desktop.lines.isEmpty());
}

TEST_F(ProcessBookmarkTest, ANameThatTheUserHasTakenIsLeftAlone) {
  files.put(u"/m/Page.url"_s, "mine");
  EXPECT_EQ(bookmark.processBookmark(u"/m/Page.webloc"_s), kTemporary + u"/Page.url"_s);
  EXPECT_EQ(files.bytes(u"/m/Page.url"_s), QByteArray("mine"));
  EXPECT_EQ(scripts.converted, QStringList{kTemporary + u"/Page.webloc"_s});
}

TEST_F(ProcessBookmarkTest, WhatAnEarlierClientLeftInTheTemporaryFolderGoes) {
  files.put(kTemporary + u"/Page.url"_s, "old");
  readOnly(u"/m/"_s);
  EXPECT_EQ(bookmark.processBookmark(u"/m/Page.webloc"_s), kTemporary + u"/Page.url"_s);
  EXPECT_EQ(files.bytes(kTemporary + u"/Page.url"_s), QByteArray("[InternetShortcut]\nURL=http://x/"));
}

TEST_F(ProcessBookmarkTest, ABookmarkWithoutAnAddressIsLoggedAndLeavesNothing) {
  scripts.onConvert = [this](const QString &path) -> std::optional<QString> {
    files.put(path.chopped(7) + u".url"_s, "half");
    return u"no property list"_s;
  };
  EXPECT_EQ(bookmark.processBookmark(u"/m/Page.webloc"_s), std::nullopt);
  EXPECT_EQ(desktop.lines, QStringList{u"Bookmark convertion AppleScript failed: no property list"_s});
  EXPECT_FALSE(files.exists(u"/m/Page.url"_s));
  EXPECT_FALSE(files.exists(kTemporary));
}

TEST_F(ProcessBookmarkTest, AConverterThatMakesNothingIsLogged) {
  scripts.onConvert = [](const QString &) { return std::nullopt; };
  EXPECT_EQ(bookmark.processBookmark(u"/m/Page.webloc"_s), std::nullopt);
  EXPECT_EQ(desktop.lines, QStringList{u"Bookmark convertion AppleScript has no result."_s});
}

TEST_F(ProcessBookmarkTest, WhatIsNoBookmarkFileIsNotOpened) {
  files.makeFolders(u"/m/folder.webloc"_s);
  files.putOther(u"/m/pipe.webloc"_s);
  files.put(u"/m/big.webloc"_s, QByteArray(16 * 1024 * 1024 + 1, 'x'));
  for (const QString &name : {u"folder"_s, u"pipe"_s, u"big"_s, u"none"_s}) {
    const QString path = u"/m/"_s + name + u".webloc"_s;
    EXPECT_EQ(bookmark.processBookmark(path), std::nullopt);
    EXPECT_EQ(desktop.lines.last(), u"Bookmark convertion AppleScript failed: no bookmark file: "_s + path);
  }
  EXPECT_TRUE(scripts.converted.isEmpty());
}

} // namespace sonorel::test
