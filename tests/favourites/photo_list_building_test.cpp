#include "favourites/PhotoListBuilding.h"

#include "HandMade.h"
#include "favourites/ListBuilding.h"
#include "support/FakeIdentifiers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

PlaylistInfo picture(const QString &album, const QString &path, const QString &flag = u"Y"_s) {
  return {album, path, {}, path, flag};
}
const PlaylistInfo kMarker;
const PlayerTraits kAuracore{u"Auracore 5"_s, false};

QStringList names(const QList<PlaylistInfo> &records) {
  return getAllPlaylistName(records, FavouritesKind::Photos);
}

// "Album: path, path" for each.
QStringList shown(const QList<PlaylistInfo> &records) {
  FakeIdentifiers identifiers;
  QStringList lines;
  for (const PhotoAlbum &album : makePlaylistDetailDataForPhotoUsingArrays(records, kAuracore, identifiers)) {
    QStringList paths;
    for (const FavouriteTitle &title : album.titles) {
      paths.append(title.songPath);
    }
    lines.append(album.name + u": "_s + paths.join(u", "_s));
  }
  return lines;
}

} // namespace

TEST(PhotoListNames, TwoAlbumsHaveAnEmptyNameBetweenThem) {
  EXPECT_EQ(
      names({picture(u"A"_s, u"/p/1"_s), picture(u"A"_s, u"/p/2"_s), kMarker, picture(u"B"_s, u"/p/3"_s), kMarker}),
      (QStringList{u"A"_s, QString(), u"B"_s}));
}

TEST(PhotoListNames, AnAlbumThatComesAgainBehindAMarkerStandsAgain) {
  EXPECT_EQ(names({picture(u"A"_s, u"/p/1"_s), kMarker, picture(u"A"_s, u"/p/2"_s), picture(u"B"_s, u"/p/3"_s),
                   picture(u"A"_s, u"/p/4"_s)}),
            (QStringList{u"A"_s, QString(), u"A"_s, QString(), u"B"_s}));
}

TEST(PhotoListNames, AMarkerInFrontGivesTheFirstAlbumASeparatorToo) {
  EXPECT_EQ(names({kMarker, kMarker, picture(u"A"_s, u"/p/1"_s)}), (QStringList{QString(), u"A"_s}));
  EXPECT_EQ(names({kMarker, kMarker}), QStringList());
  EXPECT_EQ(names({}), QStringList());
}

TEST(PhotoLists, ASeparatorHasTheNumberOfTheAlbumBehindItAndAGuidOfItsOwn) {
  FakeIdentifiers identifiers;
  const std::vector<NewList> lists = makePlaylistDataUsingArrays(
      {picture(u"A"_s, u"/p/1"_s), kMarker, picture(u"B"_s, u"/p/2"_s), kMarker, picture(u"C"_s, u"/p/3"_s)}, 41,
      identifiers);
  QStringList shownLists;
  for (const NewList &list : lists) {
    shownLists.append(list.name + u' ' + list.playlistId + u' ' + list.locationId);
  }
  EXPECT_EQ(shownLists, (QStringList{u"A 41 6"_s, u" 42 6"_s, u"B 42 6"_s, u" 43 6"_s, u"C 43 6"_s}));
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(lists.at(static_cast<std::size_t>(i)).guid, countedGuid(i + 1));
  }
}

TEST(PhotoTitles, StandBelowTheirAlbumFolderOrAlone) {
  EXPECT_EQ(
      shown({picture(u"A"_s, u"/home/me/Rome/1.jpg"_s), picture(u"A"_s, u"/Rome/2.jpg"_s),
             picture(u"A"_s, u"/3.jpg"_s), picture(u"A"_s, u"4.jpg"_s), picture(u"A"_s, u"/home/a:b|c/5.jpg"_s)}),
      QStringList{u"A: Rome\\1.jpg, Rome\\2.jpg, 3.jpg, 4.jpg, a_b_c\\5.jpg"_s});
}

