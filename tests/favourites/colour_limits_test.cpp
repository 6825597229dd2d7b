#include "favourites/ColourLimits.h"

#include "platform/Failure.h"
#include "support/FakeClock.h"
#include "support/FakeDesktop.h"
#include "support/Fixtures.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kKept = u"/Client/Backup/_a/OrvSpecialFavouriteLimits.orv.next"_s;
const QString kPath = u"/Volumes/VB-SHARE$/System/OrvSpecialFavouriteLimits.orv"_s;

QByteArray limitsFile(const QByteArray &red, const QByteArray &redEnable = "1", const QByteArray &end = "\r\n") {
  return "GREEN_ENABLED=1" + end + "YELLOW_ENABLED=0" + end + "RED_ENABLED=" + redEnable + end + "BLUE_ENABLED=1" +
         end + "GREEN_LIMIT=100" + end + "YELLOW_LIMIT=20" + end + "RED_LIMIT=" + red + end + "BLUE_LIMIT=40" + end;
}

class ColourLimitsTest : public testing::Test {
protected:
  ColourLimitsTest() { mountShare(files); }
  QByteArray redAfter(const QByteArray &before, size_t titles, const QString &type, const QByteArray &enable = "1") {
    files.put(kPath, limitsFile(before, enable));
    FavouriteLists lists(4);
    lists[0].playlistName = u"Red"_s;
    lists[0].songs.resize(titles);
    for (FavouriteTitle &title : lists[0].songs) {
      title.itemType = type;
    }
    limits.executeLimitOperatingLogic({u"Red"_s}, lists);
    const QByteArray file = files.bytes(kPath);
    const qsizetype at = file.indexOf("RED_LIMIT=") + 10;
    return file.mid(at, file.indexOf("\r\n", at) - at);
  }

  FakeFileSystem files;
  FakeClock clock{&files};
  FakeDesktop desktop;
  int quits = 0;
  ColourLimits limits{
      {files, clock, desktop, [] { return u"/Client/Backup/_a"_s; }}, standardFolders(), [this] { ++quits; }};
};

} // namespace

TEST_F(ColourLimitsTest, LimitsFollowWhatStandsOnTheKey) {
  EXPECT_EQ(redAfter("50", 9, u"1"_s), "10");
  EXPECT_EQ(redAfter("50", 12, u"1"_s), "12");
  EXPECT_EQ(redAfter("50", 150, u"1"_s), "99");
  EXPECT_EQ(redAfter("50", 1, u"2"_s), "9");
  EXPECT_EQ(redAfter("50", 3, u"3"_s), "50");
}

TEST_F(ColourLimitsTest, OfAMixedKeyTheLastItemCounts) {
  FavouriteLists lists(4);
  lists[0].songs = {{u"a"_s, {}, {}, u"1"_s}, {u"b"_s, {}, {}, u"2"_s}};
  lists[1].songs = {{u"b"_s, {}, {}, u"2"_s}, {u"a"_s, {}, {}, u"1"_s}};
  files.put(kPath, limitsFile("50").replace("GREEN_LIMIT=100", "GREEN_LIMIT=50"));
  limits.executeLimitOperatingLogic({u"Red"_s, u"Green"_s}, lists);
  EXPECT_EQ(files.bytes(kPath), limitsFile("9").replace("GREEN_LIMIT=100", "GREEN_LIMIT=2"));
}

TEST_F(ColourLimitsTest, AKeyAbove99OrDisabledIsLeftAlone) {
  EXPECT_EQ(redAfter("100", 9, u"1"_s), "100");
  EXPECT_EQ(redAfter("50", 9, u"1"_s, "0"), "50");
}

