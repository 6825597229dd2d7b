#include "FavouritesWorkbench.h"
#include "HandMade.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

QByteArray keysAnd(const std::vector<QByteArray> &records, const std::vector<QByteArray> &lists) {
  std::vector<QByteArray> all = keyRecords();
  all.insert(all.end(), records.begin(), records.end());
  std::vector<QByteArray> contents{albums(all), titles({}), titles({}), titles({}), titles({})};
  contents.insert(contents.end(), lists.begin(), lists.end());
  return wholeFile(musicHeader(), contents);
}

QByteArray party() {
  return titles({titleRecord("E:\\vb-share\\Music\\Mac\\Artist\\Song.mp3", zeros36(), guid('s'), "1")});
}

struct Validation : testing::Test {
  void connectTo(const QString &product) {
    mountShare(files, product);
    client.emplace(files, product);
  }
  std::vector<QByteArray> onServer() { return contentsOf(files.bytes(kServerFile)); }

  FakeFileSystem files;
  std::optional<FavouritesWorkbench> client;
};

} // namespace

TEST_F(Validation, WithoutAServerFileTheFourKeysAreWritten) {
  connectTo(u"Auralis 5"_s);
  EXPECT_TRUE(client->dictionary.validateOrvFile());
  EXPECT_EQ(onServer(),
            (std::vector<QByteArray>{albums(keyRecords()), titles({}), titles({}), titles({}), titles({})}));
  EXPECT_EQ(client->settings.text(u"PlaylistID"_s), u"5"_s);
  EXPECT_EQ(client->dictionaryFile.load().size(), 4U);
  EXPECT_EQ(files.bytes(u"/Client/NetMusicFavorites.orv"_s), files.bytes(kServerFile));
}

TEST_F(Validation, EveryRewriteGetsAHeaderOfItsOwn) {
  connectTo(u"Auralis 5"_s);
  EXPECT_TRUE(client->dictionary.validateOrvFile());
  const QByteArray first = files.bytes(kServerFile).mid(9, 36);
  EXPECT_TRUE(client->dictionary.validateOrvFile());
  EXPECT_NE(files.bytes(kServerFile).mid(9, 36), first);
}

TEST_F(Validation, AMainDictionaryThatCannotBeWrittenCostsNothing) {
  connectTo(u"Auralis 5"_s);
  files.put(kServerFile, wholeFile(musicHeader(), {albums({listRecord("Party", "9", "6", guid('p'))}), party()}));
  files.failPath(u"/Client/mainDict.xml"_s, FailureKind::DiskFull);
  EXPECT_TRUE(client->dictionary.validateOrvFile());
  EXPECT_EQ(onServer().size(), 6U);
  EXPECT_EQ(onServer().at(5), party());
  EXPECT_TRUE(client->desktop.logged(u"Exception in ---> <Parser><readList2> "_s));
  EXPECT_TRUE(client->desktop.logged(u"Exception in ---> <AppController><saveMainDictionary> "_s));
}

TEST_F(Validation, Vaultbox1GetsAListOfListsWithNothingInIt) {
  connectTo(u"Vaultbox 1"_s);
  EXPECT_TRUE(client->dictionary.validateOrvFile());
  EXPECT_EQ(onServer(), std::vector<QByteArray>{albums({})});
  EXPECT_EQ(client->settings.text(u"PlaylistID"_s), u"1"_s);
}

TEST_F(Validation, AnEmptyFileAndAHeaderOnlyFileCountAsNone) {
  for (const QByteArray &bytes : {QByteArray(), musicHeader(), wholeFile(musicHeader(), {albums({})})}) {
    connectTo(u"Auralis 5"_s);
    files.put(kServerFile, bytes);
    EXPECT_TRUE(client->dictionary.validateOrvFile());
    EXPECT_EQ(onServer().at(0), albums(keyRecords()));
    EXPECT_EQ(onServer().size(), 5U);
  }
}

