// Bookmarks on their way onto the share, as pairs of a drag and as files.
#include "TransferWorkbench.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kFolder = u"/Volumes/VB-SHARE$/Favorites/Mac/"_s;
const QString kEnded = u"The transfer has ended."_s;
const QString kLost = u"The connection to the product was lost. These items were not transferred:\n"_s;
const QString kNotSupported = u" was not transferred because this kind of file or bookmark is not supported."_s;

class BookmarkItemsTest : public testing::Test {
protected:
  BookmarkItemsTest() {
    bench.files.makeFolders(u"/private/tmp"_s);
    bench.scripts.onConvert = [this](const QString &path) -> std::optional<QString> {
      bench.files.put(path.chopped(7) + u".url"_s, kText);
      return std::nullopt;
    };
  }
  void pairs(const QStringList &titles, const QStringList &urls) {
    bench.intake.handleSafariDragAndDrop({{}, {{u"Titles"_s, titles}, {u"Urls"_s, urls}}});
  }
  void expectLost(const QString &rest) const {
    EXPECT_EQ(bench.view.lastLog, kLost + rest);
    EXPECT_TRUE(bench.view.calls.contains(u"setProgressBar 100"_s));
    EXPECT_EQ(bench.view.callsStartingWith(u"setDockIcon"_s),
              (QStringList{u"setDockIcon Transfer"_s, u"setDockIcon Connect"_s, u"setDockIcon Disconnect"_s}));
  }
  QStringList folder() const {
    QStringList names;
    for (const QString &name : bench.files.tree(kFolder.chopped(1)).keys()) {
      names.append(name);
    }
    return names;
  }

  const QByteArray kText = "[InternetShortcut]\nURL=http://x/";
  TransferWorkbench bench;
};

} // namespace

TEST_F(BookmarkItemsTest, APairIsWrittenUnderItsTitle) {
  pairs({u"a/b:c"_s, u"Zweite Seite ä"_s}, {u"http://one/"_s, u"http://two/?q=ä"_s});
  bench.run();
  EXPECT_EQ(bench.files.bytes(kFolder + u"a_b_c.url"_s), QByteArray("[InternetShortcut]\nURL=http://one/"));
  EXPECT_EQ(bench.files.bytes(kFolder + u"Zweite Seite ä.url"_s),
            QByteArray("[InternetShortcut]\nURL=http://two/?q=\xC3\xA4"));
  EXPECT_EQ(bench.files.mode(kFolder.chopped(1)), 0777U);
  EXPECT_EQ(bench.view.lastLog, kEnded);
  EXPECT_EQ(
      bench.view.callsStartingWith(u"setProgressBar"_s),
      (QStringList{u"setProgressBar 0"_s, u"setProgressBar 50"_s, u"setProgressBar 100"_s, u"setProgressBar 0"_s}));
  EXPECT_EQ(bench.sent, QStringList{u"collections"_s});
}

TEST_F(BookmarkItemsTest, AProductThatWasNeverFilledGetsItsFolders) {
  bench.files.erase(u"/Volumes/VB-SHARE$/Favorites"_s);
  pairs({u"a"_s}, {u"http://one/"_s});
  bench.run();
  EXPECT_EQ(folder(), QStringList{u"a.url"_s});
}

TEST_F(BookmarkItemsTest, TwoEqualTitlesLeaveTheLastAddress) {
  pairs({u"a"_s, u"a"_s}, {u"http://one/"_s, u"http://two/"_s});
  bench.run();
  EXPECT_EQ(folder(), QStringList{u"a.url"_s});
  EXPECT_EQ(bench.files.bytes(kFolder + u"a.url"_s), QByteArray("[InternetShortcut]\nURL=http://two/"));
}

TEST_F(BookmarkItemsTest, OddTitlesArriveUnderOneNameEach) {
  const QString long300(300, u'x');
  pairs({u"..."_s, long300, u"two\nlines"_s, u"\\/:*?\"<>|"_s, {}},
        {u"http://1/"_s, u"http://2/"_s, u"http://3/"_s, u"http://4/"_s, u"http://5/"_s});
  bench.run();
  EXPECT_EQ(folder(),
            (QStringList{u"_.url"_s, u"_________.url"_s, u"two\nlines.url"_s, QString(251, u'x') + u".url"_s}));
  EXPECT_EQ(bench.files.bytes(kFolder + u"_.url"_s), QByteArray("[InternetShortcut]\nURL=http://5/"));
  EXPECT_EQ(bench.view.lastLog, kEnded);
}

