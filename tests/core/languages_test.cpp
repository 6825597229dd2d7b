#include "core/Languages.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

TEST(Languages, KnowsSevenSystemLanguages) {
  EXPECT_EQ(languageFileFor(u"da"_s), u"StringsDansk"_s);
  EXPECT_EQ(languageFileFor(u"fr-CA"_s), u"StringsFrancais"_s);
  EXPECT_EQ(languageFileFor(u"de_AT"_s), u"StringsDeutsch"_s);
  EXPECT_EQ(languageFileFor(u"es"_s), u"StringsEspanol"_s);
  EXPECT_EQ(languageFileFor(u"it-IT"_s), u"StringsItaliano"_s);
  EXPECT_EQ(languageFileFor(u"nl"_s), u"StringsNederlands"_s);
  EXPECT_EQ(languageFileFor(u"sv"_s), u"StringsSvenska"_s);
}

TEST(Languages, TakesEnglishForAllOthers) {
  for (const QString &language : {u"pt"_s, u"ja-JP"_s, u"en"_s, u"deu"_s, u"DE"_s, u""_s, u"-de"_s}) {
    EXPECT_EQ(languageFileFor(language), u"StringsEnglish"_s) << language.toStdString();
  }
}

TEST(Languages, StandInTheOrderOfThePopUp) {
  EXPECT_EQ(languageTitles(), QStringList({u"English"_s, u"Dansk"_s, u"Deutsch"_s, u"Svenska"_s, u"Espanol"_s,
                                           u"Francais"_s, u"Italiano"_s, u"Nederlands"_s, u"Japanese"_s, u"Korean"_s,
                                           u"Russian"_s, u"ChineseTraditional"_s, u"ChineseSimplified"_s}));
  EXPECT_EQ(languageFiles(),
            QStringList({u"StringsEnglish"_s, u"StringsDansk"_s, u"StringsDeutsch"_s, u"StringsSvenska"_s,
                         u"StringsEspanol"_s, u"StringsFrancais"_s, u"StringsItaliano"_s, u"StringsNederlands"_s,
                         u"StringsJapanese"_s, u"StringsKorean"_s, u"StringsRussian"_s,
                         u"StringsChineseTraditional"_s, u"StringsChineseSimplified"_s}));
}