TEST_F(ColourLimitsTest, OnlyTheDigitsAreReplaced) {
  const QByteArray edited = editedLimits(limitsFile("7"), u"#1#1#1#1#"_s, u"#12#20#7#40#"_s);
  EXPECT_EQ(edited, "GREEN_ENABLED=1\r\nYELLOW_ENABLED=1\r\nRED_ENABLED=1\r\nBLUE_ENABLED=1\r\n"
                    "GREEN_LIMIT=12\r\nYELLOW_LIMIT=20\r\nRED_LIMIT=7\r\nBLUE_LIMIT=40\r\n");
}

TEST_F(ColourLimitsTest, OtherLineEndsAndAByteOrderMarkSurvive) {
  const QByteArray file = QByteArray("\xEF\xBB\xBF") + limitsFile("100", "1", "\n").chopped(1);
  const QByteArray edited = editedLimits(file, u"#0#0#0#0#"_s, u"#1#2#3#4#"_s);
  EXPECT_EQ(edited, "\xEF\xBB\xBFGREEN_ENABLED=0\nYELLOW_ENABLED=0\nRED_ENABLED=0\nBLUE_ENABLED=0\n"
                    "GREEN_LIMIT=1\nYELLOW_LIMIT=2\nRED_LIMIT=3\nBLUE_LIMIT=4");
}

TEST_F(ColourLimitsTest, EnablingKeepsTheNumbersAndWritesOnce) {
  files.put(kPath, limitsFile("7", "0"));
  limits.enableCFLLimits();
  EXPECT_EQ(files.bytes(kPath), limitsFile("7").replace("YELLOW_ENABLED=0", "YELLOW_ENABLED=1"));
  EXPECT_EQ(limits.values()[0], (KeyLimit{1, 7}));
  const qsizetype writes = files.log().filter(u"write"_s).size();
  limits.enableCFLLimits();
  EXPECT_EQ(files.log().filter(u"write"_s).size(), writes);
}

TEST_F(ColourLimitsTest, WithoutAFileNothingHappens) {
  EXPECT_FALSE(limits.presentLimitSettings());
  limits.enableCFLLimits();
  EXPECT_FALSE(files.exists(kPath));
  EXPECT_EQ(quits, 0);
}

TEST_F(ColourLimitsTest, AFileThatLacksAKeyEndsTheProgramAndStaysAsItWas) {
  const QByteArray damaged = limitsFile("7").replace("BLUE_LIMIT=", "BLUE=");
  files.put(kPath, damaged);
  limits.enableCFLLimits();
  EXPECT_EQ(quits, 1);
  EXPECT_EQ(files.bytes(kPath), damaged);
  EXPECT_TRUE(desktop.lines.last().startsWith(
      u"Exception in ---> <AppController><problem while setting limits(setLimitInOrvFile)> "_s));
}

TEST_F(ColourLimitsTest, ReadingADamagedFileKeepsTheValues) {
  files.put(kPath, limitsFile("7"));
  EXPECT_TRUE(limits.presentLimitSettings());
  files.put(kPath, "RED_LIMIT=12\r\n");
  EXPECT_TRUE(limits.presentLimitSettings());
  EXPECT_EQ(limits.values(), (KeyLimits{{{1, 7}, {1, 100}, {0, 20}, {1, 40}}}));
  EXPECT_EQ(quits, 0);
  EXPECT_TRUE(desktop.logged(u"The limits file cannot be read: the limits file has no GREEN_ENABLED="_s));
}

TEST_F(ColourLimitsTest, ReadsTheLeadingNumberOfAnyValue) {
  const KeyLimits read =
      readLimits("GREEN_ENABLED=x\nYELLOW_ENABLED=7\nRED_ENABLED=10\nBLUE_ENABLED=1\n"
                 "GREEN_LIMIT= 12\nYELLOW_LIMIT=abc\nRED_LIMIT=-5x\nBLUE_LIMIT=99999999999999999999");
  EXPECT_EQ(read[1], (KeyLimit{0, 12}));
  EXPECT_EQ(read[2], (KeyLimit{7, 0}));
  EXPECT_EQ(read[0], (KeyLimit{1, -5}));
  EXPECT_EQ(read[3], (KeyLimit{1, 999'999'999}));
}