TEST_F(BookmarkItemsTest, AnAddressOfAMegabyteIsWrittenWhole) {
  const QString address = u"http://x/"_s + QString(1'000'000, u'a');
  pairs({u"a"_s}, {address});
  bench.run();
  EXPECT_EQ(bench.files.bytes(kFolder + u"a.url"_s).size(), 23 + 9 + 1'000'000);
}

TEST_F(BookmarkItemsTest, FeedsAndLocalFilesAreRefused) {
  pairs({u"News"_s, u"Local"_s, u"Shout"_s, u"None"_s},
        {u"feed://x/"_s, u"file:///etc/passwd"_s, u"FILE:///x"_s, QString()});
  bench.run();
  EXPECT_EQ(folder(), (QStringList{u"None.url"_s, u"Shout.url"_s}));
  EXPECT_EQ(bench.view.lastLog,
            u"\"News.url\""_s + kNotSupported + u"\n\"Local\""_s + kNotSupported + u'\n' + kEnded);
}

TEST_F(BookmarkItemsTest, ARefusedOneBringsTheLogToTheFront) {
  pairs({u"News"_s}, {u"feed://x/"_s});
  bench.view.calls.clear();
  bench.run();
  EXPECT_EQ(bench.view.callsStartingWith(u"windowFrontCentre"_s).size(), 1);
  EXPECT_EQ(bench.view.callsStartingWith(u"selectTab 1"_s).size(), 2) << "at the start, and for the refusal";
}

TEST_F(BookmarkItemsTest, OneThatCannotBeWrittenEndsTheTransfer) {
  bench.files.failPath(kFolder + u"b.url"_s, FailureKind::Other);
  pairs({u"a"_s, u"b"_s, u"c"_s}, {u"http://1/"_s, u"http://2/"_s, u"http://3/"_s});
  bench.run();
  EXPECT_EQ(folder(), QStringList{u"a.url"_s});
  EXPECT_EQ(bench.view.lastLog, u"\"b.url\" could not be transferred.\nb.url\nc.url\n\n"_s + kEnded);
  EXPECT_EQ(bench.view.icon, u"Connect"_s);
  EXPECT_TRUE(bench.view.calls.contains(u"setProgressBar 100"_s));
  EXPECT_TRUE(bench.view.calls.contains(u"windowFrontCentre"_s));
  EXPECT_EQ(bench.view.transfersCompleted, 1);
}

TEST_F(BookmarkItemsTest, AFullDiskLeavesNoEmptyBookmark) {
  bench.files.setFreeBytes(kMountPoint.toString(), 10);
  pairs({u"a"_s}, {u"http://1/"_s});
  bench.run();
  EXPECT_EQ(folder(), QStringList());
}

TEST_F(BookmarkItemsTest, AShareThatIsGoneIsReportedAsNotWritten) {
  pairs({u"a"_s}, {u"http://1/"_s});
  bench.files.unmount(kMountPoint.toString());
  bench.run();
  EXPECT_EQ(bench.view.lastLog, u"\"a.url\" could not be transferred.\na.url\n"_s);
  EXPECT_EQ(bench.view.icon, u"Disconnect"_s);
}

TEST_F(BookmarkItemsTest, ABookmarkFileIsConvertedAndCopied) {
  bench.files.put(u"/m/Page.webloc"_s, "<plist/>");
  bench.files.put(u"/private/tmp/Page.webloc"_s, "x");
  bench.drop(u"Finder"_s, {u"/m/Page.webloc"_s});
  EXPECT_EQ(bench.files.bytes(kFolder + u"Page.url"_s), kText);
  EXPECT_FALSE(bench.files.exists(u"/private/tmp/Page.webloc"_s)) << "the drag file";
  EXPECT_EQ(bench.files.mode(kFolder.chopped(1)), 0755U);
  EXPECT_FALSE(bench.files.exists(u"/m/Page.url"_s));
  EXPECT_TRUE(bench.files.exists(u"/m/Page.webloc"_s));
  EXPECT_EQ(bench.view.lastLog, kEnded);
}

