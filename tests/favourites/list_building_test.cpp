#include "favourites/ListBuilding.h"

#include "support/FakeIdentifiers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

PlaylistInfo item(const QString &playlist, const QString &name, const QString &flag = u"Y"_s) {
  return {playlist, u"/music/"_s + name, {}, name, flag};
}

class ListBuildingTest : public testing::Test {
protected:
  PlaylistDetails build(const QList<PlaylistInfo> &records, const QString &product = u"Auracore 5"_s) {
    return makePlaylistDetailData(
        records, [this](const QString &path) { return albums.value(path.mid(7)); }, {product, false}, identifiers);
  }
  static QStringList paths(const std::vector<FavouriteTitle> &titles) {
    QStringList all;
    for (const FavouriteTitle &title : titles) {
      all.append(title.songPath + u'/' + title.itemType.value_or(u"-"_s));
    }
    return all;
  }

  FakeIdentifiers identifiers;
  QHash<QString, QString> albums; // by name
};

} // namespace

TEST_F(ListBuildingTest, OnlyTransferredItemsTakePartInTheOrderOfTheDrop) {
  const PlaylistDetails details = build({item(u"P"_s, u"b/x.mp3"_s), item(u"Q"_s, u"q.mp3"_s),
                                         item(u"P"_s, u"n.mp3"_s, u"N"_s), item(u"P"_s, u"a.mp3"_s)});
  EXPECT_EQ(paths(details.titles.value(u"P"_s)), (QStringList{u"b_x.mp3/1"_s, u"a.mp3/1"_s}));
  const FavouriteTitle first = details.titles.value(u"P"_s).front();
  EXPECT_EQ(first.checkSum, QByteArray(36, '\0'));
  EXPECT_EQ(first.guid.size(), 16);
}

TEST_F(ListBuildingTest, FiveSongsOfOneAlbumAndOneOfAnotherYieldOneList) {
  QList<PlaylistInfo> records;
  for (int i = 0; i < 5; ++i) {
    records.append(item(u"N0PL@YL!ST"_s, u"%1.mp3"_s.arg(i)));
    albums.insert(u"%1.mp3"_s.arg(i), u"A_x"_s);
  }
  records.insert(2, item(u"N0PL@YL!ST"_s, u"b.mp3"_s));
  albums.insert(u"b.mp3"_s, u"B"_s);
  const PlaylistDetails details = build(records);
  EXPECT_EQ(details.titles.keys(), QStringList{u"@~A x@~"_s});
  EXPECT_EQ(details.titles.value(u"@~A x@~"_s).size(), 5U);
  EXPECT_EQ(getAllPlaylistName(details.records), QStringList{u"@~A x@~"_s});
}

TEST_F(ListBuildingTest, SongsWithoutAnAlbumAreUnknown) {
  const PlaylistDetails details = build({item(u"N0PL@YL!ST"_s, u"1.mp3"_s), item(u"N0PL@YL!ST"_s, u"2.mp3"_s)});
  EXPECT_EQ(details.titles.keys(), QStringList{u"@~Unknown@~"_s});
}

TEST_F(ListBuildingTest, AnAlbumDroppedTwiceOnAKeyStandsOnceAtTheEnd) {
  albums = {{u"1.mp3"_s, u"Gold"_s}, {u"2.mp3"_s, u"Arrival"_s}, {u"3.mp3"_s, u"Gold"_s}};
  const PlaylistDetails details = build(
      {item(u"@!!!Red!!!@"_s, u"1.mp3"_s), item(u"@!!!Red!!!@"_s, u"2.mp3"_s), item(u"@!!!Red!!!@"_s, u"3.mp3"_s)});
  EXPECT_EQ(paths(details.titles.value(u"Red"_s)), (QStringList{u"Arrival/2"_s, u"Gold/2"_s}));
}

TEST_F(ListBuildingTest, Vaultbox1GetsNoTypesAndNoAlbumLists) {
  const PlaylistDetails details =
      build({item(u"P"_s, u"a.mp3"_s), item(u"N0PL@YL!ST"_s, u"1.mp3"_s), item(u"N0PL@YL!ST"_s, u"2.mp3"_s)},
            u"Vaultbox 1"_s);
  EXPECT_EQ(paths(details.titles.value(u"P"_s)), QStringList{u"a.mp3/-"_s});
  EXPECT_EQ(details.titles.size(), 1);
  EXPECT_EQ(getAllPlaylistName(details.records), (QStringList{u"P"_s, u"N0PL@YL!ST"_s}));
}

