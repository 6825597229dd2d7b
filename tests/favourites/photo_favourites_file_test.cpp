#include "favourites/PhotoFavouritesFile.h"

#include "HandMade.h"
#include "favourites/EmptyPhotoFavourites.h"
#include "favourites/FavouritesFile.h"
#include "platform/Failure.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const PlayerTraits kAuracore{u"Auracore 5"_s, false};
const PlayerTraits kAuralisUtf8{u"Auralis 5"_s, true};
const PlayerTraits kVaultbox{u"Vaultbox 1"_s, false};
const QString kGuidText = u"00000000-0000-0000-0000-0000000000AA"_s;

FavouriteTitle title(const QString &path, char filler, bool vaultbox = false) {
  return {path, zeros36(), guid(filler), vaultbox ? std::nullopt : std::optional(u"1"_s)};
}

NewList album(const QString &name, const QString &id, char filler, std::vector<FavouriteTitle> titles = {}) {
  return {name, id, u"6"_s, guid(filler), std::move(titles)};
}

// What the stored file becomes with the lists behind it.
std::vector<QByteArray> extended(const std::vector<QByteArray> &contents, const std::vector<NewList> &lists,
                                 const PlayerTraits &player = kAuracore) {
  return contentsOf(extendedPhotoFavourites(wholeFile(photoHeader(), contents), lists, player, kGuidText), 73);
}

} // namespace

TEST(NewPhotoFavourites, AreTheHeaderTheAlbumsAndATitleListForEach) {
  const QByteArray file =
      newPhotoFavourites({album(u"Rome"_s, u"5"_s, 'a', {title(u"Rome\\1.jpg"_s, '1'), title(u"2.jpg"_s, '2')}),
                          album(QString(), u"6"_s, 's'), album(u"Caf\u00E9"_s, u"6"_s, 'b')},
                         kAuracore, kGuidText);
  EXPECT_EQ(file.left(69), photoHeader());
  EXPECT_EQ(file.mid(69, 4), le32(static_cast<quint32>(file.size() - 73)));
  EXPECT_EQ(contentsOf(file, 73),
            (std::vector<QByteArray>{
                albums({listRecord("Rome", "5", "6", guid('a')), listRecord("", "6", "6", guid('s')),
                        listRecord("Caf\xE9", "6", "6", guid('b'))}),
                titles({picture("Rome\\1.jpg", guid('1')), picture("2.jpg", guid('2'))}), titles({}), titles({})}));
}

TEST(NewPhotoFavourites, OfOnePictureAreTheseBytes) {
  const QByteArray file =
      newPhotoFavourites({album(u"Rome"_s, u"5"_s, 'a', {title(u"1.jpg"_s, '1')})}, kAuracore, kGuidText);
  const QByteArray list1 = QByteArray::fromHex("02000000"
                                               "4e12000000") +
                           "FavoriteAlbums-1.2" + QByteArray::fromHex("4c04000000") + "Rome" +
                           QByteArray::fromHex("03000000"
                                               "4e01000000"
                                               "35"
                                               "4e01000000"
                                               "36"
                                               "4e10000000") +
                           QByteArray(16, 'a');
  const QByteArray list2 = QByteArray::fromHex("02000000"
                                               "4e12000000") +
                           "FavoriteTitles-1.2" + QByteArray::fromHex("4c1b000000") +
                           "E:\\vb-share\\Photo\\Mac\\1.jpg" +
                           QByteArray::fromHex("03000000"
                                               "4e24000000") +
                           QByteArray(36, '\0') + QByteArray::fromHex("4e10000000") + QByteArray(16, '1') +
                           QByteArray::fromHex("4e01000000"
                                               "31");
  EXPECT_EQ(contentsOf(file, 73), (std::vector<QByteArray>{list1, list2}));
}

TEST(NewPhotoFavourites, KeepTheEarlierTagsWhenThePlayerTakesUtf8) {
  EXPECT_EQ(contentsOf(newPhotoFavourites({album(u"\u6771"_s, u"5"_s, 'a', {title(u"\u00E9.jpg"_s, '1')})},
                                          kAuralisUtf8, kGuidText),
                       73),
            (std::vector<QByteArray>{albums({listRecord("\xE6\x9D\xB1", "5", "6", guid('a'))}),
                                     titles({picture("\xC3\xA9.jpg", guid('1'))})}));
}

