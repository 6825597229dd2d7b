#include "favourites/ProductVersion.h"

#include "FavouritesWorkbench.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

TEST(ProductVersion, TheVersionBehindTheFirstLineBreakDecides) {
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5\n5.03.00.2387"), u"YES"_s);
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5\n5.03.00.2386"), u"NO"_s);
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5\n5.03.00.2388\nmore"), u"YES"_s);
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5\n4.99.99.9999"), u"NO"_s);
}

TEST(ProductVersion, VersionsAreComparedByCharacters) {
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5\n5.10.00.0001"), u"YES"_s);
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5\n5.1.00.00000"), u"YES"_s);
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5\n10.0.00.00000"), u"NO"_s);
}

TEST(ProductVersion, EveryKindOfLineBreakCounts) {
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5\r\n5.03.00.2387"), u"YES"_s);
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5\r5.03.00.2387"), u"YES"_s);
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5\n\r5.03.00.2387"), u"NO"_s);
}

TEST(ProductVersion, TooShortOrUnreadableIsNo) {
  EXPECT_EQ(utf8AnswerOfProductName(""), u"NO"_s);
  EXPECT_EQ(utf8AnswerOfProductName("\n5.03.00.238"), u"NO"_s);
  EXPECT_EQ(utf8AnswerOfProductName("\n5.03.00.2387"), u"YES"_s); // 13 characters
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5\n5.03.00.238"), u"NO"_s);
  EXPECT_EQ(utf8AnswerOfProductName("Auralis 5 5.03.00.2387"), u"NO"_s);
  EXPECT_EQ(utf8AnswerOfProductName("Auralis \xFF\n5.03.00.2387"), u"NO"_s);
}

TEST(ProductVersion, AByteOrderMarkDoesNotMatter) {
  EXPECT_EQ(utf8AnswerOfProductName("\xEF\xBB\xBF"
                                    "Auralis 5\n5.03.00.2387"),
            u"YES"_s);
  EXPECT_EQ(utf8AnswerOfProductName("\xEF\xBB\xBF\n5.03.00.238"), u"NO"_s);
}

namespace {

struct Product {
  explicit Product(const QString &name)
      : client(files, name), version(files, client.desktop, client.settings, client.session, standardFolders()) {
    mountShare(files, name);
  }
  void put(const QByteArray &text) { files.put(u"/Volumes/VB-SHARE$/System/OrvProductName.orv"_s, text); }

  FakeFileSystem files;
  FavouritesWorkbench client;
  ProductVersion version;
};

} // namespace

TEST(CheckAU5SoftwareVersion, AsksOnlyAnAuralis5AndStoresTheAnswer) {
  Product auralis(u"Auralis 5"_s);
  auralis.put("Auralis 5\n5.03.00.2387");
  EXPECT_EQ(auralis.version.checkAU5SoftwareVersion(), u"YES"_s);
  EXPECT_EQ(auralis.client.settings.text(u"AU5SupportsUnicode"_s), u"YES"_s);
  EXPECT_TRUE(auralis.files.bytes(u"/Client/MacClientProperty"_s).contains("<key>AU5SupportsUnicode</key>"));

  Product auracore(u"Auracore 5"_s);
  auracore.put("Auracore 5\n5.03.00.2387");
  EXPECT_EQ(auracore.version.checkAU5SoftwareVersion(), u"NO"_s);
  EXPECT_EQ(auracore.client.settings.text(u"AU5SupportsUnicode"_s), u"NO"_s);
}

TEST(CheckAU5SoftwareVersion, NoFileIsNoAndNoReasonToLog) {
  Product auralis(u"Auralis 5"_s);
  auralis.files.erase(u"/Volumes/VB-SHARE$/System/OrvProductName.orv"_s);
  EXPECT_EQ(auralis.version.checkAU5SoftwareVersion(), u"NO"_s);
  EXPECT_TRUE(auralis.client.desktop.lines.isEmpty());
}

TEST(CheckAU5SoftwareVersion, ASilentShareIsNoAndLogged) {
  Product auralis(u"Auralis 5"_s);
  auralis.files.setUnknown(u"/Volumes/VB-SHARE$"_s, true);
  EXPECT_EQ(auralis.version.checkAU5SoftwareVersion(), u"NO"_s);
  EXPECT_TRUE(auralis.client.desktop.logged(u"Exception in ---> <AppController><checkAU5SoftwareVersion>"_s));
}
