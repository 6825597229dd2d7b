// The shipped files against the rules for their texts and values.
#include "platform/linux/LibplistPropertyLists.h"
#include "support/Fixtures.h"

#include <QVariantMap>

#include <gtest/gtest.h>

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
                        u"FavouritesNotWritten"_s};

QVariantMap dictionaryOf(const QString &name) {
  LibplistPropertyLists lists;
  return lists.decode(shipped(name)).toMap();
}

// Every strings file that is shipped.
QStringList stringsFiles() {
  QStringList names;
  for (const auto &entry : std::filesystem::directory_iterator(SONOREL_RESOURCES)) {
    const QString name = QString::fromStdString(entry.path().filename().string());
    if (name.startsWith(u"Strings"_s)) {
      names.append(name);
    }
  }
  return names;
}

class StringsFileTest : public testing::TestWithParam<QString> {
protected:
  QVariantMap texts = dictionaryOf(GetParam());
};

} // namespace

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

INSTANTIATE_TEST_SUITE_P(Shipped, StringsFileTest, testing::ValuesIn(stringsFiles()),
                         [](const auto &tested) { return tested.param.toStdString(); });

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

TEST(ShippedClientProperties, AreTheValuesOfTheInstallation) {
  const QVariantMap values = dictionaryOf(u"App Data/MacClientProperty"_s);
  const QVariantMap wanted{{u"Shared Folder"_s, u"VB-SHARE$"_s},     {u"Volume"_s, u"/Volumes/"_s},
                           {u"SystemFolder"_s, u"/System/"_s},       {u"MusicFolder"_s, u"/Music/"_s},
                           {u"PhotoFolder"_s, u"/Photo/"_s},         {u"VideoFolder"_s, u"/Video/"_s},
                           {u"FavoriteFolder"_s, u"/Favorites/"_s},  {u"MacFolder"_s, u"Mac/"_s},
                           {u"Username"_s, u"vaultbox"_s},           {u"FirstLaunch"_s, u"Yes"_s},
                           {u"AU5SupportsUnicode"_s, u"NO"_s},       {u"PlaylistID"_s, u"1"_s},
                           {u"LastLanguage"_s, u"StringsEnglish"_s}, {u"HelpFile"_s, u"SonorelHelp.html"_s}};
  for (auto value = wanted.begin(); value != wanted.end(); ++value) {
    EXPECT_EQ(values.value(value.key()), value.value()) << value.key().toStdString();
  }
  EXPECT_EQ(values.value(u"SpaceNumber"_s), 0LL);
  QList<QByteArray> guids;
  for (const QString &colour : {u"Red"_s, u"Green"_s, u"Yellow"_s, u"Blue"_s}) {
    const QByteArray guid = values.value(u"CFLGUID"_s + colour).toByteArray();
    EXPECT_EQ(guid.size(), 16) << colour.toStdString();
    EXPECT_FALSE(guids.contains(guid)) << colour.toStdString();
    guids.append(guid);
  }
  EXPECT_EQ(values.size(), wanted.size() + 5) << "and nothing that belongs to one client alone";
}

TEST(ShippedAgentProperties, NameNoProduct) {
  EXPECT_EQ(dictionaryOf(u"App Data/DropperPropertyListFile"_s), QVariantMap({{u"DeviceConnected"_s, QString()}}));
}

TEST(ShippedHelp, IsTheDocumentThatThePropertiesName) {
  const QString name = dictionaryOf(u"App Data/MacClientProperty"_s).value(u"HelpFile"_s).toString();
  const QByteArray help = shipped(name);
  EXPECT_TRUE(help.contains("<h1>Sonorel Help</h1>"));
  EXPECT_TRUE(help.contains("<code>vaultbox</code>")) << "the user name that can be changed is told";
}