TEST(NewPhotoFavourites, OfVaultbox1HaveTwoFieldsForATitle) {
  EXPECT_EQ(
      contentsOf(
          newPhotoFavourites({album(u"Red"_s, u"5"_s, 'a', {title(u"1.jpg"_s, '1', true)})}, kVaultbox, kGuidText),
          73),
      (std::vector<QByteArray>{albums({listRecord("Red", "5", "6", guid('a'))}),
                               titles({titleOfVaultbox1("E:\\vb-share\\Photo\\Mac\\1.jpg", zeros36(), guid('1'))})}));
}

TEST(ExtendedPhotoFavourites, HaveTheNewAlbumsBehindTheStoredOnes) {
  const std::vector<QByteArray> stored{
      albums({listRecord("Old", "5", "9", guid('o')), listRecord("", "5", "6", guid('p'))}),
      titles({titleRecord("D:\\x\xFF", "short", "odd", "7")}), titles({})};
  EXPECT_EQ(
      extended(stored, {album(u"A"_s, u"6"_s, 'a', {title(u"1.jpg"_s, '1')}), album(QString(), u"7"_s, 's'),
                        album(u"Old"_s, u"7"_s, 'b', {title(u"2.jpg"_s, '2')})}),
      (std::vector<QByteArray>{albums({listRecord("Old", "5", "9", guid('o')), listRecord("", "5", "6", guid('p')),
                                       listRecord("A", "6", "6", guid('a')), listRecord("", "7", "6", guid('s')),
                                       listRecord("Old", "7", "6", guid('b'))}),
                               stored[1], stored[2], titles({picture("1.jpg", guid('1'))}), titles({}),
                               titles({picture("2.jpg", guid('2'))})}));
}

TEST(ExtendedPhotoFavourites, KeepStoredChunksByteForByteAlsoDamagedAndForeignOnes) {
  const QByteArray foreign = le32(3) + le32(5) + "abcde"; // no zlib stream
  QByteArray plain = chunk(titles({}));
  const QByteArray list1 =
      chunk(albums({listRecord("A", "5", "6", guid('a')), listRecord("B", "6", "6", guid('b'))}));
  const QByteArray body = list1 + foreign + plain;
  const QByteArray file = extendedPhotoFavourites(photoHeader() + le32(static_cast<quint32>(body.size())) + body,
                                                  {album(u"C"_s, u"7"_s, 'c')}, kAuracore, kGuidText);
  EXPECT_TRUE(file.endsWith(foreign + plain + chunk(titles({}))));
}

TEST(ExtendedPhotoFavourites, PutAnAlbumNamedAfterAColourOntoThatColoursList) {
  std::vector<QByteArray> records = keyRecords();
  records.push_back(listRecord("Old", "7", "6", guid('o')));
  const QByteArray old = titles({picture("o.jpg", guid('o'))});
  const QByteArray onGreen = picture("g.jpg", guid('g'));
  const std::vector<QByteArray> stored{albums(records), titles({}), titles({onGreen}), titles({}), titles({}), old};
  const auto written =
      extended(stored, {album(u"Green"_s, u"8"_s, '1', {title(u"1.jpg"_s, '1')}), album(QString(), u"9"_s, 's'),
                        album(u"A"_s, u"9"_s, 'a', {title(u"2.jpg"_s, '2')}), album(QString(), u"10"_s, 't'),
                        album(u"Green"_s, u"10"_s, '3', {title(u"3.jpg"_s, '3')})});
  records.push_back(listRecord("", "9", "6", guid('s')));
  records.push_back(listRecord("A", "9", "6", guid('a')));
  records.push_back(listRecord("", "10", "6", guid('t')));
  EXPECT_EQ(written, (std::vector<QByteArray>{
                         albums(records), titles({}),
                         titles({onGreen, picture("1.jpg", guid('1')), picture("3.jpg", guid('3'))}), titles({}),
                         titles({}), old, titles({}), titles({picture("2.jpg", guid('2'))}), titles({})}));
}