TEST(PhotoTitles, AreAnEmptyCheckSumAFreshGuidAndAnItemTypeUnlessForVaultbox1) {
  FakeIdentifiers identifiers;
  const QList<PlaylistInfo> records{picture(u"A"_s, u"/p/1"_s), picture(u"A"_s, u"/p/2"_s)};
  const auto albums = makePlaylistDetailDataForPhotoUsingArrays(records, kAuracore, identifiers);
  const FavouriteTitle expected{u"p\\2"_s, QByteArray(36, '\0'), countedGuid(2), u"1"_s};
  EXPECT_EQ(albums.at(0).titles.at(1), expected);
  const auto bare = makePlaylistDetailDataForPhotoUsingArrays(records, {u"Vaultbox 1"_s, false}, identifiers);
  EXPECT_EQ(bare.at(0).titles.at(0).itemType, std::nullopt);
}

TEST(PhotoTitles, OnlyTransferredPicturesTakePartAndAnAlbumWithoutOneStays) {
  EXPECT_EQ(shown({picture(u"A"_s, u"/1.jpg"_s, u"N"_s), kMarker, picture(u"B"_s, u"/2.jpg"_s),
                   picture(u"B"_s, u"/3.jpg"_s, u"N"_s), picture(u"B"_s, u"/4.jpg"_s)}),
            (QStringList{u"A: "_s, u"B: 2.jpg, 4.jpg"_s}));
}

TEST(PhotoTitles, StayWithTheirAlbumsWhateverMarkersStandBetween) {
  EXPECT_EQ(shown({kMarker, picture(u"A"_s, u"/1.jpg"_s), kMarker, kMarker, picture(u"B"_s, u"/2.jpg"_s), kMarker,
                   picture(u"A"_s, u"/3.jpg"_s), kMarker}),
            (QStringList{u"A: 1.jpg"_s, u"B: 2.jpg"_s, u"A: 3.jpg"_s}));
  EXPECT_EQ(shown({picture(u"A"_s, u"/1.jpg"_s), picture(u"B"_s, u"/2.jpg"_s), picture(u"A"_s, u"/3.jpg"_s), kMarker,
                   picture(u"C"_s, u"/4.jpg"_s)}),
            (QStringList{u"A: 1.jpg, 3.jpg"_s, u"B: 2.jpg"_s, u"C: 4.jpg"_s}));
}

TEST(PhotoLists, EveryAlbumGetsItsTitlesAndASeparatorNone) {
  FakeIdentifiers identifiers;
  const auto lists =
      photoLists({picture(u"A"_s, u"/1.jpg"_s), kMarker, picture(u"B"_s, u"/2.jpg"_s)}, 5, kAuracore, identifiers);
  ASSERT_EQ(lists.size(), 3U);
  EXPECT_EQ(lists[0].titles.at(0).songPath, u"1.jpg"_s);
  EXPECT_TRUE(lists[1].titles.empty());
  EXPECT_EQ(lists[2].titles.at(0).songPath, u"2.jpg"_s);
}

TEST(PhotoTitles, OfTheMusicBuilderAreFileNamesAndNeverOnAColourKey) {
  FakeIdentifiers identifiers;
  const PlaylistDetails details = makePlaylistDetailData(
      {picture(u"A"_s, u"/home/Rome/1.jpg"_s), picture(u"@!!!Red!!!@"_s, u"/2.jpg"_s)},
      [](const QString &) { return u"Gold"_s; }, kAuracore, identifiers, FavouritesKind::Photos);
  EXPECT_EQ(details.titles.value(u"A"_s).at(0).songPath, u"1.jpg"_s);
  EXPECT_FALSE(details.titles.contains(u"Red"_s));
  EXPECT_FALSE(details.titles.contains(u"@!!!Red!!!@"_s));
}

TEST(PhotoLists, OfManyAlbumsAreBuiltInOnePass) {
  QList<PlaylistInfo> records;
  for (int i = 0; i < 20'000; ++i) {
    records.append(picture(u"Album %1"_s.arg(i), u"/p/%1.jpg"_s.arg(i)));
    records.append(kMarker);
  }
  FakeIdentifiers identifiers;
  const auto lists = photoLists(records, 1, kAuracore, identifiers);
  ASSERT_EQ(lists.size(), 39'999U);
  EXPECT_EQ(lists.back().playlistId, u"20000"_s);
  EXPECT_EQ(lists.back().titles.at(0).songPath, u"p\\19999.jpg"_s);
}

} // namespace sonorel::test
