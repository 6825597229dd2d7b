// The shipped property files and the help document against what the program expects of them.
#include "platform/linux/LibplistPropertyLists.h"
#include "support/Fixtures.h"

#include <QVariantMap>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

QVariantMap dictionaryOf(const QString &name) {
  LibplistPropertyLists lists;
  return lists.decode(shipped(name)).toMap();
}

} // namespace

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

TEST(ShippedHelp, CallsEveryControlByItsLabel) {
  const QString help = QString::fromUtf8(shipped(u"SonorelHelp.html"_s));
  const QVariantMap english = dictionaryOf(u"StringsEnglish"_s);
  for (const QString &key :
       {u"ConnectionTabText"_s, u"TransferTabText"_s, u"PreferTabText"_s, u"DetectedTableHeaderText"_s,
        u"AddedTableHeaderText"_s, u"SelectedTableHeaderText"_s, u"AddManualProductButtonText"_s,
        u"DeleteManualProductButtonText"_s, u"AddToMyProductsButtonText"_s, u"RemoveAProductButtonText"_s,
        u"RemoveAllProductsButtonText"_s, u"ConnectButtonText"_s, u"DisconnectButtonText"_s, u"CancelButtonText"_s,
        u"QuitMenuText"_s, u"ProductsLabelText"_s, u"iTunesQuitCloseText"_s}) {
    const QString label = english.value(key).toString();
    EXPECT_TRUE(help.contains(u"<em>"_s + label + u"</em>"_s)) << label.toStdString();
  }
}

TEST(ShippedHelp, IsWellFormedAndItsLinksLeadSomewhere) {
  QXmlStreamReader help(shipped(u"SonorelHelp.html"_s));
  QStringList links;
  QStringList targets;
  while (!help.atEnd()) {
    if (help.readNext() == QXmlStreamReader::StartElement) {
      if (help.attributes().hasAttribute(u"href"_s)) {
        links.append(help.attributes().value(u"href"_s).toString());
      }
      if (help.attributes().hasAttribute(u"id"_s)) {
        targets.append(u'#' + help.attributes().value(u"id"_s).toString());
      }
    }
  }
  EXPECT_FALSE(help.hasError()) << help.lineNumber() << ": " << help.errorString().toStdString();
  EXPECT_EQ(links, targets) << "the list of contents names every section, in order";
  EXPECT_EQ(targets.size(), 14);
}
