#include "ScriptFolder.h"
#include "support/Printers.h"

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

QByteArray xmlBookmark(const QByteArray &address) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "<plist version=\"1.0\">\n<dict>\n\t<key>URL</key>\n\t<string>" +
         address + "</string>\n</dict>\n</plist>\n";
}

class ConvertWebloc : public testing::Test {
protected:
  ScriptFolder files;

  [[nodiscard]] Ended convert(const QString &name) const {
    return ScriptFolder::run(QStringLiteral(SONOREL_BUILT_CONVERTER), {files.path(name)});
  }
  void refuses(const QByteArray &bytes) const {
    files.put(u"d/x.webloc"_s, bytes);
    const Ended ended = convert(u"d/x.webloc"_s);
    EXPECT_EQ(ended.status, 1) << bytes.left(60).toStdString();
    EXPECT_FALSE(ended.said.isEmpty());
    EXPECT_EQ(files.filesIn(u"d"_s), QStringList{u"x.webloc"_s});
  }
};

} // namespace

TEST_F(ConvertWebloc, TheXmlFormBecomesAUrlFile) {
  files.put(u"d/Über \"uns\". v1.webloc"_s, xmlBookmark("https://example.org/?a=1&amp;b=%20ü"));
  const Ended ended = convert(u"d/Über \"uns\". v1.webloc"_s);
  ASSERT_EQ(ended.status, 0) << ended.said.toStdString();
  EXPECT_EQ(files.bytes(u"d/Über \"uns\". v1.url"_s),
            QByteArray("[InternetShortcut]\nURL=https://example.org/?a=1&b=%20ü"));
  EXPECT_EQ(files.filesIn(u"d"_s).size(), 2);
}

TEST_F(ConvertWebloc, TheBinaryFormBecomesAUrlFile) {
  files.put(u"d/x.webloc"_s,
            "bplist00" + QByteArray::fromHex("d10102"   // a dictionary of one entry
                                             "5355524c" // "URL"
                                             "5f1013"
                                             "68747470733a2f2f6578616d706c652e6f7267"
                                             "080b0f" // where the objects stand
                                             "0000000000000101"
                                             "0000000000000003"
                                             "0000000000000000"
                                             "0000000000000025"));
  const Ended ended = convert(u"d/x.webloc"_s);
  ASSERT_EQ(ended.status, 0) << ended.said.toStdString();
  EXPECT_EQ(files.bytes(u"d/x.url"_s), QByteArray("[InternetShortcut]\nURL=https://example.org"));
}

TEST_F(ConvertWebloc, NoExtensionAndALineFeedInTheName) {
  files.put(u"d/two\nlines"_s, xmlBookmark("http://a/"));
  ASSERT_EQ(convert(u"d/two\nlines"_s).status, 0);
  EXPECT_EQ(files.bytes(u"d/two\nlines.url"_s), QByteArray("[InternetShortcut]\nURL=http://a/"));
}

TEST_F(ConvertWebloc, WhatIsNoBookmarkIsRefused) {
  for (const QByteArray &bytes :
       {QByteArray(), QByteArray("http://example.org"), QByteArray("bplist00"), xmlBookmark(""), xmlBookmark(" \n "),
        xmlBookmark("http://a/\nURL=http://b/"), xmlBookmark("http://a/").chopped(9),
        QByteArray("<plist version=\"1.0\"><dict><key>URL</key><integer>5</integer></dict></plist>"),
        QByteArray("<plist version=\"1.0\"><array><string>URL</string></array></plist>"),
        QByteArray("<plist version=\"1.0\">") + QByteArray("<array>").repeated(200'000)}) {
    refuses(bytes);
  }
}

TEST_F(ConvertWebloc, AnAddressOfAMegabyteIsKeptWhole) {
  const QByteArray address = "http://a/" + QByteArray(1024 * 1024, 'x');
  files.put(u"d/x.webloc"_s, xmlBookmark(address));
  ASSERT_EQ(convert(u"d/x.webloc"_s).status, 0);
  EXPECT_EQ(files.bytes(u"d/x.url"_s), "[InternetShortcut]\nURL=" + address);
}

TEST_F(ConvertWebloc, FilesOfOtherKindsAndSizesAreRefused) {
  QFile large(files.put(u"d/large.webloc"_s, xmlBookmark("http://a/")));
  ASSERT_TRUE(large.resize(2LL * 1024 * 1024 * 1024));
  EXPECT_EQ(convert(u"d/large.webloc"_s).status, 1);
  ASSERT_EQ(::mkfifo(files.path(u"d/fifo.webloc"_s).toUtf8().constData(), 0600), 0);
  EXPECT_EQ(convert(u"d/fifo.webloc"_s).status, 1);
  files.makeFolder(u"d/folder.webloc"_s);
  EXPECT_EQ(convert(u"d/folder.webloc"_s).status, 1);
  EXPECT_EQ(convert(u"d/none.webloc"_s).status, 1);
  EXPECT_EQ(ScriptFolder::run(QStringLiteral(SONOREL_BUILT_CONVERTER), {}).status, 2);
}

TEST_F(ConvertWebloc, AKilledRunLeavesNothing) {
  files.put(u"d/x.webloc"_s, xmlBookmark("http://a/"));
  EXPECT_EQ(
      ScriptFolder::runAndKill(10, QStringLiteral(SONOREL_BUILT_CONVERTER), {files.path(u"d/x.webloc"_s)}).status,
      -1);
  EXPECT_EQ(files.filesIn(u"d"_s), QStringList{u"x.webloc"_s});
}

TEST_F(ConvertWebloc, AUrlFileThatIsThereIsLeftAlone) {
  files.put(u"d/x.webloc"_s, xmlBookmark("http://a/"));
  files.put(u"d/x.url"_s, "mine");
  EXPECT_EQ(convert(u"d/x.webloc"_s).status, 1);
  EXPECT_EQ(files.bytes(u"d/x.url"_s), QByteArray("mine"));
  EXPECT_EQ(files.filesIn(u"d"_s).size(), 2);
}

} // namespace sonorel::test
