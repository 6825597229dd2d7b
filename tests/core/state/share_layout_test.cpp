#include "core/state/ShareLayout.h"

#include "support/Fixtures.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

TEST(ShareFolders, JoinsTheConfiguredPartsToTheFixedPaths) {
  const ShareFolders folders = test::standardFolders();
  EXPECT_EQ(folders.share(), u"/Volumes/VB-SHARE$"_s);
  EXPECT_EQ(folders.system(), u"/Volumes/VB-SHARE$/System/"_s);
  EXPECT_EQ(folders.music(), u"/Volumes/VB-SHARE$/Music/Mac/"_s);
  EXPECT_EQ(folders.photo(), u"/Volumes/VB-SHARE$/Photo/Mac/"_s);
  EXPECT_EQ(folders.video(), u"/Volumes/VB-SHARE$/Video/Mac/"_s);
  EXPECT_EQ(folders.bookmarks(), u"/Volumes/VB-SHARE$/Favorites/Mac/"_s);
  EXPECT_EQ(folders.share(), kMountPoint);
  EXPECT_EQ(folders.music(), kMusicFolderLiteral);
  EXPECT_EQ(folders.bookmarks(), kBookmarkFolderLiteral);
}

TEST(ShareFolders, AddsNoSeparatorOfItsOwn) {
  ShareFolders folders;
  folders.volume = u"/V"_s;
  folders.sharedFolder = u"s"_s;
  folders.musicFolder = u"m"_s;
  folders.macFolder = u"x"_s;
  EXPECT_EQ(folders.music(), u"/Vsmx"_s);
}

TEST(ShareLayout, NamesEveryFixedPath) {
  EXPECT_EQ(kMusicFavouritesPath, u"/Volumes/VB-SHARE$/System/NetMusicFavorites.orv");
  EXPECT_EQ(kPhotoFavouritesPath, u"/Volumes/VB-SHARE$/System/PhotoFavorites.orv");
  EXPECT_EQ(kColourCopyPath, u"/Volumes/VB-SHARE$/System/SonorelCFLContents.xml");
  EXPECT_EQ(kAddressFilePath, u"/Volumes/VB-SHARE$/System/MacIPAdress.orv");
}

// The paths spell the names out.
TEST(ShareLayout, ItsPathsHoldTheNamesThatOtherRoomsUse) {
  EXPECT_EQ(kMountPoint, u"/Volumes/"_s + kShareName.toString());
  EXPECT_EQ(kAddressFilePath, kMountPoint.toString() + u"/System/"_s + kAddressFileName.toString());
}

TEST(Colours, KnowsTheFourMarkersAndNoOther) {
  EXPECT_EQ(colourNameOfMarker(u"@!!!Red!!!@"_s), u"Red"_s);
  EXPECT_EQ(colourNameOfMarker(u"@!!!Green!!!@"_s), u"Green"_s);
  EXPECT_EQ(colourNameOfMarker(u"@!!!Yellow!!!@"_s), u"Yellow"_s);
  EXPECT_EQ(colourNameOfMarker(u"@!!!Blue!!!@"_s), u"Blue"_s);
  EXPECT_EQ(colourNameOfMarker(u"@!!!red!!!@"_s), u"@!!!red!!!@"_s);
  EXPECT_TRUE(isColourMarker(u"@!!!Blue!!!@"_s));
  EXPECT_FALSE(isColourMarker(u"Blue"_s));
  EXPECT_FALSE(isColourMarker(u"@!!!Blue!!!@ "_s));
}

TEST(Colours, HaveOneMarkerEach) {
  EXPECT_EQ(colourMarker(u"Red"_s), u"@!!!Red!!!@"_s);
  EXPECT_EQ(colourMarker(u"Green"_s), u"@!!!Green!!!@"_s);
  EXPECT_EQ(colourMarker(u"Yellow"_s), u"@!!!Yellow!!!@"_s);
  EXPECT_EQ(colourMarker(u"Blue"_s), u"@!!!Blue!!!@"_s);
  EXPECT_EQ(colourMarker(u"red"_s), u"red"_s);
}

TEST(Colours, AreNumberedInTheOrderOfTheFile) {
  EXPECT_EQ(colourIndex(u"Red"), 0);
  EXPECT_EQ(colourIndex(u"Green"), 1);
  EXPECT_EQ(colourIndex(u"Yellow"), 2);
  EXPECT_EQ(colourIndex(u"Blue"), 3);
  EXPECT_EQ(colourIndex(u"red"), -1);
  EXPECT_EQ(colourIndex(u"@!!!Red!!!@"), -1);
  EXPECT_EQ(colourName(2), u"Yellow"_s);
}

TEST(Names, LoseTheNineCharactersAndNothingElse) {
  EXPECT_EQ(cleanedName(u"a/b\\c:d*e?f\"g<h>i|j"_s), u"a_b_c_d_e_f_g_h_i_j"_s);
  EXPECT_EQ(cleanedName(u"//"_s), u"__"_s);
  EXPECT_EQ(cleanedName(u"é-\n;'&. "_s), u"é-\n;'&. "_s);
  EXPECT_EQ(cleanedName(QString()), QString());
}