TEST_F(ColourLimitsTest, ExactlyOneCharacterIsReplacedByAnEnable) {
  const QByteArray file = limitsFile("7", "\xC3\xA9"
                                          "0");
  EXPECT_EQ(editedLimits(file, u"#1#0#1#1#"_s, u"#100#20#7#40#"_s), limitsFile("7", "10"));
}

TEST_F(ColourLimitsTest, AFailedWriteIsPrintedAndNothingElseIsSaid) {
  files.put(kPath, limitsFile("7", "0"));
  files.failPath(kPath, FailureKind::Other);
  limits.setLimitInOrvFile(u"#1#1#1#1#"_s, u"#1#1#1#1#"_s);
  EXPECT_TRUE(desktop.printed.isEmpty()); // it could not even be read: no edit
  files.clearFailures();
  files.clearLog();
  files.beforeOperation = [this](int) {
    if (files.log().contains(u"read "_s + kPath)) {
      files.failPath(kPath, FailureKind::Other);
    }
  };
  desktop.lines.clear();
  limits.setLimitInOrvFile(u"#1#1#1#1#"_s, u"#1#1#1#1#"_s);
  EXPECT_EQ(desktop.printed, QStringList{u"Write Limits File: Couldn't open file for writing.\n"_s});
  EXPECT_TRUE(desktop.lines.isEmpty());
  EXPECT_EQ(quits, 0);
}

TEST_F(ColourLimitsTest, TheFileIsWrittenInPlaceAndTheNewBytesAreKeptMeanwhile) {
  files.put(kPath, limitsFile("7", "0"));
  files.clearLog();
  limits.enableCFLLimits();
  EXPECT_EQ(files.log().filter(kPath).filter(u"write"_s).first(), u"write "_s + kPath);
  EXPECT_TRUE(files.log().filter(u".sonorel-"_s).filter(u"VB-SHARE"_s).isEmpty());
  EXPECT_FALSE(files.exists(kKept));
}

// The death comes at every operation of the edit in turn; the next run finds the old or the new file, whole.
TEST_F(ColourLimitsTest, AWriteThatDiesIsCompletedByTheNextRun) {
  const QByteArray old = limitsFile("7", "0");
  const QByteArray wanted = limitsFile("7").replace("YELLOW_ENABLED=0", "YELLOW_ENABLED=1");
  int cut = 0;
  for (int operation = 1;; ++operation) {
    files.put(kPath, old);
    files.dieAt(operation);
    bool died = false;
    try {
      limits.enableCFLLimits();
    } catch (const Died &) {
      died = true;
    }
    files.revive();
    const QByteArray left = files.bytes(kPath);
    cut += left != old && left != wanted;
    ColourLimits next{{files, clock, desktop, [] { return u"/Client/Backup/_a"_s; }}, standardFolders(), [] {}};
    next.completeInterruptedWrite();
    const QByteArray file = files.bytes(kPath);
    ASSERT_TRUE(file == old || file == wanted) << operation << file.toStdString();
    next.enableCFLLimits();
    ASSERT_EQ(files.bytes(kPath), wanted) << operation;
    ASSERT_FALSE(files.exists(kKept)) << operation;
    if (!died) {
      break;
    }
  }
  EXPECT_GT(cut, 0) << "no death left a file in pieces: this test shows nothing";
}

TEST_F(ColourLimitsTest, AWholeFileIsNotReplacedByWhatWasKept) {
  files.put(kPath, limitsFile("50"));
  files.makeFolders(u"/Client/Backup/_a"_s);
  files.put(kKept, limitsFile("7"));
  limits.completeInterruptedWrite();
  EXPECT_EQ(files.bytes(kPath), limitsFile("50"));
  EXPECT_FALSE(files.exists(kKept));
}