TEST_F(Validation, WhatStandsThereIsWrittenAgainBehindAFreshHeader) {
  connectTo(u"Auralis 5"_s);
  const QByteArray before = keysAnd(
      {listRecord("Party", "9", "6", guid('p')), listRecord("A@~B", "12", "2", guid('q'))}, {party(), titles({})});
  files.put(kServerFile, before);
  EXPECT_TRUE(client->dictionary.validateOrvFile());
  EXPECT_EQ(onServer(), contentsOf(before));
  const QByteArray header = files.bytes(kServerFile).left(72);
  EXPECT_NE(header, musicHeader());
  EXPECT_EQ(header.left(9), musicHeader().left(9));
  EXPECT_EQ(header.mid(45), musicHeader().mid(45));
  EXPECT_EQ(client->settings.text(u"PlaylistID"_s), u"13"_s);
  EXPECT_EQ(client->savedCounter(), u"13"_s);
  EXPECT_EQ(client->dictionaryFile.load().at(4).playlistName, u"@~Party@~"_s);
  EXPECT_EQ(client->dictionaryFile.load().at(4).songs.at(0).songPath, u"Artist\\Song.mp3"_s);
  EXPECT_TRUE(client->desktop.lines.isEmpty()) << client->desktop.lines.join(u'\n').toStdString();
}

TEST_F(Validation, MissingKeysAreMadeAndADuplicateIdIsRenumbered) {
  connectTo(u"Auralis 5"_s);
  files.put(kServerFile, wholeFile(musicHeader(), {albums({listRecord("Old", "1", "6", guid('o')),
                                                           listRecord("A", "7", "6", guid('a')),
                                                           listRecord("B", "7", "6", guid('b'))}),
                                                   party(), titles({}), party()}));
  EXPECT_TRUE(client->dictionary.validateOrvFile());
  std::vector<QByteArray> records = keyRecords();
  records.push_back(listRecord("Old", "8", "6", guid('o')));
  records.push_back(listRecord("A", "7", "6", guid('a')));
  records.push_back(listRecord("B", "9", "6", guid('b')));
  EXPECT_EQ(onServer(), (std::vector<QByteArray>{albums(records), titles({}), titles({}), titles({}), titles({}),
                                                 party(), titles({}), party()}));
  EXPECT_EQ(client->settings.text(u"PlaylistID"_s), u"10"_s);
  EXPECT_EQ(client->savedCounter(), u"10"_s);
  QStringList saved;
  for (const FavouriteList &list : client->dictionaryFile.load()) {
    saved.append(list.playlistId + u' ' + list.playlistName);
  }
  EXPECT_EQ(saved, (QStringList{u"1 Red"_s, u"2 Green"_s, u"3 Yellow"_s, u"4 Blue"_s, u"8 Old"_s, u"7 @~A@~"_s,
                                u"9 @~B@~"_s}));
}

TEST_F(Validation, KeysThatStandBehindOtherListsComeToTheFront) {
  connectTo(u"Auralis 5"_s);
  std::vector<QByteArray> records = keyRecords();
  records.insert(records.begin(), listRecord("Party", "9", "6", guid('p')));
  files.put(kServerFile,
            wholeFile(musicHeader(), {albums(records), party(), titles({}), titles({}), titles({}), titles({})}));
  EXPECT_TRUE(client->dictionary.validateOrvFile());
  std::vector<QByteArray> ordered = keyRecords();
  ordered.push_back(listRecord("Party", "9", "6", guid('p')));
  EXPECT_EQ(onServer(),
            (std::vector<QByteArray>{albums(ordered), titles({}), titles({}), titles({}), titles({}), party()}));
}

TEST_F(Validation, AnUnreadableListOfListsIsReplacedByTheKeysAndKeptInTheBackup) {
  connectTo(u"Auralis 5"_s);
  QByteArray damaged = keysAnd({listRecord("Party", "9", "6", guid('p'))}, {party()});
  damaged[100] = static_cast<char>(damaged.at(100) ^ 1);
  files.put(kServerFile, damaged);
  EXPECT_TRUE(client->dictionary.validateOrvFile());
  EXPECT_EQ(onServer().at(0), albums(keyRecords()));
  EXPECT_EQ(files.bytes(client->backup(u".previous"_s)), damaged);
  EXPECT_TRUE(client->desktop.logged(u"NetMusicFavorites.orv: the list of lists cannot be read"_s));
}

TEST_F(Validation, AFileOfAnotherModelIsLeftAlone) {
  connectTo(u"Vaultbox 1"_s);
  const QByteArray fourFields = keysAnd({listRecord("Party", "9", "6", guid('p'))}, {party()});
  files.put(kServerFile, fourFields);
  EXPECT_FALSE(client->dictionary.validateOrvFile());
  EXPECT_EQ(files.bytes(kServerFile), fourFields);
  EXPECT_FALSE(files.exists(kServerLock));
  EXPECT_TRUE(client->desktop.logged(u"Exception in ---> <AppController><validateOrvFile> "
                                     "the server's favourites do not fit the product \"Vaultbox 1\""_s));
}