TEST(ExtendedPhotoFavourites, WithoutTheFourColourListsAColourIsAnOrdinaryAlbum) {
  const std::vector<QByteArray> four{listRecord("A", "5", "6", guid('a')), listRecord("Red", "6", "6", guid('b')),
                                     listRecord("Yellow", "7", "6", guid('c')),
                                     listRecord("Blue", "8", "6", guid('d'))};
  for (std::size_t lists = 1; lists <= four.size(); ++lists) {
    std::vector<QByteArray> records(four.begin(), four.begin() + static_cast<std::ptrdiff_t>(lists));
    std::vector<QByteArray> stored(lists, titles({}));
    stored.insert(stored.begin(), albums(records));
    records.push_back(listRecord("Red", "9", "6", guid('r')));
    std::vector<QByteArray> expected = stored;
    expected.front() = albums(records);
    expected.push_back(titles({picture("1.jpg", guid('1'))}));
    EXPECT_EQ(extended(stored, {album(u"Red"_s, u"9"_s, 'r', {title(u"1.jpg"_s, '1')})}), expected) << lists;
  }
}

TEST(ExtendedPhotoFavourites, OfVaultbox1HaveNoColourLists) {
  std::vector<QByteArray> records = keyRecords();
  const auto written = extended({albums(records), titles({}), titles({}), titles({}), titles({})},
                                {album(u"Red"_s, u"5"_s, 'n', {title(u"1.jpg"_s, '1', true)})}, kVaultbox);
  records.push_back(listRecord("Red", "5", "6", guid('n')));
  EXPECT_EQ(written, (std::vector<QByteArray>{
                         albums(records), titles({}), titles({}), titles({}), titles({}),
                         titles({titleOfVaultbox1("E:\\vb-share\\Photo\\Mac\\1.jpg", zeros36(), guid('1'))})}));
}

TEST(ExtendedPhotoFavourites, GiveAListWhoseTitlesAreMissingAnEmptyOneSoThatTheNewOnesStandRight) {
  const std::vector<QByteArray> records{listRecord("A", "5", "6", guid('a')), listRecord("B", "6", "6", guid('b'))};
  const std::vector<QByteArray> expected{albums({records[0], records[1], listRecord("C", "7", "6", guid('c'))}),
                                         titles({picture("1.jpg", guid('1'))}), titles({}),
                                         titles({picture("2.jpg", guid('2'))})};
  const std::vector<NewList> added{album(u"C"_s, u"7"_s, 'c', {title(u"2.jpg"_s, '2')})};
  EXPECT_EQ(extended({albums(records), titles({picture("1.jpg", guid('1'))})}, added), expected);
  EXPECT_EQ(extended({albums(records), titles({picture("1.jpg", guid('1'))}), titles({}), titles({})}, added),
            expected)
      << "one too many";
  const QByteArray cut =
      wholeFile(photoHeader(), {albums(records), titles({picture("1.jpg", guid('1'))}), titles({})}).chopped(3);
  EXPECT_EQ(contentsOf(extendedPhotoFavourites(cut, added, kAuracore, kGuidText), 73), expected) << "cut";
}

TEST(ExtendedPhotoFavourites, LeaveOutWhatCannotBeReadOfTheListOfLists) {
  const QByteArray a = listRecord("A", "5", "6", guid('a'));
  const std::vector<NewList> added{album(u"C"_s, u"7"_s, 'c')};
  const std::vector<QByteArray> expected{albums({a, listRecord("C", "7", "6", guid('c'))}), titles({}), titles({})};
  EXPECT_EQ(extended({albums({a, listRecord("B", "6", "6", guid('b'))}).chopped(1), titles({})}, added), expected);
  EXPECT_EQ(extended({albums({a}) + "?", titles({})}, added), expected);
  QByteArray miscounted = albums({a});
  miscounted[0] = 99;
  EXPECT_EQ(extended({miscounted, titles({})}, added), expected);
  for (const QByteArray &unreadable : {QByteArray(), QByteArray("\1\0\0", 3), QByteArray("\2\0\0\0?", 5)}) {
    EXPECT_THROW(static_cast<void>(extended({unreadable, titles({})}, added)), Failure);
  }
  EXPECT_THROW(static_cast<void>(extendedPhotoFavourites(photoHeader(), added, kAuracore, kGuidText)), Failure);
}