TEST_F(ColourLimitsTest, ALastNumberThatLostDigitsIsCompleted) {
  files.makeFolders(u"/Client/Backup/_a"_s);
  files.put(kKept, limitsFile("7"));
  files.put(kPath, limitsFile("7").chopped(3)); // "BLUE_LIMIT=4"
  EXPECT_TRUE(limits.presentLimitSettings());
  EXPECT_EQ(limits.values()[3], (KeyLimit{1, 40}));
  EXPECT_EQ(files.bytes(kPath), limitsFile("7"));
}

TEST_F(ColourLimitsTest, WhatWasKeptOfAnotherProductStaysThere) {
  files.makeFolders(u"/Client/Backup/_b"_s);
  files.put(u"/Client/Backup/_b/OrvSpecialFavouriteLimits.orv.next"_s, limitsFile("7"));
  files.put(kPath, "");
  limits.enableCFLLimits();
  EXPECT_EQ(files.bytes(kPath), "");
  EXPECT_EQ(quits, 1);
}

TEST_F(ColourLimitsTest, AFileThatNeverWasIsNotMadeFromWhatWasKept) {
  files.makeFolders(u"/Client/Backup/_a"_s);
  files.put(kKept, limitsFile("7"));
  limits.completeInterruptedWrite();
  EXPECT_FALSE(files.exists(kPath));
}

TEST_F(ColourLimitsTest, AFullShareGetsTheOldFileBack) {
  files.put(kPath, limitsFile("9"));
  files.setFreeBytes(kMountPoint.toString(), 0);
  limits.setLimitInOrvFile(u"#1#0#1#1#"_s, u"#100#20#10#40#"_s); // one byte more
  EXPECT_EQ(desktop.printed, QStringList{u"Write Limits File: Couldn't write the file.\n"_s});
  EXPECT_EQ(files.bytes(kPath), limitsFile("9"));
  EXPECT_FALSE(files.exists(kKept));
}

TEST_F(ColourLimitsTest, AFileThatAnotherClientIsWritingIsLookedAtOnceMore) {
  files.put(kPath, "");
  clock.onSleep = [this] { files.put(kPath, limitsFile("7")); };
  limits.enableCFLLimits();
  EXPECT_EQ(quits, 0);
  EXPECT_EQ(files.bytes(kPath), limitsFile("7").replace("YELLOW_ENABLED=0", "YELLOW_ENABLED=1"));
}

// Limits that were never read, or those of another product, must not reach a file that has become whole since.
TEST_F(ColourLimitsTest, AFileThatIsWholeOnlyAfterBothLooksIsNotEdited) {
  const auto edits = {std::function([this] { limits.enableCFLLimits(); }), std::function([this] {
                        FavouriteLists lists(4);
                        lists[0].songs.push_back({u"a"_s, {}, {}, u"1"_s});
                        limits.executeLimitOperatingLogic({u"Red"_s}, lists);
                      })};
  int quitsBefore = 0;
  for (const auto &edit : edits) {
    files.put(kPath, "");
    int pauses = 0;
    clock.onSleep = [this, &pauses] {
      if (++pauses == 2) {
        files.put(kPath, limitsFile("7"));
      }
    };
    edit();
    EXPECT_EQ(files.bytes(kPath), pauses < 2 ? QByteArray() : limitsFile("7"));
    EXPECT_EQ(quits, ++quitsBefore);
  }
}

TEST_F(ColourLimitsTest, KeysWithoutTitlesAndNamesThatAreNoKeysChangeNothing) {
  files.put(kPath, limitsFile("50"));
  limits.executeLimitOperatingLogic({u"Red"_s, u"Party"_s}, FavouriteLists(5));
  limits.executeLimitOperatingLogic({u"Blue"_s}, FavouriteLists());
  EXPECT_EQ(files.bytes(kPath), limitsFile("50"));
}

} // namespace sonorel::test