TEST_F(Validation, AShareThatDoesNotAnswerIsLeftAlone) {
  connectTo(u"Auralis 5"_s);
  const QByteArray before = keysAnd({}, {});
  files.put(kServerFile, before);
  files.failPath(kServerFile, FailureKind::Unknown);
  EXPECT_FALSE(client->dictionary.validateOrvFile());
  files.clearFailures();
  EXPECT_EQ(files.bytes(kServerFile), before);
  files.setUnknown(u"/Volumes/VB-SHARE$"_s, true);
  EXPECT_FALSE(client->dictionary.validateOrvFile());
  files.setUnknown(u"/Volumes/VB-SHARE$"_s, false);
  files.unmount(u"/Volumes/VB-SHARE$"_s);
  EXPECT_FALSE(client->dictionary.validateOrvFile());
  files.mount(u"/Volumes/VB-SHARE$"_s);
  EXPECT_EQ(files.bytes(kServerFile), before);
}

// Somebody else, who knows nothing of the lock, writes between our look and our delete.
TEST_F(Validation, AFileThatChangesMeanwhileIsReadAgain) {
  connectTo(u"Auralis 5"_s);
  files.put(kServerFile, keysAnd({}, {}));
  const QByteArray foreign = keysAnd({listRecord("Party", "9", "6", guid('p'))}, {party()});
  bool done = false;
  files.beforeOperation = [&](int) {
    if (!done && files.exists(client->backup(u".marker"_s))) {
      done = true;
      files.put(kServerFile, foreign, 2000);
    }
  };
  EXPECT_TRUE(client->dictionary.validateOrvFile());
  EXPECT_TRUE(done);
  EXPECT_EQ(onServer(), contentsOf(foreign));
}

TEST_F(Validation, AFileThatChangesAllTheTimeIsLeftAlone) {
  connectTo(u"Auralis 5"_s);
  files.put(kServerFile, keysAnd({}, {}));
  qint64 time = 2000;
  bool marked = false;
  files.beforeOperation = [&](int) {
    const bool now = files.exists(client->backup(u".marker"_s));
    if (now && !marked) {
      files.put(kServerFile, keysAnd({listRecord("A", "9", "6", guid('p'))}, {titles({})}), ++time);
    }
    marked = now;
  };
  EXPECT_FALSE(client->dictionary.validateOrvFile());
  EXPECT_EQ(time, 2003);
  EXPECT_EQ(files.modified(kServerFile), 2003);
}

TEST(UpdatePlaylistID, IsTheHighestPlusOne) {
  FakeFileSystem files;
  FavouritesWorkbench client(files);
  const auto after = [&](const QStringList &ids) {
    FavouriteLists lists;
    for (const QString &id : ids) {
      lists.emplace_back().playlistId = id;
    }
    client.dictionary.updatePlaylistID(lists);
    return client.settings.text(u"PlaylistID"_s);
  };
  EXPECT_EQ(after({}), u"1"_s);
  EXPECT_EQ(after({u"3"_s, u"20"_s, u"7"_s}), u"21"_s);
  EXPECT_EQ(after({u"12x"_s, u"abc"_s, u""_s, u" 50"_s}), u"13"_s);
  EXPECT_EQ(after({u"2147483646"_s}), u"2147483647"_s);
  EXPECT_EQ(after({u"6"_s, u"2147483647"_s, u"99999999999999999999999"_s}), u"7"_s);
  EXPECT_TRUE(client.desktop.logged(u"The PlaylistID \"2147483647\" is too high"_s));
}

TEST(CompareSavedDictionary, ComparesItemTypesAndGuidsInOrder) {
  const FavouriteTitle a{u"a"_s, {}, guid('a'), u"1"_s};
  const FavouriteTitle b{u"b"_s, {}, guid('b'), u"2"_s};
  FavouriteTitle otherPath = a;
  otherPath.songPath = u"elsewhere"_s;
  FavouriteTitle otherType = a;
  otherType.itemType = u"2"_s;
  const auto with = [](std::vector<FavouriteTitle> songs) {
    FavouriteList list;
    list.songs = std::move(songs);
    return list;
  };
  EXPECT_TRUE(compareSavedDictionary(with({}), with({})));
  EXPECT_TRUE(compareSavedDictionary(with({a, b}), with({otherPath, b})));
  EXPECT_FALSE(compareSavedDictionary(with({a, b}), with({b, a})));
  EXPECT_FALSE(compareSavedDictionary(with({a}), with({a, b})));
  EXPECT_FALSE(compareSavedDictionary(with({a}), with({otherType})));
}