TEST_F(BookmarkItemsTest, TheConverterEndsWithTheTransferItServes) {
  std::stop_source stop;
  bench.transfer.setStopToken(stop.get_token());
  bench.files.put(u"/m/Page.webloc"_s, "<plist/>");
  EXPECT_TRUE(bench.transfer.transferBookmark(u"/m/Page.webloc"_s));
  EXPECT_FALSE(bench.scripts.stop.stop_requested());
  stop.request_stop();
  EXPECT_TRUE(bench.scripts.stop.stop_requested());
}

TEST_F(BookmarkItemsTest, ACompanionOfTheCopyIsRemoved) {
  bench.files.put(kFolder + u"._Page.url"_s, "x");
  bench.files.put(u"/m/Page.url"_s, kText);
  bench.drop(u"Finder"_s, {u"/m/Page.url"_s});
  EXPECT_EQ(folder(), QStringList{u"Page.url"_s});
}

TEST_F(BookmarkItemsTest, ADroppedUrlFileIsCopiedAndGoes) {
  bench.files.put(u"/m/Page.url"_s, kText);
  bench.files.put(u"/m/Other.URL"_s, kText);
  bench.drop(u"Finder"_s, {u"/m/Page.url"_s, u"/m/Other.URL"_s});
  EXPECT_EQ(folder(), (QStringList{u"Other.URL"_s, u"Page.url"_s}));
  EXPECT_FALSE(bench.files.exists(u"/m/Page.url"_s));
  EXPECT_FALSE(bench.files.exists(u"/m/Other.URL"_s));
  EXPECT_TRUE(bench.scripts.converted.isEmpty());
}

TEST_F(BookmarkItemsTest, AUrlFileBeforeAnotherFileIsNoPair) {
  bench.files.put(u"/m/Page.url"_s, kText);
  bench.drop(u"Finder"_s, {u"/m/Page.url"_s, bench.song(u"/m/A/B/1.mp3"_s, {})});
  EXPECT_EQ(folder(), QStringList{u"Page.url"_s});
  EXPECT_EQ(bench.musicTree().size(), 1);
}

TEST_F(BookmarkItemsTest, NamesOnTheShareAreCleaned) {
  bench.files.put(u"/m/What: is?.webloc"_s, "<plist/>");
  bench.drop(u"Finder"_s, {u"/m/What: is?.webloc"_s});
  EXPECT_EQ(folder(), QStringList{u"What_ is_.url"_s});
}

TEST_F(BookmarkItemsTest, OneThatIsThereIsNotCopiedAgainButItsDragFileGoes) {
  bench.files.put(kFolder + u"Page.url"_s, "old");
  bench.files.put(u"/m/Page.webloc"_s, "<plist/>");
  bench.files.put(u"/private/tmp/Page.webloc"_s, "x");
  bench.drop(u"Finder"_s, {u"/m/Page.webloc"_s});
  EXPECT_EQ(bench.files.bytes(kFolder + u"Page.url"_s), QByteArray("old"));
  EXPECT_FALSE(bench.files.exists(u"/private/tmp/Page.webloc"_s));
  EXPECT_TRUE(bench.scripts.converted.isEmpty());
  EXPECT_EQ(bench.view.lastLog, kEnded);
}

TEST_F(BookmarkItemsTest, ADroppedFileOfTheShareItselfStays) {
  bench.files.put(kFolder + u"Page.url"_s, kText);
  bench.drop(u"Finder"_s, {kFolder + u"Page.url"_s});
  EXPECT_EQ(bench.files.bytes(kFolder + u"Page.url"_s), kText);
}

TEST_F(BookmarkItemsTest, ABookmarkThatCannotBeConvertedIsLoggedAndHoldsNothingUp) {
  bench.scripts.onConvert = [](const QString &) { return u"no property list"_s; };
  bench.files.put(u"/m/Page.webloc"_s, "junk");
  bench.drop(u"Finder"_s, {u"/m/Page.webloc"_s, u"/m/gone.webloc"_s});
  EXPECT_EQ(folder(), QStringList());
  EXPECT_EQ(bench.desktop.lines,
            (QStringList{u"Bookmark convertion AppleScript failed: no property list"_s,
                         u"Bookmark convertion AppleScript failed: no bookmark file: /m/gone.webloc"_s}));
  EXPECT_EQ(bench.view.lastLog, kEnded);
}

