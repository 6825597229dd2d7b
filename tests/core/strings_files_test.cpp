// The strings files of all languages against the rules for their texts.
#include "core/Languages.h"
#include "platform/linux/LibplistPropertyLists.h"
#include "support/Fixtures.h"

#include <QVariantMap>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

// What is allowed in a text: "#" for the product's name, "*" for a file name; "must" where it has to be there.
const QStringList kProductAllowed{u"ErrorConnecting"_s,     u"ErrorDisconnect1"_s, u"ErrorQuit2"_s,
                                  u"AboutLabelText"_s,      u"Message2"_s,         u"Message9"_s,
                                  u"FavouritesNotWritten"_s};
const QStringList kFileNameMust{u"Message5"_s,  u"Message7"_s,  u"Message10"_s,
                                u"Message13"_s, u"Message14"_s, u"Message15"_s};
// A literal asterisk that is never replaced.
const auto kLiteralAsterisk = u"ManuallyAddedProductRepresentation"_s;
const QStringList kEndsWithBlank{u"VersionLabelText"_s, u"VersionLabelTooltipText"_s};
const QStringList kBeginsWithBlank{u"Message8"_s, u"Message9"_s};
const QStringList kHasLineFeed{u"ErrorConnect"_s, u"Message4"_s};

const QStringList kKeys{u"BtnOk"_s,
                        u"ExceptionText"_s,
                        u"ErrorInitializing"_s,
                        u"ErrorConnecting"_s,
                        u"ErrorConnect"_s,
                        u"AttentionText"_s,
                        u"ErrorIp"_s,
                        u"ErrorDisconnect1"_s,
                        u"ErrorDisconnect2"_s,
                        u"ErrorQuit1"_s,
                        u"ErrorQuit2"_s,
                        u"ErrorUnknown"_s,
                        u"ErrorHelp"_s,
                        u"ErrorDrag"_s,
                        u"ErrorProductList"_s,
                        u"AlertText"_s,
                        u"productAlreadyAddedMessageText"_s,
                        u"disconnectProductMessageText"_s,
                        u"NoText"_s,
                        u"YesText"_s,
                        u"iTunesQuitMessageText"_s,
                        u"iTunesQuitOpenText"_s,
                        u"iTunesQuitCloseText"_s,
                        u"AboutLabelText"_s,
                        u"VersionLabelText"_s,
                        u"VersionLabelTooltipText"_s,
                        u"HelpTooltipText"_s,
                        u"MenuText"_s,
                        u"CloseMenuText"_s,
                        u"TranferStatusLabelText"_s,
                        u"TransferMessagesLabel"_s,
                        u"CancelButtonText"_s,
                        u"CancelButtonTooltip"_s,
                        u"AboutTabText"_s,
                        u"TransferTabText"_s,
                        u"ConnectionTabText"_s,
                        u"PreferTabText"_s,
                        u"PreferencesLabelText"_s,
                        u"LangSelectText"_s,
                        u"DetectedTableHeaderText"_s,
                        u"AddedTableHeaderText"_s,
                        u"SelectedTableHeaderText"_s,
                        u"AddManualProductButtonText"_s,
                        u"ManuallyAddedProductRepresentation"_s,
                        u"DeleteManualProductButtonText"_s,
                        u"RemoveAProductButtonText"_s,
                        u"RemoveAllProductsButtonText"_s,
                        u"manualHostNameLabelText"_s,
                        u"manualIPAddressLabelText"_s,
                        u"PasswordLabel"_s,
                        u"enterPasswordPanelHeaderText"_s,
                        u"ProductsLabelText"_s,
                        u"checkMark"_s,
                        u"Message1"_s,
                        u"Message2"_s,
                        u"Message3"_s,
                        u"Message4"_s,
                        u"Message5"_s,
                        u"Message6"_s,
                        u"Message7"_s,
                        u"Message8"_s,
                        u"Message9"_s,
                        u"Message10"_s,
                        u"Message11"_s,
                        u"Message12"_s,
                        u"Message13"_s,
                        u"Message14"_s,
                        u"Message15"_s,
                        u"Message16"_s,
                        u"FavouritesNotWritten"_s,
                        u"ConnectButtonText"_s,
                        u"DisconnectButtonText"_s,
                        u"ConnectingText"_s,
                        u"WaitingForProductText"_s,
                        u"HelpButtonText"_s,
                        u"AddToMyProductsButtonText"_s,
                        u"QuitMenuText"_s};

QVariantMap dictionaryOf(const QString &name) {
  LibplistPropertyLists lists;
  return lists.decode(shipped(name)).toMap();
}

