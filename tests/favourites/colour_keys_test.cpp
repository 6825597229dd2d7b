#include "favourites/ColourKeys.h"

#include "FavouritesWorkbench.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const ColourGuids kGuids{QByteArray(16, 'r'), QByteArray(16, 'g'), QByteArray(16, 'y'), QByteArray(16, 'b')};

FavouriteList list(const QString &name, const QString &id) {
  FavouriteList made;
  made.playlistName = name;
  made.playlistId = id;
  return made;
}

QStringList namesAndIds(const FavouriteLists &lists) {
  QStringList found;
  for (const FavouriteList &each : lists) {
    found << each.playlistName + u' ' + each.playlistId;
  }
  return found;
}

} // namespace

TEST(ColourKeys, AnEmptyDictionaryGetsTheFourKeys) {
  FavouriteLists lists;
  EXPECT_TRUE(createCFLEntriesIfMissing(lists, kGuids));
  EXPECT_EQ(namesAndIds(lists), (QStringList{u"Red 1"_s, u"Green 2"_s, u"Yellow 3"_s, u"Blue 4"_s}));
  EXPECT_EQ(lists[2].guid, QByteArray(16, 'y'));
  EXPECT_EQ(lists[2].locationId, u"6"_s);
  EXPECT_FALSE(lists[2].nameAsRead);
}

TEST(ColourKeys, OneMissingKeyBringsAllFourAndEverythingElseMovesUp) {
  FavouriteLists lists{list(u"Red"_s, u"1"_s), list(u"Green"_s, u"2"_s), list(u"Yellow"_s, u"3"_s),
                       list(u"@~Party@~"_s, u"9"_s)};
  EXPECT_TRUE(createCFLEntriesIfMissing(lists, kGuids));
  EXPECT_EQ(namesAndIds(lists), (QStringList{u"Red 1"_s, u"Green 2"_s, u"Yellow 3"_s, u"Blue 4"_s, u"Red 1"_s,
                                             u"Green 2"_s, u"Yellow 3"_s, u"@~Party@~ 9"_s}));
}

TEST(ColourKeys, AllFourIdsAnywhereAreEnough) {
  FavouriteLists lists{list(u"a"_s, u"4"_s), list(u"b"_s, u"3"_s), list(u"c"_s, u"2"_s), list(u"d"_s, u"1"_s)};
  EXPECT_FALSE(createCFLEntriesIfMissing(lists, kGuids));
  EXPECT_EQ(lists.size(), 4U);
}

TEST(ColourKeys, KeysThatAreNotInFrontAreMovedThereAndTheRestKeepsItsOrder) {
  FavouriteLists lists{list(u"A"_s, u"9"_s),     list(u"Blue"_s, u"4"_s), list(u"B"_s, u"8"_s),
                       list(u"Green"_s, u"2"_s), list(u"Red"_s, u"1"_s),  list(u"C"_s, u"1"_s),
                       list(u"Yellow"_s, u"3"_s)};
  EXPECT_TRUE(moveColourKeysToFront(lists));
  EXPECT_EQ(namesAndIds(lists),
            (QStringList{u"Red 1"_s, u"Green 2"_s, u"Yellow 3"_s, u"Blue 4"_s, u"A 9"_s, u"B 8"_s, u"C 1"_s}));
  EXPECT_FALSE(moveColourKeysToFront(lists));
}

TEST(ColourKeys, WithoutAllFourNothingIsMoved) {
  FavouriteLists lists{list(u"A"_s, u"9"_s), list(u"Red"_s, u"1"_s)};
  EXPECT_FALSE(moveColourKeysToFront(lists));
  EXPECT_EQ(lists[0].playlistId, u"9"_s);
}

TEST(ColourKeys, OnlyOneToFourAreKeyIds) {
  for (const QString &id : {u"1"_s, u"2"_s, u"3"_s, u"4"_s}) {
    EXPECT_TRUE(isColourKeyId(id));
  }
  for (const QString &id : {u""_s, u"0"_s, u"5"_s, u"11"_s, u"1 "_s}) {
    EXPECT_FALSE(isColourKeyId(id));
  }
}

TEST(ColourKeys, AMissingGuidIsMadeOnceAndStored) {
  FakeFileSystem files;
  FavouritesWorkbench client(files);
  client.settings.remove(u"CFLGUIDGreen"_s);
  client.settings.set(u"CFLGUIDBlue"_s, u"a text"_s);
  const ColourGuids guids = colourGuids(client.settings, client.identifiers, client.desktop);
  EXPECT_EQ(guids[0], QByteArray(16, 'r'));
  EXPECT_EQ(guids[1], QByteArray::fromHex("00000000000000000000000000000001"));
  EXPECT_EQ(guids[3], QByteArray::fromHex("00000000000000000000000000000002"));
  Settings again(files, client.propertyLists, u"/Client/MacClientProperty"_s);
  again.load();
  EXPECT_EQ(again.data(u"CFLGUIDGreen"_s), guids[1]);
  EXPECT_EQ(colourGuids(client.settings, client.identifiers, client.desktop), guids);
}
