// Where a track lands and under which earlier names it is found, over the whole way from the drop.
#include "TransferWorkbench.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

TrackTags tagged(const QString &author, const QString &album, const QString &title) {
  TrackTags tags;
  tags.authors = author.isEmpty() ? QStringList() : QStringList{author};
  tags.album = album;
  tags.title = title;
  return tags;
}

struct Drops {
  // The music tree after a drop of that one file.
  QStringList treeAfter(const QString &path, const TrackTags &tags) {
    bench.drop(u"Party"_s, {bench.song(path, tags)});
    return bench.musicTree();
  }
  // An identical copy of the song under that name, and how the drop of it ends.
  QString logWhenFoundAs(const QString &relativeName) {
    const QString song = bench.song(u"/m/ABBA/Gold/01 own.mp3"_s, tagged(u"ABBA"_s, u"Gold"_s, u"Waterloo"_s));
    bench.files.put(kMusic + relativeName, QByteArray(200'000, 'm'), 1000);
    bench.drop(u"Party"_s, {song});
    return bench.view.lastLog;
  }
  [[nodiscard]] QString recorded() const { return bench.sentRecords.value(0).destinationSongName; }
  [[nodiscard]] QString view() const { return bench.view.lastLog; }
  [[nodiscard]] bool hasCopied() const { return bench.processes.programs().contains(u"/bin/cp"_s); }

  TransferWorkbench bench;
};

class ServerNames : public testing::Test, protected Drops {};

const QString kWaterloo = u"ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s;

} // namespace

TEST_F(ServerNames, EachEarlierNameIsFoundAndRecorded) {
  struct Case {
    QString name;
    QString recorded;
  };
  const QList<Case> cases{
      {u"ABBA-Gold-Waterloo.mp3"_s, u"ABBA-Gold-Waterloo.mp3"_s},
      {u"01 own.mp3"_s, u"01 own.mp3"_s},
      {u"(01 own).mp3"_s, u"(01 own).mp3"_s},
      {u"(_ABBA_)-(Gold)-(Waterloo).mp3"_s, u"(_ABBA_)-(Gold)-(Waterloo).mp3"_s},
      {u"ABBA/Gold/(_ABBA_)-(Gold)-(Waterloo).mp3"_s, u"ABBA@@@@@Gold@@@@@(_ABBA_)-(Gold)-(Waterloo).mp3"_s},
      {kWaterloo, u"ABBA@@@@@Gold@@@@@ABBA-Gold-Waterloo.mp3"_s},
      {u"ABBA/Gold/01 own.mp3"_s, u"ABBA@@@@@Gold@@@@@01 own.mp3"_s},
      {u"ABBA/Gold/(01 own).mp3"_s, u"ABBA@@@@@Gold@@@@@(01 own).mp3"_s},
  };
  for (const Case &one : cases) {
    Drops fresh;
    EXPECT_EQ(fresh.logWhenFoundAs(one.name), u"The transfer has ended."_s) << one.name.toStdString();
    EXPECT_EQ(fresh.recorded(), one.recorded);
    EXPECT_FALSE(fresh.hasCopied()) << one.name.toStdString();
  }
}

// Earlier versions have placed names of this length shortened.
TEST_F(ServerNames, AnEarlierNameThatIsTooLongIsFoundShortened) {
  const QString longName(226, u'x');
  const QString parenthesised = u'(' + QString(218, u'x') + u").mp3"_s;
  const QString longTitle(215, u't');
  struct Case {
    QString ownName;
    QString title;
    QString standing;
    QString recorded;
  };
  const QList<Case> cases{
      {longName, u"Waterloo"_s, parenthesised, parenthesised},
      {longName, u"Waterloo"_s, u"ABBA/Gold/"_s + parenthesised, u"ABBA@@@@@Gold@@@@@"_s + parenthesised},
      {u"01"_s, longTitle, u'(' + longTitle + u").mp3"_s, u'(' + longTitle + u").mp3"_s},
  };
  for (const Case &one : cases) {
    Drops fresh;
    fresh.bench.files.put(kMusic + one.standing, QByteArray(200'000, 'm'), 1000);
    fresh.treeAfter(u"/m/ABBA/Gold/"_s + one.ownName + u".mp3"_s, tagged(u"ABBA"_s, u"Gold"_s, one.title));
    EXPECT_EQ(fresh.recorded(), one.recorded);
    EXPECT_FALSE(fresh.hasCopied()) << one.standing.toStdString();
  }
}

TEST_F(ServerNames, TheFlatLevelWinsOverTheFolders) {
  bench.files.put(kMusic + kWaterloo, QByteArray(200'000, 'm'), 1000);
  logWhenFoundAs(u"01 own.mp3"_s);
  EXPECT_EQ(recorded(), u"01 own.mp3"_s);
}

TEST_F(ServerNames, AReplacementKeepsTheNameThatWasThere) {
  bench.files.put(kMusic + u"(01 own).mp3"_s, QByteArray("older"), 500);
  const QString song = bench.song(u"/m/ABBA/Gold/01 own.mp3"_s, tagged(u"ABBA"_s, u"Gold"_s, u"Waterloo"_s));
  bench.drop(u"Party"_s, {song});
  EXPECT_EQ(bench.musicTree(), QStringList{u"(01 own).mp3"_s});
  EXPECT_EQ(bench.files.bytes(kMusic + u"(01 own).mp3"_s).size(), 200'000);
  EXPECT_EQ(recorded(), u"(01 own).mp3"_s);
}

TEST_F(ServerNames, AFailedReplacementLeavesNoHalfTrack) {
  bench.files.put(kMusic + kWaterloo, QByteArray("older"), 500);
  bench.processes.onRun = [this](const ToolRequest &request) -> std::optional<ToolResult> {
    bench.files.put(request.arguments.last(), QByteArray("half"), 1);
    return exited(1);
  };
  bench.drop(u"Party"_s, {bench.song(u"/m/ABBA/Gold/01 own.mp3"_s, tagged(u"ABBA"_s, u"Gold"_s, u"Waterloo"_s))});
  EXPECT_EQ(bench.musicTree(), QStringList());
  EXPECT_EQ(bench.view.lastLog, u"\"01 own.mp3\" could not be transferred."_s);
  EXPECT_EQ(bench.sentRecords.value(0).songTransferFlag, u"N"_s);
}

TEST_F(ServerNames, EachForbiddenCharacterBecomesAnUnderscoreInFoldersAndName) {
  for (const QChar c : u"\\:*?\"<>|"_s) {
    Drops fresh;
    EXPECT_EQ(fresh.treeAfter(u"/m/A%1B/C%1D/1.mp3"_s.arg(c), tagged(u"A%1B"_s.arg(c), {}, u"x%1y"_s.arg(c))),
              QStringList{c == u'\\' ? u"A_B/C_D/AB-xy.mp3"_s : u"A_B/C_D/A_B-x_y.mp3"_s})
        << QString(c).toStdString();
  }
  Drops fresh;
  EXPECT_EQ(fresh.treeAfter(u"/m/A/B/1.mp3"_s, tagged(u"AC/DC"_s, {}, u"x/y"_s)),
            QStringList{u"A/B/AC_DC-x_y.mp3"_s});
}

TEST_F(ServerNames, APathOfTwoComponentsHasNoFolder) {
  EXPECT_EQ(treeAfter(u"/1.mp3"_s, tagged(u"A"_s, {}, u"x"_s)), QStringList{u"A-x.mp3"_s});
}

TEST_F(ServerNames, APathOfThreeComponentsHasTheAlbumFolder) {
  EXPECT_EQ(treeAfter(u"/Gold/1.mp3"_s, tagged(u"A"_s, {}, u"x"_s)), QStringList{u"Gold/A-x.mp3"_s});
}

// Behind "/Music/Mac/" stay fewer than 221 characters, as long as folders can go; a plain name is never cut.
TEST_F(ServerNames, LongPlainNamesLoseTheirFoldersAndStayWhole) {
  struct Case {
    int titleLength;
    QString folders;
    int relativeLength;
  };
  const QList<Case> cases{
      {205, u"A/B/"_s, 220}, {206, u"B/"_s, 219}, {207, u"B/"_s, 220}, {208, u""_s, 219}, {220, u""_s, 231}};
  for (const Case &one : cases) {
    Drops fresh;
    const QString title(one.titleLength, u't');
    const QString landed = fresh.treeAfter(u"/m/A/B/1.mp3"_s, tagged(u"Artist"_s, {}, title)).last();
    EXPECT_EQ(landed, one.folders + u"Artist-"_s + title + u".mp3"_s);
    EXPECT_EQ(landed.size(), one.relativeLength);
  }
}

TEST_F(ServerNames, NamesOfAnyKindArrive) {
  for (const QString &name : {u"two\nlines"_s, u"-dash"_s, u"..."_s, u"\U0001F3B5 tune"_s, QString(251, u'x')}) {
    Drops fresh;
    // A file without tags stands under its own name in parentheses, one outside ISO Latin-1 under its own name.
    const QString expected = name.contains(u"\U0001F3B5"_s) ? name + u".mp3"_s : u'(' + name + u").mp3"_s;
    const QStringList tree = fresh.treeAfter(u"/m/A/B/"_s + name + u".mp3"_s, TrackTags());
    ASSERT_EQ(tree.size(), 1) << name.toStdString();
    if (name.size() < 200) {
      EXPECT_EQ(tree.first(), u"A/B/"_s + expected);
    } else {
      EXPECT_EQ(tree.first(), u'(' + QString(218, u'x') + u").mp3"_s);
    }
    EXPECT_EQ(fresh.view(), u"The transfer has ended."_s);
  }
}

} // namespace sonorel::test
