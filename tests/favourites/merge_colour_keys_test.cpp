// What the merge does on colour keys: identity, appending and replacing, the copy of the keys.
#include "HandMade.h"
#include "MergeWorkbench.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kCopy = kColourCopyPath.toString();

QByteArray limitsOf(const QByteArray &red) {
  return "GREEN_ENABLED=0\r\nYELLOW_ENABLED=0\r\nRED_ENABLED=0\r\nBLUE_ENABLED=0\r\n"
         "GREEN_LIMIT=50\r\nYELLOW_LIMIT=50\r\nRED_LIMIT=" +
         red + "\r\nBLUE_LIMIT=50\r\n";
}

NewList newList(const QString &name, const QString &type, const QStringList &paths) {
  NewList list;
  list.name = name;
  list.guid = guid('n');
  for (const QString &path : paths) {
    list.titles.push_back({path, zeros36(), guid('s'), type});
  }
  return list;
}

// A share whose Red key holds the album "Gold", with the copy that belongs to it.
class MergeColourKeysTest : public testing::Test {
protected:
  explicit MergeColourKeysTest(const QString &product = u"Auralis 5"_s) : client(files, product) {
    mountShare(files, product);
    putRed({titleRecord("Gold", zeros36(), guid('1'), "2")});
    saveCopyOfRed(guid('1'), u"2"_s);
  }
  void putRed(const std::vector<QByteArray> &records) {
    files.put(kServerFile,
              wholeFile(musicHeader(), {albums(keyRecords()), titles(records), titles({}), titles({}), titles({})}));
  }
  void saveCopyOfRed(const QByteArray &titleGuid, const QString &type) {
    FavouriteLists keys(4);
    keys[0].songs.push_back({u"other path"_s, zeros36(), titleGuid, type});
    files.put(kCopy, client.propertyLists.encodeXml(dictionaryOf(keys)));
  }
  void dropAlbum(const QString &album) {
    client.track(u"@!!!Red!!!@"_s, album + u".mp3"_s, album);
    ASSERT_TRUE(client.send());
  }
  [[nodiscard]] QString red() { return client.shown().first(); }

  FakeFileSystem files;
  MergeWorkbench client;
};

class MergeOnAuracore5Test : public MergeColourKeysTest {
protected:
  MergeOnAuracore5Test() : MergeColourKeysTest(u"Auracore 5"_s) {}
};

} // namespace

TEST_F(MergeColourKeysTest, EqualContentsAndALimitOtherThan9AreReplaced) {
  dropAlbum(u"Arrival"_s);
  EXPECT_EQ(red(), u"1 Red: Arrival/2"_s);
}

TEST_F(MergeColourKeysTest, ALimitOf9Appends) {
  files.put(kLimitsPath, limitsOf("9"));
  dropAlbum(u"Arrival"_s);
  EXPECT_EQ(red(), u"1 Red: Gold/2, Arrival/2"_s);
}

TEST_F(MergeColourKeysTest, AnotherGuidOrTypeInTheCopyAppends) {
  saveCopyOfRed(guid('x'), u"2"_s);
  dropAlbum(u"Arrival"_s);
  EXPECT_EQ(red(), u"1 Red: Gold/2, Arrival/2"_s);
  putRed({titleRecord("Gold", zeros36(), guid('1'), "2")});
  saveCopyOfRed(guid('1'), u"1"_s);
  dropAlbum(u"Arrival"_s);
  EXPECT_EQ(red(), u"1 Red: Gold/2, Arrival/2"_s);
}

