// The shipped property files and the help document against what the program expects of them.
#include "platform/linux/LibplistPropertyLists.h"
#include "support/Fixtures.h"

#include <QVariantMap>

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
