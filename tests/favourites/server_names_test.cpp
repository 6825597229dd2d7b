#include "favourites/ServerNames.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

const PlayerTraits kPlayer{u"Auralis 5"_s, false};
const PlayerTraits kVaultbox{u"Vaultbox 1"_s, false};

FavouriteList named(const QString &name, const QString &location = u"6"_s) {
  FavouriteList list;
  list.playlistName = name;
  list.locationId = location;
  return list;
}

FavouriteTitle titled(const QString &path, const std::optional<QString> &type) {
  return {path, QByteArray(), QByteArray(), type};
}

} // namespace

TEST(ServerNames, ANameThatWasReadIsFramedUnlessItIsAColourKeys) {
  EXPECT_EQ(nameInDictionary(u"Party"_s, u"9"_s, kPlayer), u"@~Party@~"_s);
  EXPECT_EQ(nameInDictionary(u"Red"_s, u"1"_s, kPlayer), u"Red"_s);
  EXPECT_EQ(nameInDictionary(u"Blue"_s, u"4"_s, kPlayer), u"Blue"_s);
  EXPECT_EQ(nameInDictionary(u"Red"_s, u"5"_s, kPlayer), u"@~Red@~"_s);
  EXPECT_EQ(nameInDictionary(u"Red"_s, u"1"_s, kVaultbox), u"@~Red@~"_s);
  EXPECT_EQ(nameInDictionary(u"Red"_s, u"11"_s, kPlayer), u"@~Red@~"_s);
}

TEST(ServerNames, ANameIsWrittenWithoutItsFrame) {
  EXPECT_EQ(nameInFile(named(u"@~Party@~"_s), kPlayer), u"Party"_s);
  EXPECT_EQ(nameInFile(named(u"Party"_s), kPlayer), u"Party"_s);
  EXPECT_EQ(nameInFile(named(u"@~Jazz"_s), kPlayer), u"Jazz"_s);
  EXPECT_EQ(nameInFile(named(u"A@~B"_s), kPlayer), u"B"_s);
  EXPECT_EQ(nameInFile(named(u"A@~"_s), kPlayer), u""_s);
}

TEST(ServerNames, TheFrameStaysForLocationsOneToFourExceptOnVaultbox1) {
  EXPECT_EQ(nameInFile(named(u"@~Party@~"_s, u"3"_s), kPlayer), u"@~Party@~"_s);
  EXPECT_EQ(nameInFile(named(u"@~Party@~"_s, u"3"_s), kVaultbox), u"Party"_s);
}

TEST(ServerNames, ANameAsItWasReadIsWrittenAsItWasRead) {
  FavouriteList list = named(u"@~A@~B@~"_s, u"2"_s);
  list.nameAsRead = u"A@~B"_s;
  EXPECT_EQ(nameInFile(list, kPlayer), u"A@~B"_s);
}

TEST(ServerNames, TheServersFolderIsRemovedUpToItsLastOccurrence) {
  EXPECT_EQ(storedPathOf(u"E:\\vb-share\\Music\\Mac\\Artist\\Song.mp3"_s, FavouritesKind::Music),
            u"Artist\\Song.mp3"_s);
  EXPECT_EQ(storedPathOf(u"E:\\vb-share\\Music\\Mac\\E:\\vb-share\\Music\\Mac\\a"_s, FavouritesKind::Music), u"a"_s);
  EXPECT_EQ(storedPathOf(u"E:\\vb-share\\Music\\Other\\a.mp3"_s, FavouritesKind::Music),
            u"E:\\vb-share\\Music\\Other\\a.mp3"_s);
  EXPECT_EQ(storedPathOf(u"E:\\vb-share\\Photo\\Mac\\a.jpg"_s, FavouritesKind::Photos), u"a.jpg"_s);
}

TEST(ServerNames, ATitleGetsTheServersFolderAndItsSeparators) {
  EXPECT_EQ(serverMusicPath(titled(u"Artist@@@@@Album@@@@@Song.mp3"_s, u"1"_s)),
            u"E:\\vb-share\\Music\\Mac\\Artist\\Album\\Song.mp3"_s);
  EXPECT_EQ(serverMusicPath(titled(u"a@@@@@@b"_s, u"1"_s)), u"E:\\vb-share\\Music\\Mac\\a\\@b"_s);
  EXPECT_EQ(serverMusicPath(titled(u"a"_s, std::nullopt)), u"E:\\vb-share\\Music\\Mac\\a"_s);
  EXPECT_EQ(serverMusicPath(titled(u"a"_s, u"3"_s)), u"E:\\vb-share\\Music\\Mac\\a"_s);
}

TEST(ServerNames, AnAlbumAndAForeignDriveStayAsTheyAre) {
  EXPECT_EQ(serverMusicPath(titled(u"Blue@@@@@Train"_s, u"2"_s)), u"Blue@@@@@Train"_s);
  EXPECT_EQ(serverMusicPath(titled(u"E:\\vb-share\\Music\\Other\\a.mp3"_s, u"1"_s)),
            u"E:\\vb-share\\Music\\Other\\a.mp3"_s);
  EXPECT_EQ(serverMusicPath(titled(u"d:\\a.mp3"_s, std::nullopt)), u"d:\\a.mp3"_s);
  EXPECT_EQ(serverMusicPath(titled(u"1:\\a.mp3"_s, u"1"_s)), u"E:\\vb-share\\Music\\Mac\\1:\\a.mp3"_s);
}

TEST(ServerNames, TitlesAppendedToAKeysStoredListKeepTheirMarks) {
  EXPECT_EQ(serverMusicPathOnKey(titled(u"a@@@@@b"_s, u"1"_s)), u"E:\\vb-share\\Music\\Mac\\a@@@@@b"_s);
  EXPECT_EQ(serverMusicPathOnKey(titled(u"a@@@@@b"_s, u"2"_s)), u"a@@@@@b"_s);
  EXPECT_EQ(serverPhotoPath(u"a@@@@@b"_s), u"E:\\vb-share\\Photo\\Mac\\a@@@@@b"_s);
}