TEST_F(MergeColourKeysTest, ACopyThatIsMissingOrDamagedAppends) {
  for (const QByteArray &damaged : {QByteArray(), QByteArray("<plist><dict>"), QByteArray("no list"),
                                    client.propertyLists.encodeXml(QVariantMap{{u"1"_s, QVariantMap()}})}) {
    putRed({titleRecord("Gold", zeros36(), guid('1'), "2")});
    files.put(kCopy, damaged);
    client.desktop.lines.clear();
    dropAlbum(u"Arrival"_s);
    EXPECT_EQ(red(), u"1 Red: Gold/2, Arrival/2"_s) << damaged.toStdString();
    EXPECT_TRUE(client.desktop.logged(u"The copy of the colour lists cannot be read: "_s)) << damaged.toStdString();
  }
  putRed({titleRecord("Gold", zeros36(), guid('1'), "2")});
  files.erase(kCopy);
  dropAlbum(u"Arrival"_s);
  EXPECT_EQ(red(), u"1 Red: Gold/2, Arrival/2"_s);
}

TEST_F(MergeColourKeysTest, AnAlbumThatStandsThereKeepsItsPlaceWhateverItsCase) {
  files.put(kLimitsPath, limitsOf("9"));
  dropAlbum(u"Arrival"_s);
  dropAlbum(u"GOLD"_s);
  EXPECT_EQ(red(), u"1 Red: Gold/2, Arrival/2"_s);
  EXPECT_EQ(client.server().front().songs.front().guid, guid('1'));
}

TEST_F(MergeColourKeysTest, AnAlbumThatCannotBeWrittenInItsLettersIsNotPiledUp) {
  files.put(kLimitsPath, limitsOf("9"));
  dropAlbum(u"\u6771\u4EAC"_s);
  dropAlbum(u"\u6771\u4EAC"_s);
  EXPECT_EQ(red(), u"1 Red: Gold/2, ?\?/2"_s);
}

TEST_F(MergeColourKeysTest, APlaylistCalledRedReplacesTheKeysContent) {
  client.track(u"Red"_s, u"a.mp3"_s);
  client.track(u"Red"_s, u"b.mp3"_s);
  ASSERT_TRUE(client.send());
  EXPECT_EQ(red(), u"1 Red: a.mp3/1, b.mp3/1"_s);
  EXPECT_EQ(client.server().front().guid, guid('r'));
}

TEST_F(MergeColourKeysTest, AnUnknownKindOfTitleLeavesTheKeyAsItIs) {
  ASSERT_TRUE(client.merge.addPlaylistToDictionary({newList(u"Red"_s, u"3"_s, {u"x"_s})}, {}));
  EXPECT_EQ(red(), u"1 Red: Gold/2"_s);
}

TEST_F(MergeColourKeysTest, KeysThatAnotherClientMovedAreFoundByTheirNumbers) {
  files.put(kServerFile,
            wholeFile(musicHeader(),
                      {albums({listRecord("Mine", "9", "6", guid('m')), listRecord("Blue", "4", "6", guid('B')),
                               listRecord("Red", "1", "6", guid('R')), listRecord("Green", "2", "6", guid('G')),
                               listRecord("Yellow", "3", "6", guid('Y'))}),
                       titles({titleRecord("mine", zeros36(), guid('9'), "1")}), titles({}),
                       titles({titleRecord("Gold", zeros36(), guid('1'), "2")}), titles({}), titles({})}));
  files.erase(kCopy);
  dropAlbum(u"Arrival"_s);
  EXPECT_EQ(client.shown(), (QStringList{u"1 Red: Gold/2, Arrival/2"_s, u"2 Green: "_s, u"3 Yellow: "_s,
                                         u"4 Blue: "_s, u"9 @~Mine@~: mine/1"_s}));
  EXPECT_EQ(client.server().front().guid, guid('R'));
}

TEST_F(MergeColourKeysTest, ListsInThePlaceOfKeysLoseNothing) {
  files.put(kServerFile,
            wholeFile(musicHeader(),
                      {albums({listRecord("P", "1", "6", guid('1')), listRecord("Green", "2", "6", guid('2')),
                               listRecord("Yellow", "3", "6", guid('3')), listRecord("Blue", "4", "6", guid('4'))}),
                       titles({titleRecord("p", zeros36(), guid('p'), "1")}), titles({}), titles({}), titles({})}));
  client.track(u"P"_s, u"a.mp3"_s);
  client.track(u"@!!!Red!!!@"_s, u"x.mp3"_s, u"Arrival"_s);
  ASSERT_TRUE(client.send());
  // The key's number is taken: the dropped list stands under the next free one.
  EXPECT_EQ(client.shown(), (QStringList{u"1 P: p/1"_s, u"2 Green: "_s, u"3 Yellow: "_s, u"4 Blue: "_s,
                                         u"5 @~P@~: a.mp3/1"_s, u"6 @~P@~: Arrival/2"_s}));
}

