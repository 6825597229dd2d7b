#include "core/state/Strings.h"

#include "platform/linux/LibplistPropertyLists.h"
#include "support/FakeFileSystem.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using sonorel::test::FakeFileSystem;

namespace {

class StringsTest : public testing::Test {
protected:
  const QString folder = u"/Resources/"_s;
  FakeFileSystem files;
  LibplistPropertyLists lists;
  Strings strings{files, lists, folder};

  void table(const QString &language, const QVariantMap &texts, qint64 time = 1000) {
    files.put(folder + language, lists.encodeXml(texts), time);
  }
};

} // namespace

TEST_F(StringsTest, ShowsTheKeyWhenNothingIsLoaded) {
  EXPECT_EQ(strings.text(u"BtnOk"_s), u"BtnOk"_s);
  EXPECT_FALSE(strings.contains(u"BtnOk"_s));
  EXPECT_EQ(strings.languageFile(), QString());
}

TEST_F(StringsTest, ReadsTheLanguageAtTheNextReload) {
  table(u"StringsEnglish"_s, {{u"YesText"_s, u"Yes"_s}});
  table(u"StringsKorean"_s, {{u"YesText"_s, u"예"_s}});
  strings.setLanguageFile(u"StringsEnglish"_s);
  EXPECT_EQ(strings.text(u"YesText"_s), u"YesText"_s);
  strings.reload();
  EXPECT_EQ(strings.text(u"YesText"_s), u"Yes"_s);
  strings.setLanguageFile(u"StringsKorean"_s);
  EXPECT_EQ(strings.languageFile(), u"StringsKorean"_s);
  EXPECT_EQ(strings.text(u"YesText"_s), u"Yes"_s);
  strings.reload();
  EXPECT_EQ(strings.text(u"YesText"_s), u"예"_s);
}

TEST_F(StringsTest, MissingOrDamagedFileGivesAnEmptyTable) {
  table(u"StringsEnglish"_s, {{u"YesText"_s, u"Yes"_s}});
  strings.setLanguageFile(u"StringsEnglish"_s);
  strings.reload();
  files.put(folder + u"StringsEnglish"_s, "<plist><dict>", 1001);
  strings.reload();
  EXPECT_EQ(strings.text(u"YesText"_s), u"YesText"_s);
  files.erase(folder + u"StringsEnglish"_s);
  strings.reload();
  EXPECT_FALSE(strings.contains(u"YesText"_s));
  table(u"StringsEnglish"_s, {{u"YesText"_s, u"Yes"_s}});
  strings.reload();
  EXPECT_EQ(strings.text(u"YesText"_s), u"Yes"_s);
}

TEST_F(StringsTest, ListThatIsNoDictionaryGivesAnEmptyTable) {
  files.put(folder + u"StringsEnglish"_s, lists.encodeXml(QVariantList{u"BtnOk"_s}));
  strings.setLanguageFile(u"StringsEnglish"_s);
  strings.reload();
  EXPECT_FALSE(strings.contains(u"BtnOk"_s));
}

TEST_F(StringsTest, EntryThatIsNoTextShowsItsKey) {
  table(u"StringsEnglish"_s, {{u"YesText"_s, 1LL}, {u"NoText"_s, u"No"_s}});
  strings.setLanguageFile(u"StringsEnglish"_s);
  strings.reload();
  EXPECT_EQ(strings.text(u"YesText"_s), u"YesText"_s);
  EXPECT_EQ(strings.text(u"NoText"_s), u"No"_s);
}

TEST_F(StringsTest, ReadsAnUnchangedFileOnlyOnce) {
  table(u"StringsEnglish"_s, {{u"YesText"_s, u"Yes"_s}});
  strings.setLanguageFile(u"StringsEnglish"_s);
  for (int i = 0; i < 10; ++i) {
    strings.reload();
  }
  EXPECT_EQ(files.log().filter(u"read "_s).size(), 1);
  EXPECT_EQ(strings.text(u"YesText"_s), u"Yes"_s);
}

TEST_F(StringsTest, NoticesAChangeOfTimeSizeOrIdentity) {
  table(u"StringsEnglish"_s, {{u"YesText"_s, u"Yes"_s}});
  strings.setLanguageFile(u"StringsEnglish"_s);
  strings.reload();
  table(u"StringsEnglish"_s, {{u"YesText"_s, u"Yea"_s}}, 1001);
  strings.reload();
  EXPECT_EQ(strings.text(u"YesText"_s), u"Yea"_s);
  table(u"StringsEnglish"_s, {{u"YesText"_s, u"Yes, please"_s}}, 1001);
  strings.reload();
  EXPECT_EQ(strings.text(u"YesText"_s), u"Yes, please"_s);
  files.erase(folder + u"StringsEnglish"_s);
  table(u"StringsEnglish"_s, {{u"YesText"_s, u"YES, PLEASE"_s}}, 1001);
  strings.reload();
  EXPECT_EQ(strings.text(u"YesText"_s), u"YES, PLEASE"_s);
}

TEST_F(StringsTest, TextOfAnotherLanguageLeavesTheCurrentOne) {
  table(u"StringsEnglish"_s, {{u"ErrorConnect"_s, u"No.\nTry again."_s}});
  table(u"StringsDansk"_s, {{u"ErrorConnect"_s, u"Nej"_s}});
  strings.setLanguageFile(u"StringsDansk"_s);
  strings.reload();
  EXPECT_EQ(strings.textIn(u"StringsEnglish"_s, u"ErrorConnect"_s), u"No.\nTry again."_s);
  EXPECT_EQ(strings.textIn(u"StringsEnglish"_s, u"NoSuchKey"_s), QString());
  EXPECT_EQ(strings.textIn(u"StringsFinnish"_s, u"ErrorConnect"_s), QString());
  EXPECT_EQ(strings.text(u"ErrorConnect"_s), u"Nej"_s);
}

TEST(Placeholders, EveryHashBecomesTheProductsName) {
  EXPECT_EQ(withProductName(u"# and # again: *"_s, u"Auracore 5"_s), u"Auracore 5 and Auracore 5 again: *"_s);
  EXPECT_EQ(withProductName(u"#"_s, u"a#b"_s), u"a#b"_s);
  EXPECT_EQ(withProductName(u"on #."_s, QString()), u"on ."_s);
}

TEST(Placeholders, EveryStarBecomesTheQuotedName) {
  EXPECT_EQ(withFileName(u"* was not copied (*) to #"_s, u"a.mp3"_s), u"\"a.mp3\" was not copied (\"a.mp3\") to #"_s);
  EXPECT_EQ(withFileName(u"*!"_s, u"a*b#.mp3"_s), u"\"a*b#.mp3\"!"_s);
}
