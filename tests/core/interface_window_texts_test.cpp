#include "ConnectFixture.h"
#include "core/Labels.h"
#include "core/Languages.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const auto kServerFile = u"/Volumes/VB-SHARE$/System/PhotoFavorites.orv"_s;

class WindowTextsTest : public ConnectTest {
protected:
  WindowTextsTest() { settings.set(u"ProductName"_s, u"Auralis 5"_s); }
  void putStrings(const QString &file, const QVariantMap &values) {
    fakes.putDictionary(resourceFolder() + file, values);
  }
  QString label(const QString &key) { return shown().labels.value(key); }
  void putResource() { fakes.files.put(resourceFolder() + u"PhotoFavorites.orv"_s, "empty list"); }
};

} // namespace

TEST_F(WindowTextsTest, RelabelsTheWindow) {
  texts.updateDeviceName();
  fakes.loop.runPosted();
  EXPECT_EQ(shown().deviceName, u"Auralis 5"_s);
  EXPECT_EQ(session.deviceName(), u"Auralis 5"_s);
  EXPECT_EQ(shown().languageFile, u"StringsEnglish"_s);
  EXPECT_EQ(label(u"AboutLabelText"_s).section(u": "_s, 1), u"Auralis 5"_s);
  EXPECT_EQ(label(u"VersionLabelText"_s), u"Version 1.24.04"_s);
  EXPECT_EQ(label(u"VersionLabelTooltipText"_s), u"Full version number: 1.24.04.0000"_s);
  EXPECT_EQ(label(u"TranferStatusLabelText"_s), u"Transfer status:"_s);
  EXPECT_EQ(label(u"ManuallyAddedProductRepresentation"_s), u"* Added by hand"_s);
  EXPECT_EQ(label(u"manualIPAddressLabelText"_s), u"IP address:"_s);
  EXPECT_EQ(label(u"ProductsLabelText"_s), u"Products"_s);
  EXPECT_EQ(label(u"ConnectButtonText"_s), u"Connect"_s);
  EXPECT_EQ(label(u"QuitMenuText"_s), u"Quit"_s);
  EXPECT_EQ(shown().labels.size(), 36);
}

TEST_F(WindowTextsTest, EveryLabelHasItsText) {
  texts.updateDeviceName();
  fakes.loop.runPosted();
  for (const QString &key : {u"AboutLabelText"_s, u"VersionLabelText"_s, u"VersionLabelTooltipText"_s}) {
    EXPECT_TRUE(strings.contains(key)) << key.toStdString();
    EXPECT_FALSE(label(key).isEmpty()) << key.toStdString();
  }
  for (const QString &key : {u"HelpTooltipText"_s,
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
                             u"BtnOk"_s,
                             u"PasswordLabel"_s,
                             u"enterPasswordPanelHeaderText"_s,
                             u"ProductsLabelText"_s,
                             u"ConnectButtonText"_s,
                             u"DisconnectButtonText"_s,
                             u"ConnectingText"_s,
                             u"HelpButtonText"_s,
                             u"AddToMyProductsButtonText"_s,
                             u"QuitMenuText"_s}) {
    EXPECT_TRUE(strings.contains(key)) << key.toStdString();
    EXPECT_EQ(label(key), strings.text(key)) << key.toStdString();
  }
}

TEST_F(WindowTextsTest, ProductNameStandsAtEveryMark) {
  putStrings(u"StringsEnglish"_s, {{u"AboutLabelText"_s, u"# and #"_s}});
  texts.updateDeviceName();
  fakes.loop.runPosted();
  EXPECT_EQ(label(u"AboutLabelText"_s), u"Auralis 5 and Auralis 5"_s);
  EXPECT_EQ(label(u"PasswordLabel"_s), u"PasswordLabel"_s) << "a missing key shows itself";
}

TEST_F(WindowTextsTest, ChosenLanguageRelabelsAtOnceAndIsNotSaved) {
  putStrings(u"StringsKorean"_s, {{u"PreferTabText"_s, u"\uD658\uACBD\uC124\uC815"_s}});
  const QByteArray before = fakes.files.bytes(fakes.paths.PFPath);
  texts.langSelect(9);
  fakes.loop.runPosted();
  EXPECT_EQ(label(u"PreferTabText"_s), u"\uD658\uACBD\uC124\uC815"_s);
  EXPECT_EQ(shown().languageFile, u"StringsKorean"_s);
  EXPECT_EQ(fakes.files.bytes(fakes.paths.PFPath), before);
  EXPECT_FALSE(fakes.files.exists(fakes.paths.preferences));
}

TEST_F(WindowTextsTest, InvalidSelectionKeepsTheLanguageAndRelabels) {
  for (const int index : {-1, 13}) {
    texts.langSelect(index);
    fakes.loop.runPosted();
    EXPECT_EQ(strings.languageFile(), u"StringsEnglish"_s);
    EXPECT_EQ(label(u"PreferTabText"_s), u"Preferences"_s);
  }
}

TEST_F(WindowTextsTest, DisabledPopUpChoosesNothing) {
  interface.setLanguageEnabled(false);
  fakes.loop.runPosted();
  texts.langSelect(9);
  EXPECT_EQ(strings.languageFile(), u"StringsEnglish"_s);
}