TEST_F(ListBuildingTest, NamesAreNumberedAndColourMarkersNamed) {
  const auto lists = makePlaylistDataArrays(
      {item(u"P"_s, u"a"_s), item(u"@!!!Blue!!!@"_s, u"b"_s), item(u"P"_s, u"c"_s)}, 41, identifiers);
  ASSERT_EQ(lists.size(), 2U);
  EXPECT_EQ(lists[0].name, u"P"_s);
  EXPECT_EQ(lists[0].playlistId, u"41"_s);
  EXPECT_EQ(lists[1].name, u"Blue"_s);
  EXPECT_EQ(lists[1].playlistId, u"42"_s);
  EXPECT_EQ(lists[1].locationId, u"6"_s);
}

TEST_F(ListBuildingTest, AnAlbumNameEndsAtItsFirstNul) {
  EXPECT_EQ(albumNameOf(u"One\0Two"_s), u"One"_s);
  EXPECT_EQ(albumNameOf(u""_s), u"Unknown"_s);
}

TEST_F(ListBuildingTest, AnAlbumOfOneLooseSongIsLeftOutAndTheSongsGiveWay) {
  albums = {{u"1.mp3"_s, u"Gold"_s}};
  const PlaylistDetails details = build({item(u"N0PL@YL!ST"_s, u"1.mp3"_s), item(u"P"_s, u"2.mp3"_s)});
  EXPECT_EQ(details.titles.keys(), QStringList{u"P"_s});
  EXPECT_EQ(getAllPlaylistName(details.records), QStringList{u"P"_s});
}

TEST_F(ListBuildingTest, AlbumListsComeBehindTheOthersInTheOrderOfTheirFirstSong) {
  albums = {{u"1.mp3"_s, u"B"_s}, {u"2.mp3"_s, u"A"_s}, {u"3.mp3"_s, u"A"_s}, {u"4.mp3"_s, u"B"_s}};
  QList<PlaylistInfo> records;
  for (int i = 1; i <= 4; ++i) {
    records.append(item(u"N0PL@YL!ST"_s, u"%1.mp3"_s.arg(i)));
  }
  records.append(item(u"P"_s, u"5.mp3"_s));
  EXPECT_EQ(getAllPlaylistName(build(records).records), (QStringList{u"P"_s, u"@~B@~"_s, u"@~A@~"_s}));
}

TEST_F(ListBuildingTest, EveryCharacterThatAShareNameCannotHoldIsReplaced) {
  const PlaylistDetails details = build({item(u"P"_s, u"a/b\\c:d*e?f\"g<h>i|j@@@@@k"_s)});
  EXPECT_EQ(paths(details.titles.value(u"P"_s)), QStringList{u"a_b_c_d_e_f_g_h_i_j@@@@@k/1"_s});
}

TEST_F(ListBuildingTest, EachFileIsAskedForItsAlbumOnce) {
  int asked = 0;
  const QList<PlaylistInfo> records{item(u"@!!!Red!!!@"_s, u"1.mp3"_s), item(u"@!!!Blue!!!@"_s, u"1.mp3"_s),
                                    item(u"P"_s, u"1.mp3"_s)};
  (void)makePlaylistDetailData(
      records, [&](const QString &) { return ++asked, u"Gold"_s; }, {u"Auralis 5"_s, false}, identifiers);
  EXPECT_EQ(asked, 1);
}

TEST_F(ListBuildingTest, APlaylistRedAndTheKeyRedShareTheLaterTitles) {
  albums = {{u"2.mp3"_s, u"Gold"_s}};
  const PlaylistDetails details = build({item(u"Red"_s, u"1.mp3"_s), item(u"@!!!Red!!!@"_s, u"2.mp3"_s)});
  EXPECT_EQ(paths(details.titles.value(u"Red"_s)), QStringList{u"Gold/2"_s});
  EXPECT_EQ(makePlaylistDataArrays(details.records, 5, identifiers).size(), 2U);
}

} // namespace sonorel::test