QStringList shippedStringsFiles() {
  QStringList names;
  for (const auto &entry : std::filesystem::directory_iterator(SONOREL_RESOURCES)) {
    const QString name = QString::fromStdString(entry.path().filename().string());
    if (name.startsWith(u"Strings"_s)) {
      names.append(name);
    }
  }
  names.sort();
  return names;
}

using Predicate = bool (*)(char16_t);

qsizetype textsWith(const QVariantMap &texts, Predicate matches) {
  return std::ranges::count_if(texts, [matches](const QVariant &text) {
    return std::ranges::any_of(text.toString(), [matches](QChar one) { return matches(one.unicode()); });
  });
}

bool isHan(char16_t unit) {
  return unit >= 0x4E00 && unit <= 0x9FFF;
}
bool isKana(char16_t unit) {
  return unit >= 0x3040 && unit <= 0x30FF;
}
bool isHangul(char16_t unit) {
  return unit >= 0xAC00 && unit <= 0xD7A3;
}
bool isCyrillic(char16_t unit) {
  return unit >= 0x0400 && unit <= 0x04FF;
}
// Everything that no Latin orthography writes.
bool isForeignToLatin(char16_t unit) {
  return unit >= 0x0250 && (unit < 0x2000 || unit > 0x206F) && unit != 0x2713;
}

class StringsFileTest : public testing::TestWithParam<QString> {
protected:
  QVariantMap texts = dictionaryOf(GetParam());
};

} // namespace

TEST(StringsFiles, AreThoseOfTheLanguagePopUp) {
  QStringList wanted = languageFiles();
  wanted.sort();
  EXPECT_EQ(shippedStringsFiles(), wanted);
}

TEST_P(StringsFileTest, HoldsEveryKeyAndNoOther) {
  QStringList found = texts.keys();
  QStringList wanted = kKeys;
  found.sort();
  wanted.sort();
  EXPECT_EQ(found, wanted);
}

TEST_P(StringsFileTest, HoldsNoEmptyText) {
  for (auto text = texts.begin(); text != texts.end(); ++text) {
    EXPECT_EQ(text->typeId(), QMetaType::QString) << text.key().toStdString();
    EXPECT_FALSE(text->toString().trimmed().isEmpty()) << text.key().toStdString();
  }
}

TEST_P(StringsFileTest, HoldsPlaceholdersOnlyWhereTheyAreReplaced) {
  for (auto text = texts.begin(); text != texts.end(); ++text) {
    const QString key = text.key();
    if (!kProductAllowed.contains(key)) {
      EXPECT_FALSE(text->toString().contains(u'#')) << key.toStdString();
    }
    if (key != kLiteralAsterisk) {
      EXPECT_EQ(text->toString().count(u'*'), kFileNameMust.contains(key) ? 1 : 0) << key.toStdString();
    }
  }
}

TEST_P(StringsFileTest, HoldsBlanksAndLineFeedsWhereTheProgramJoinsTexts) {
  for (auto text = texts.begin(); text != texts.end(); ++text) {
    const QString key = text.key();
    const QString value = text->toString();
    EXPECT_EQ(value.endsWith(u' '), kEndsWithBlank.contains(key)) << key.toStdString();
    EXPECT_EQ(value.startsWith(u' '), kBeginsWithBlank.contains(key)) << key.toStdString();
    EXPECT_EQ(value.count(u'\n'), kHasLineFeed.contains(key) ? 1 : 0) << key.toStdString();
  }
  EXPECT_TRUE(texts.value(u"Message4"_s).toString().endsWith(u'\n'));
  const QStringList parts = texts.value(u"ErrorConnect"_s).toString().split(u'\n');
  ASSERT_EQ(parts.size(), 2);
  EXPECT_FALSE(parts.at(0).isEmpty());
  EXPECT_FALSE(parts.at(1).isEmpty());
  EXPECT_EQ(texts.value(u"checkMark"_s).toString().size(), 1);
}

TEST_P(StringsFileTest, NamesTheProductWhereEnglishDoes) {
  const QVariantMap english = dictionaryOf(u"StringsEnglish"_s);
  for (auto text = texts.begin(); text != texts.end(); ++text) {
    const QString inEnglish = english.value(text.key()).toString();
    EXPECT_EQ(text->toString().count(u'#'), inEnglish.count(u'#')) << text.key().toStdString();
  }
}

TEST_P(StringsFileTest, IsCleanText) {
  for (auto text = texts.begin(); text != texts.end(); ++text) {
    const QString value = text->toString();
    EXPECT_EQ(value, value.normalized(QString::NormalizationForm_C)) << text.key().toStdString();
    EXPECT_FALSE(value.contains(u"  "_s)) << text.key().toStdString();
    EXPECT_FALSE(value.contains(u'"')) << "the program adds the marks around a name: " << text.key().toStdString();
    for (const QChar one : value) {
      EXPECT_TRUE(one == u'\n' || one.category() != QChar::Other_Control) << text.key().toStdString();
    }
  }
}

