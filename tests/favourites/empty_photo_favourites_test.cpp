#include "favourites/EmptyPhotoFavourites.h"

#include "HandMade.h"
#include "favourites/FavouritesFile.h"
#include "favourites/FavouritesReport.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

TEST(EmptyPhotoFavourites, AreAHeaderAndAListWithoutAlbums) {
  const QByteArray plain("\x01\0\0\0N\x12\0\0\0FavoriteAlbums-1.2", 27);
  const QByteArray head("\x03\0\0\0\x26\0\0\0{1CF4E0EA-EA27-4242-A4BC-993CCA17BFB2}\x0E\0\0\0PhotoFavorites\x01\0\0\0"
                        "1",
                        69);
  const QByteArray list1 = chunk(plain);
  EXPECT_EQ(emptyPhotoFavourites(), head + le32(static_cast<quint32>(list1.size())) + list1);
}

TEST(EmptyPhotoFavourites, AreTheSameAtEveryBuild) {
  EXPECT_EQ(emptyPhotoFavourites(), emptyPhotoFavourites());
}

TEST(EmptyPhotoFavourites, AreEmptyAndSoundToTheReaders) {
  const QByteArray file = emptyPhotoFavourites();
  EXPECT_TRUE(isNetMusicFavEmpty(file, FavouritesKind::Photos));
  const FavouritesReport report = favouritesReport(file);
  EXPECT_EQ(report.kind, FavouritesKind::Photos);
  EXPECT_EQ(report.albumsTag, u"FavoriteAlbums-1.2"_s);
  EXPECT_EQ(report.file.oddities, QStringList());
  EXPECT_TRUE(report.file.list1Readable);
  EXPECT_TRUE(report.file.lists.empty());
}
