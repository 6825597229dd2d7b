// Where a track lands when its names are at the borders: the limit of 221, the nine characters, odd file names.
#include "TransferWorkbench.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kSource = u"/m/Ann/First/s.mp3"_s; // "Ann/First/" are 10 characters, "First/" 6

class NamesOnShareTest : public testing::Test {
protected:
  // The place below the music folder of a track with that new-style name.
  static QString placeOf(const QString &newName, const QString &source = kSource) {
    TransferWorkbench bench;
    bench.files.put(source, QByteArray(200'000, 'm'));
    bench.board.replaceRecords(false, {{u"P"_s, source, {}, {}, u"N"_s}});
    EXPECT_TRUE(bench.transfer.transferSoundFile(source, newName, 0, 1));
    const QStringList tree = bench.musicTree();
    QString recorded = bench.board.records(false).first().destinationSongName;
    EXPECT_EQ(QStringList{recorded.replace(u"@@@@@"_s, u"/"_s)}, tree);
    return tree.value(0);
  }
  static QString dropped(const QString &source, const std::optional<TrackTags> &tags = TrackTags()) {
    TransferWorkbench bench;
    bench.files.put(source, QByteArray(200'000, 'm'));
    if (tags) {
      bench.tags.set(source, *tags);
    }
    bench.drop(u"Party"_s, {source});
    EXPECT_EQ(bench.view.lastLog, u"The transfer has ended."_s);
    return bench.musicTree().join(u'|');
  }
  static QString x(int count) { return QString(count, u'x'); }
};

} // namespace

TEST_F(NamesOnShareTest, APlainNameLosesFoldersAndIsNeverCut) {
  EXPECT_EQ(placeOf(x(206) + u".mp3"_s), u"Ann/First/"_s + x(206) + u".mp3"_s) << "220 in all";
  EXPECT_EQ(placeOf(x(207) + u".mp3"_s), u"First/"_s + x(207) + u".mp3"_s) << "221 with both folders";
  EXPECT_EQ(placeOf(x(208) + u".mp3"_s), u"First/"_s + x(208) + u".mp3"_s);
  EXPECT_EQ(placeOf(x(210) + u".mp3"_s), u"First/"_s + x(210) + u".mp3"_s) << "220 with one folder";
  EXPECT_EQ(placeOf(x(211) + u".mp3"_s), x(211) + u".mp3"_s);
  EXPECT_EQ(placeOf(x(226) + u".mp3"_s), x(226) + u".mp3"_s) << "230, too long and plain";
}

TEST_F(NamesOnShareTest, ANameInOnePairOfParenthesesIsCutTo220BeforeItsExtension) {
  const QString cut = u'(' + x(218) + u").mp3"_s;
  EXPECT_EQ(placeOf(u'(' + x(214) + u").mp3"_s), u'(' + x(214) + u").mp3"_s) << "220 with its extension";
  EXPECT_EQ(placeOf(u'(' + x(218) + u").mp3"_s), cut) << "220 without its extension";
  EXPECT_EQ(placeOf(u'(' + x(219) + u").mp3"_s), cut) << "221";
  EXPECT_EQ(placeOf(u'(' + x(220) + u").mp3"_s), cut) << "222";
  EXPECT_EQ(placeOf(u'(' + x(228) + u").mp3"_s), cut) << "230";
}

TEST_F(NamesOnShareTest, ANameOfPartsLosesItsFirstPartsFrom221On) {
  const auto parts = [](int second) { return u"(aa)-("_s + x(second) + u").mp3"_s; };
  EXPECT_EQ(placeOf(parts(213)), parts(213)) << "220 without its extension";
  EXPECT_EQ(placeOf(parts(214)), u'(' + x(214) + u").mp3"_s) << "221";
  EXPECT_EQ(placeOf(parts(215)), u'(' + x(215) + u").mp3"_s) << "222";
  EXPECT_EQ(placeOf(parts(223)), u'(' + x(218) + u").mp3"_s) << "230: what is left is cut as well";
}

TEST_F(NamesOnShareTest, ACutKeepsPairsOfSurrogatesWhole) {
  const QString note = QString::fromUcs4(U"\U0001F3B5");
  EXPECT_EQ(placeOf(u'(' + note.repeated(110) + u").mp3"_s), u'(' + note.repeated(109) + u").mp3"_s)
      << "the 219th unit is the second half of a pair";
  EXPECT_EQ(placeOf(u"(x"_s + note.repeated(110) + u").mp3"_s), u"(x"_s + note.repeated(108) + u").mp3"_s)
      << "the 219th unit is the first half of a pair";
}

TEST_F(NamesOnShareTest, TheNineCharactersGoFromFoldersAndNames) {
  EXPECT_EQ(placeOf(u"a/b\\c:d*e?f\"g<h>i|j.mp3"_s, u"/m/A\\:*?\"<>|/B|C/1.mp3"_s),
            u"A________/B_C/a_b_c_d_e_f_g_h_i_j.mp3"_s);
}

TEST_F(NamesOnShareTest, FilesWithoutTagsStandInParentheses) {
  EXPECT_EQ(dropped(u"/m/A/B/01 Intro.mp3"_s), u"A/B/(01 Intro).mp3"_s);
  EXPECT_EQ(dropped(u"/m/A/B/01 Intro.mp3"_s, std::nullopt), u"A/B/01 Intro.mp3"_s);
}

TEST_F(NamesOnShareTest, OddFileNamesLandUnderThem) {
  EXPECT_EQ(dropped(u"/m/A/B/two\nlines.mp3"_s), u"A/B/(two\nlines).mp3"_s);
  EXPECT_EQ(dropped(u"/m/A/B/-dash.mp3"_s), u"A/B/(-dash).mp3"_s);
  EXPECT_EQ(dropped(u"/m/A/B/....mp3"_s), u"A/B/(...).mp3"_s);
  EXPECT_EQ(dropped(u"/m/.../-B\n/1.mp3"_s), u".../-B\n/(1).mp3"_s);
  EXPECT_EQ(dropped(u"/m/A/B/\U0001F3B5.mp3"_s), u"A/B/\U0001F3B5.mp3"_s);
  EXPECT_EQ(dropped(u"/m/東京/大阪/x_y.mp3"_s, TrackTags{{u"東京"_s}, {}, u"t"_s, {}}), u"東京/大阪/x y.mp3"_s);
  EXPECT_EQ(dropped(u"/m/A/B/"_s + x(251) + u".mp3"_s), u"("_s + x(218) + u").mp3"_s);
}

TEST_F(NamesOnShareTest, TagsOfOnlyMarksMakeNoEmptyName) {
  EXPECT_EQ(dropped(u"/m/A/B/1.mp3"_s, TrackTags{{u" "_s}, u"???"_s, u"-"_s, {}}), u"A/B/(1).mp3"_s);
  EXPECT_EQ(dropped(u"/m/A/B/1.mp3"_s, TrackTags{{u"..."_s}, u"???"_s, u"-"_s, {}}), u"A/B/....mp3"_s);
}

TEST_F(NamesOnShareTest, TheMusicFolderIsMadeWithAllThatIsMissing) {
  TransferWorkbench bench;
  bench.files.erase(u"/Volumes/VB-SHARE$/Music"_s);
  bench.files.put(kSource, QByteArray(200'000, 'm'));
  EXPECT_TRUE(bench.transfer.transferSoundFile(kSource, u"n.mp3"_s, 0, 1));
  EXPECT_EQ(bench.musicTree(), QStringList{u"Ann/First/n.mp3"_s});
  for (const QString &folder : {u"/Music"_s, u"/Music/Mac"_s, u"/Music/Mac/Ann"_s, u"/Music/Mac/Ann/First"_s}) {
    EXPECT_EQ(bench.files.mode(kMountPoint.toString() + folder), 0777U) << folder.toStdString();
  }
}

TEST_F(NamesOnShareTest, AnOlderNameThatLosesItsArtistLeavesItsAlbumFolder) {
  TransferWorkbench bench;
  TrackTags tags;
  tags.authors = QStringList{u"Ann"_s};
  tags.title = x(197);
  const QString song = bench.song(kSource, tags);
  EXPECT_TRUE(bench.transfer.transferSoundFile(song, u"short.mp3"_s, 0, 1));
  EXPECT_TRUE(bench.files.exists(kMusic + u"Ann/First/short.mp3"_s));
  EXPECT_TRUE(bench.files.exists(kMusic + u"First"_s)) << "the older name has 211 characters, 221 with both folders";
}

} // namespace sonorel::test