// What the texts call by its name must be what the window shows.
TEST_P(StringsFileTest, SendsTheUserToTheTabByItsLabel) {
  EXPECT_TRUE(texts.value(u"ErrorIp"_s).toString().contains(texts.value(u"ConnectionTabText"_s).toString()));
}

TEST_P(StringsFileTest, IsNoCopyOfAnotherLanguage) {
  for (const QString &other : languageFiles()) {
    if (other == GetParam()) {
      continue;
    }
    const QVariantMap others = dictionaryOf(other);
    qsizetype same = 0;
    for (auto text = texts.begin(); text != texts.end(); ++text) {
      same += text.value() == others.value(text.key()) ? 1 : 0;
    }
    // "OK", "Sonorel", the check mark and a few words that relatives share.
    EXPECT_LE(same, 12) << other.toStdString();
  }
}

INSTANTIATE_TEST_SUITE_P(Shipped, StringsFileTest, testing::ValuesIn(languageFiles()),
                         [](const auto &tested) { return tested.param.toStdString(); });

TEST(StringsFiles, AreWrittenInTheirScripts) {
  for (const QString &file :
       {u"StringsEnglish"_s, u"StringsDansk"_s, u"StringsDeutsch"_s, u"StringsSvenska"_s, u"StringsEspanol"_s,
        u"StringsFrancais"_s, u"StringsItaliano"_s, u"StringsNederlands"_s}) {
    EXPECT_EQ(textsWith(dictionaryOf(file), isForeignToLatin), 0) << file.toStdString();
  }
  // All texts but the program's name and the check mark.
  EXPECT_EQ(textsWith(dictionaryOf(u"StringsRussian"_s), isCyrillic), kKeys.size() - 2);
  EXPECT_EQ(textsWith(dictionaryOf(u"StringsKorean"_s), isHangul), kKeys.size() - 2);
  EXPECT_EQ(textsWith(dictionaryOf(u"StringsKorean"_s), isHan), 0);
  EXPECT_GE(textsWith(dictionaryOf(u"StringsJapanese"_s), isKana), 50);
  for (const QString &file : {u"StringsChineseTraditional"_s, u"StringsChineseSimplified"_s}) {
    EXPECT_EQ(textsWith(dictionaryOf(file), isHan), kKeys.size() - 2) << file.toStdString();
    EXPECT_EQ(textsWith(dictionaryOf(file), isKana), 0) << file.toStdString();
  }
}

// Two languages of their own, not one converted: each has its characters and its words.
TEST(ChineseStrings, KeepTheirOwnCharactersAndWords) {
  const QString traditional = QString::fromUtf8(shipped(u"StringsChineseTraditional"_s));
  const QString simplified = QString::fromUtf8(shipped(u"StringsChineseSimplified"_s));
  for (const QChar one : u"设备连断网络乐传输关请与视频书签项无这删单号码"_s) {
    EXPECT_FALSE(traditional.contains(one)) << QString(one).toStdString();
  }
  for (const QChar one : u"裝連斷網樂傳輸關請與檔項無這刪單號碼電腦"_s) {
    EXPECT_FALSE(simplified.contains(one)) << QString(one).toStdString();
  }
  for (const QString &word : {u"檔案"_s, u"網路"_s, u"資料夾"_s, u"播放清單"_s, u"影片"_s, u"程式"_s, u"位址"_s}) {
    EXPECT_TRUE(traditional.contains(word)) << word.toStdString();
  }
  for (const QString &word : {u"文件"_s, u"网络"_s, u"文件夹"_s, u"播放列表"_s, u"视频"_s, u"程序"_s, u"地址"_s}) {
    EXPECT_TRUE(simplified.contains(word)) << word.toStdString();
  }
}

TEST(EnglishStrings, HaveTheirWording) {
  const QVariantMap texts = dictionaryOf(u"StringsEnglish"_s);
  EXPECT_EQ(texts.value(u"ErrorConnect"_s), u"Could not connect to the product.\nCheck that it is switched on and on "
                                            u"the same network as this computer, and that its address is correct. "
                                            u"Then try again."_s);
  EXPECT_EQ(texts.value(u"Message4"_s), u"Cancelling the transfer. Please wait...\n"_s);
  EXPECT_EQ(texts.value(u"Message8"_s), u" was not transferred because it is a protected file."_s);
  EXPECT_EQ(texts.value(u"Message5"_s),
            u"* was not transferred because this kind of file or bookmark is not supported."_s);
  EXPECT_EQ(texts.value(u"checkMark"_s), u"\u2713"_s);
  EXPECT_EQ(texts.value(u"VersionLabelText"_s), u"Version "_s);
}