TEST_F(WindowTextsTest, GivesThePlayerAnEmptyListOfPhotoFavourites) {
  putResource();
  mountShare(fakes.files);
  texts.updateDeviceName();
  EXPECT_EQ(fakes.files.bytes(kServerFile), QByteArray("empty list"));
  fakes.files.put(kServerFile, {});
  texts.updateDeviceName();
  EXPECT_EQ(fakes.files.bytes(kServerFile), QByteArray("empty list"));
  fakes.files.put(kServerFile, "the user's photos");
  texts.updateDeviceName();
  EXPECT_EQ(fakes.files.bytes(kServerFile), QByteArray("the user's photos"));
}

TEST_F(WindowTextsTest, PhotoFavouritesWhoseRewriteWasInterruptedAreWrittenAndNoEmptyList) {
  putResource();
  mountShare(fakes.files);
  fakes.files.put(kServerFile, "old photos");
  fakes.files.beforeOperation = [this](int) {
    if (fakes.files.log().contains(u"removeFile "_s + kServerFile)) {
      fakes.files.setUnknown(point, true);
    }
  };
  {
    FavouritesRewrite::Turn turn = rewrite.begin(FavouritesKind::Photos);
    EXPECT_THROW(static_cast<void>(turn.replace(turn.look(), "new photos")), Failure);
  }
  fakes.files.beforeOperation = nullptr;
  fakes.files.setUnknown(point, false);
  ASSERT_FALSE(fakes.files.exists(kServerFile));
  texts.updateDeviceName();
  EXPECT_EQ(fakes.files.bytes(kServerFile), QByteArray("new photos"));
}

TEST_F(WindowTextsTest, MediaServerKeepsItsOwnPhotoFavourites) {
  putResource();
  mountShare(fakes.files);
  settings.set(u"ProductName"_s, u"Vaultbox 1"_s);
  texts.updateDeviceName();
  EXPECT_FALSE(fakes.files.exists(kServerFile));
}

TEST_F(WindowTextsTest, NothingIsWrittenWhereNoShareIsMounted) {
  putResource();
  fakes.files.makeFolders(u"/Volumes/VB-SHARE$/System"_s);
  texts.updateDeviceName();
  EXPECT_FALSE(fakes.files.exists(kServerFile));
}

TEST_F(WindowTextsTest, ShareThatDoesNotAnswerIsLeftAloneAndTheWindowRelabelled) {
  putResource();
  mountShare(fakes.files);
  fakes.files.setUnknown(point, true);
  texts.updateDeviceName();
  fakes.loop.runPosted();
  EXPECT_EQ(fakes.files.stored(kServerFile), std::nullopt);
  EXPECT_EQ(label(u"PreferTabText"_s), u"Preferences"_s);
}

TEST_F(WindowTextsTest, OpensTheHelpDocument) {
  fakes.files.put(resourceFolder() + u"SonorelHelp.html"_s, "<html>");
  texts.onHelp();
  EXPECT_EQ(fakes.desktop.opened, QStringList({resourceFolder() + u"SonorelHelp.html"_s}));
  EXPECT_EQ(questions(), QStringList());
}

TEST_F(WindowTextsTest, HelpThatCannotBeOpenedGivesAnAlert) {
  const QString alert = u"Something went wrong|The help document could not be opened."_s;
  fakes.files.erase(resourceFolder() + u"SonorelHelp.html"_s);
  texts.onHelp();
  EXPECT_EQ(questions(), QStringList({alert}));
  EXPECT_EQ(fakes.desktop.opened, QStringList());
  EXPECT_TRUE(fakes.desktop.logged(u"Exception in ---> <AppController><onHelp> "_s));
  fakes.files.put(resourceFolder() + u"SonorelHelp.html"_s, "<html>");
  fakes.desktop.opens = false;
  texts.onHelp();
  EXPECT_EQ(questions(), QStringList({alert, alert}));
}

TEST_F(WindowTextsTest, AlertOfTwoPartsIsSplitAndLogged) {
  putStrings(u"StringsDansk"_s, {{u"ErrorConnect"_s, u"en\nto"_s}});
  strings.setLanguageFile(u"StringsDansk"_s);
  strings.reload();
  const AlertTexts found = texts.errorConnect();
  EXPECT_EQ(found.message, u"en"_s);
  EXPECT_EQ(found.informativeText, u"to"_s);
  EXPECT_EQ(fakes.desktop.lines, QStringList({u"Message:\n==en=="_s, u"Information:\n==to=="_s}));
}

TEST_F(WindowTextsTest, AlertWithoutTwoPartsFallsBackToEnglish) {
  for (const QString &text : {u"one part"_s, u"three\nparts\nhere"_s}) {
    fakes.desktop.lines.clear();
    putStrings(u"StringsDansk"_s, {{u"ErrorConnect"_s, text}});
    strings.setLanguageFile(u"StringsDansk"_s);
    texts.updateDeviceName();
    EXPECT_EQ(texts.errorConnect().message, u"Could not connect to the product."_s);
    ASSERT_EQ(fakes.desktop.lines.size(), 2);
    EXPECT_EQ(fakes.desktop.lines.at(0), u"Default Message:\n==Could not connect to the product.=="_s);
    EXPECT_TRUE(fakes.desktop.lines.at(1).startsWith(u"Default Information:\n==Check that it is "_s));
  }
}

TEST_F(WindowTextsTest, AlertStaysEmptyWithoutAnyTexts) {
  fakes.files.erase(resourceFolder() + u"StringsEnglish"_s);
  texts.updateDeviceName();
  EXPECT_EQ(texts.errorConnect().message, QString());
  EXPECT_EQ(texts.errorConnect().informativeText, QString());
  EXPECT_EQ(fakes.desktop.lines, QStringList());
}