TEST_F(BookmarkItemsTest, ACopyThatFailsLeavesNothingHalfAndNothingBehind) {
  bench.files.put(u"/m/Page.webloc"_s, "<plist/>");
  bench.files.failPath(kFolder + u"Page.url"_s, FailureKind::Other);
  bench.drop(u"Finder"_s, {u"/m/Page.webloc"_s});
  bench.files.clearFailures();
  EXPECT_EQ(folder(), QStringList());
  EXPECT_FALSE(bench.files.exists(u"/m/Page.url"_s)) << "the converted file";
}

TEST_F(BookmarkItemsTest, AnExceptionGoesOnWithTheNextItemWhileConnected) {
  bench.files.put(u"/m/Page.url"_s, kText);
  bench.files.put(u"/m/Next.url"_s, kText);
  bench.files.put(u"/private/tmp/Page.url"_s, "x");
  bench.deliver(u"Finder"_s, {u"/m/Page.url"_s, u"/m/Next.url"_s});
  bench.files.failPath(kFolder + u"Page.url"_s, FailureKind::Unknown);
  bench.run();
  EXPECT_EQ(folder(), QStringList{u"Next.url"_s});
  EXPECT_FALSE(bench.files.exists(u"/private/tmp/Page.url"_s)) << "the drag file";
  EXPECT_TRUE(bench.files.exists(u"/m/Page.url"_s));
}

TEST_F(BookmarkItemsTest, AnExceptionWithoutTheShareEndsWithTheList) {
  bench.files.put(u"/m/Page.url"_s, kText);
  bench.deliver(u"Finder"_s, {u"/m/Page.url"_s, u"/m/Next.url"_s});
  bench.files.failPath(kFolder + u"Page.url"_s, FailureKind::Unknown);
  bench.files.beforeOperation = [this](int) {
    if (bench.files.log().constLast() == u"presence "_s + kFolder + u"Page.url"_s) {
      bench.files.unmount(kMountPoint.toString());
    }
  };
  bench.run();
  expectLost(u"Page.url\nNext.url\n"_s);
}

TEST_F(BookmarkItemsTest, AShareThatIsLostDuringTheConversionEndsWithTheList) {
  bench.scripts.onConvert = [this](const QString &) {
    bench.files.unmount(kMountPoint.toString());
    return u"no answer"_s;
  };
  bench.files.put(u"/m/Page.webloc"_s, "<plist/>");
  bench.drop(u"Finder"_s, {u"/m/Page.webloc"_s, u"/m/Next.url"_s});
  expectLost(u"Page.webloc\nNext.url\n"_s);
}

TEST_F(BookmarkItemsTest, AShareThatIsLostDuringACancelIsNotTold) {
  bench.scripts.onConvert = [this](const QString &) {
    bench.board.isCancel = true;
    bench.files.unmount(kMountPoint.toString());
    return u"no answer"_s;
  };
  bench.files.put(u"/m/Page.webloc"_s, "<plist/>");
  bench.drop(u"Finder"_s, {u"/m/Page.webloc"_s, u"/m/Next.url"_s});
  EXPECT_EQ(bench.view.lastLog, u"The transfer was cancelled."_s);
}

TEST_F(BookmarkItemsTest, AFullDiskIsTold) {
  bench.files.put(u"/m/Page.webloc"_s, "<plist/>");
  bench.files.setFreeBytes(kMountPoint.toString(), 0);
  bench.drop(u"Finder"_s, {u"/m/Page.webloc"_s});
  EXPECT_EQ(bench.view.lastLog,
            u"There is not enough free space on Auracore 5. These items were not transferred:\nPage.webloc\n"_s);
}

TEST_F(BookmarkItemsTest, TheRestIsListedOncePerBookmark) {
  bench.deliver(u"Finder"_s, {u"/m/gone.mp3"_s});
  pairs({u"a"_s, u"b"_s}, {u"http://1/"_s, u"http://2/"_s});
  bench.files.unmount(kMountPoint.toString());
  bench.run();
  EXPECT_EQ(bench.view.lastLog, kLost + u"gone.mp3\na.url\nb.url\n"_s);
}

} // namespace sonorel::test