TEST(ExtendedPhotoFavourites, KeepALastRecordWhoseFieldCountIsTooHigh) {
  std::vector<QByteArray> records = keyRecords();
  records[3].replace(field('L', "Blue") + le32(3), field('L', "Blue") + le32(4));
  QByteArray stored = picture("0.jpg", guid('0'));
  stored.replace(le32(3) + field('N', zeros36()), le32(4) + field('N', zeros36()));
  const auto written = extended({albums(records), titles({stored}), titles({}), titles({}), titles({})},
                                {album(u"Red"_s, u"5"_s, 'n', {title(u"1.jpg"_s, '1')}), album(u"A"_s, u"6"_s, 'a')});
  records.push_back(listRecord("A", "6", "6", guid('a')));
  EXPECT_EQ(written, (std::vector<QByteArray>{albums(records), titles({stored, picture("1.jpg", guid('1'))}),
                                              titles({}), titles({}), titles({}), titles({})}));
}

TEST(ExtendedPhotoFavourites, StartADamagedColourListAnew) {
  const QByteArray foreign = le32(3) + le32(5) + "abcde";
  const QByteArray empty = chunk(titles({}));
  const QByteArray body = chunk(albums(keyRecords())) + foreign + empty + empty + empty;
  const QByteArray file =
      extendedPhotoFavourites(photoHeader() + le32(static_cast<quint32>(body.size())) + body,
                              {album(u"Red"_s, u"7"_s, 'c', {title(u"1.jpg"_s, '1')})}, kAuracore, kGuidText);
  EXPECT_EQ(contentsOf(file, 73),
            (std::vector<QByteArray>{albums(keyRecords()), titles({picture("1.jpg", guid('1'))}), titles({}),
                                     titles({}), titles({})}));
}

TEST(ExtendedPhotoFavourites, BehindTheProgramsOwnEmptyListAreThoseOfANewFile) {
  const std::vector<NewList> added{album(u"A"_s, u"5"_s, 'a', {title(u"1.jpg"_s, '1')})};
  EXPECT_EQ(extendedPhotoFavourites(emptyPhotoFavourites(), added, kAuracore, kGuidText),
            newPhotoFavourites(added, kAuracore, kGuidText));
}

TEST(ExtendedPhotoFavourites, WithNothingToAddStayByteForByteBehindTheHeader) {
  for (unsigned seed = 1; seed <= 600; ++seed) {
    std::mt19937 random(seed);
    const auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
    const auto bytes = [&](unsigned limit) {
      QByteArray made;
      for (int i = below(limit); i > 0; --i) {
        made.append(static_cast<char>(below(256)));
      }
      return made;
    };
    std::vector<QByteArray> records = below(3) == 0 ? keyRecords() : std::vector<QByteArray>();
    std::vector<QByteArray> contents;
    for (int i = below(6); i > 0; --i) {
      records.push_back(listRecord(bytes(9), bytes(4), bytes(3), bytes(20)));
    }
    for (std::size_t i = 0; i < records.size(); ++i) {
      std::vector<QByteArray> songs;
      for (int k = below(4); k > 0; --k) {
        songs.push_back(below(2) == 0 ? titleRecord(bytes(30), bytes(40), bytes(20), bytes(3))
                                      : titleOfVaultbox1(bytes(30), bytes(40), bytes(20)));
      }
      contents.push_back(below(9) == 0 ? bytes(50) : titles(songs, below(2) == 0 ? "1.2" : "1.3"));
    }
    contents.insert(contents.begin(), albums(records, below(2) == 0 ? "1.2" : "1.3"));
    const QByteArray file = wholeFile(photoHeader(), contents);
    const PlayerTraits &player = seed % 3 == 0 ? kAuracore : seed % 3 == 1 ? kAuralisUtf8 : kVaultbox;
    const QByteArray again = extendedPhotoFavourites(file, {}, player, u"00000000-0000-0000-0000-0000000000BB"_s);
    ASSERT_EQ(again.mid(69), file.mid(69)) << "seed " << seed;
    const QByteArray grown = extendedPhotoFavourites(file, {album(u"New"_s, u"77"_s, 'n')}, player, kGuidText);
    std::vector<QByteArray> expected = contents;
    expected.front()[0] = static_cast<char>(records.size() + 2);
    expected.front() += listRecord("New", "77", "6", guid('n'));
    expected.push_back(titles({}));
    ASSERT_EQ(contentsOf(grown, 73), expected) << "seed " << seed;
  }
}