TEST_F(MergeColourKeysTest, TheCopyHoldsTheFourKeysAsTheyAreAfterTheWrite) {
  dropAlbum(u"Arrival"_s);
  const FavouriteLists copy = listsOfDictionary(client.propertyLists.decode(files.bytes(kCopy)).toMap());
  ASSERT_EQ(copy.size(), 4U);
  EXPECT_EQ(copy[0].playlistName, u"Red"_s);
  EXPECT_EQ(copy[3].playlistId, u"4"_s);
  ASSERT_EQ(copy[0].songs.size(), 1U);
  EXPECT_TRUE(compareSavedDictionary(copy[0], client.server()[0]));
  EXPECT_TRUE(files.log().contains(u"write "_s + kCopy));
}

// Cut, it would never equal the key again.
TEST_F(MergeColourKeysTest, TheCopyHoldsAllTitlesOnAuralis5) {
  QStringList paths;
  for (int i = 0; i < 120; ++i) {
    paths.append(u"%1.mp3"_s.arg(i));
  }
  ASSERT_TRUE(client.merge.addPlaylistToDictionary({newList(u"Red"_s, u"1"_s, paths)}, {}));
  const FavouriteLists copy = listsOfDictionary(client.propertyLists.decode(files.bytes(kCopy)).toMap());
  EXPECT_EQ(copy[0].songs.size(), 120U);
}

TEST_F(MergeColourKeysTest, TenAlbumsStayWhileTheLimitDoesNotCount) {
  files.put(kLimitsPath, limitsOf("9"));
  for (int i = 1; i <= 10; ++i) {
    dropAlbum(u"Album %1"_s.arg(i));
  }
  EXPECT_EQ(client.server()[0].songs.size(), 11U);
}

TEST_F(MergeOnAuracore5Test, TheCopyIsCutTo99TitlesAndTheFavouritesAreNot) {
  QStringList paths;
  for (int i = 0; i < 120; ++i) {
    paths.append(u"%1.mp3"_s.arg(i));
  }
  ASSERT_TRUE(client.merge.addPlaylistToDictionary({newList(u"Red"_s, u"1"_s, paths)}, {}));
  const FavouriteLists copy = listsOfDictionary(client.propertyLists.decode(files.bytes(kCopy)).toMap());
  ASSERT_EQ(copy[0].songs.size(), 99U);
  EXPECT_EQ(copy[0].songs.front().songPath, u"21.mp3"_s);
  EXPECT_EQ(client.server()[0].songs.size(), 120U);
}

TEST_F(MergeOnAuracore5Test, TenAlbumsStayAlthoughTheLimitIsEnabled) {
  files.put(kLimitsPath, limitsOf("9").replace("RED_ENABLED=0", "RED_ENABLED=1"));
  for (int i = 1; i <= 10; ++i) {
    dropAlbum(u"Album %1"_s.arg(i));
  }
  EXPECT_EQ(client.server()[0].songs.size(), 11U);
}

TEST_F(MergeColourKeysTest, ADamagedLimitsFileEndsTheProgramAfterTheListIsWritten) {
  files.put(kLimitsPath, "RED_ENABLED=1\r\n");
  bool askedBeforeTheWrite = false;
  client.clock.onSleep = [&] { askedBeforeTheWrite = client.quitAsked; }; // the last pause is the one before it
  dropAlbum(u"Arrival"_s);
  EXPECT_TRUE(askedBeforeTheWrite);
  EXPECT_EQ(red(), u"1 Red: Arrival/2"_s);
  EXPECT_EQ(files.bytes(kLimitsPath), "RED_ENABLED=1\r\n");
}

} // namespace sonorel::test
