#include "favourites/MainDictionaryFile.h"

#include "FavouritesWorkbench.h"
#include "HandMade.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

FavouriteLists twelve() {
  FavouriteLists lists;
  for (int i = 0; i < 12; ++i) {
    lists.push_back({u"@~%1@~"_s.arg(i), QString::number(i + 5), u"6"_s, guid('a'), {}, std::nullopt});
  }
  lists[10].songs = {{u"a@@@@@b"_s, zeros36(), guid('s'), u"1"_s}, {u"c"_s, zeros36(), guid('t'), std::nullopt}};
  return lists;
}

} // namespace

TEST(MainDictionaryFile, AnEntryHasAPlaylistAndSongsOnlyWhenThereAreAny) {
  const QVariantMap dictionary = dictionaryOf(twelve());
  EXPECT_EQ(dictionary.size(), 12);
  EXPECT_EQ(dictionary.value(u"3"_s).toMap(),
            (QVariantMap{{u"Playlist"_s, QVariantMap{{u"PlaylistID"_s, u"8"_s},
                                                     {u"PlaylistName"_s, u"@~3@~"_s},
                                                     {u"LocationID"_s, u"6"_s},
                                                     {u"GUID"_s, guid('a')}}}}));
  EXPECT_EQ(dictionary.value(u"10"_s).toMap().value(u"Songs"_s).toList(),
            (QVariantList{QVariantMap{{u"SongPath"_s, u"a@@@@@b"_s},
                                      {u"CheckSum"_s, zeros36()},
                                      {u"GUID"_s, guid('s')},
                                      {u"ItemType"_s, u"1"_s}},
                          QVariantMap{{u"SongPath"_s, u"c"_s}, {u"CheckSum"_s, zeros36()}, {u"GUID"_s, guid('t')}}}));
}

TEST(MainDictionaryFile, TheOrderIsThatOfTheNumbersAlsoBehindTheTenth) {
  FakeFileSystem files;
  FavouritesWorkbench client(files);
  client.dictionaryFile.save(twelve());
  EXPECT_EQ(client.dictionaryFile.load(), twelve());
}

TEST(MainDictionaryFile, TheNameAsReadIsNoPartOfTheFile) {
  FavouriteLists lists = twelve();
  lists[0].nameAsRead = u"0"_s;
  EXPECT_FALSE(listsOfDictionary(dictionaryOf(lists)).at(0).nameAsRead);
}

TEST(MainDictionaryFile, AMissingNumberEndsTheLists) {
  QVariantMap dictionary = dictionaryOf(twelve());
  dictionary.remove(u"7"_s);
  EXPECT_EQ(listsOfDictionary(dictionary).size(), 7U);
}

TEST(MainDictionaryFile, WrongTypesReadAsAbsent) {
  const FavouriteLists lists = listsOfDictionary(
      {{u"0"_s, QVariantMap{{u"Playlist"_s, QVariantMap{{u"PlaylistID"_s, 9LL}, {u"GUID"_s, u"text"_s}}},
                            {u"Songs"_s, u"none"_s}}},
       {u"1"_s, QVariantMap{{u"Playlist"_s, 3LL}, {u"Songs"_s, QVariantList{u"x"_s}}}},
       {u"2"_s, u"no dictionary"_s}});
  ASSERT_EQ(lists.size(), 2U);
  EXPECT_EQ(lists[0].playlistId, u"9"_s);
  EXPECT_TRUE(lists[0].guid.isEmpty());
  EXPECT_TRUE(lists[0].songs.empty());
  EXPECT_EQ(lists[1].playlistName, QString());
  EXPECT_EQ(lists[1].songs, std::vector<FavouriteTitle>(1));
}

TEST(MainDictionaryFile, AFileThatIsNoDictionaryIsDamaged) {
  FakeFileSystem files;
  FavouritesWorkbench client(files);
  files.put(u"/Client/mainDict.xml"_s, client.propertyLists.encodeXml(QVariantList{u"x"_s}));
  EXPECT_THROW(static_cast<void>(client.dictionaryFile.load()), Failure);
  files.put(u"/Client/mainDict.xml"_s, "<plist><dict>");
  EXPECT_THROW(static_cast<void>(client.dictionaryFile.load()), Failure);
}
