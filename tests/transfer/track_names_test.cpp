#include "transfer/TrackNames.h"

#include "core/state/ShareLayout.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

TrackTags tagged(const QStringList &authors, const QString &album, const QString &title) {
  TrackTags tags;
  tags.authors = authors;
  tags.album = album;
  tags.title = title;
  return tags;
}

} // namespace

TEST(NewStyleName, JoinsArtistAlbumAndTitle) {
  EXPECT_EQ(changeSongFileName(u"/m/01.mp3"_s, tagged({u"ABBA"_s}, u"Gold"_s, u"Waterloo"_s)),
            u"ABBA-Gold-Waterloo.mp3"_s);
  EXPECT_EQ(changeSongFileName(u"/m/01.mp3"_s, tagged({u"A"_s, u"B"_s}, u"Gold"_s, u"Waterloo"_s)),
            u"A, B-Gold-Waterloo.mp3"_s);
}

TEST(NewStyleName, OneAuthorKeepsItsMarksAlbumAndTitleLoseThem) {
  EXPECT_EQ(changeSongFileName(u"/m/01.mp3"_s, tagged({u"Wham!"_s}, u"Fantastic!"_s, u"(Young) Guns?"_s)),
            u"Wham!-Fantastic-Young) Guns.mp3"_s);
  EXPECT_EQ(changeSongFileName(u"/m/01.mp3"_s, tagged({u" \"Wham!\" "_s}, {}, u"x"_s)), u"Wham!-x.mp3"_s);
}

TEST(NewStyleName, WithoutTitleTheFileNameStandsInParentheses) {
  EXPECT_EQ(changeSongFileName(u"/m/01 Intro.mp3"_s, tagged({u"ABBA"_s}, {}, {})), u"ABBA-(01 Intro).mp3"_s);
  EXPECT_EQ(changeSongFileName(u"/m/01 Intro.mp3"_s, TrackTags()), u"(01 Intro).mp3"_s);
}

TEST(NewStyleName, ATitleOfMarksOnlyIsATitleAllTheSame) {
  EXPECT_EQ(changeSongFileName(u"/m/1.mp3"_s, tagged({u"ABBA"_s}, u"Gold"_s, u"???"_s)), u"ABBA-Gold.mp3"_s);
  EXPECT_EQ(changeSongFileName(u"/m/1.mp3"_s, tagged({}, {}, u"???"_s)), u"(1).mp3"_s);
}

TEST(NewStyleName, WithoutReaderTheOwnNameStays) {
  EXPECT_EQ(changeSongFileName(u"/m/a_b.mp3"_s, std::nullopt), u"a_b.mp3"_s);
}

TEST(NewStyleName, OutsideLatin1TheOwnNameIsTakenAndLosesItsUnderscores) {
  EXPECT_EQ(changeSongFileName(u"/m/a_b.mp3"_s, tagged({u"東京"_s}, {}, u"x"_s)), u"a b.mp3"_s);
  EXPECT_EQ(changeSongFileName(u"/m/own.mp3"_s, tagged({}, {}, u"Don\u2019t"_s)), u"own.mp3"_s);
  EXPECT_EQ(changeSongFileName(u"/m/own.mp3"_s, tagged({u"Björk"_s}, {}, u"Jóga"_s)), u"Björk-Jóga.mp3"_s);
}

TEST(NewStyleName, UnderscoresBecomeBlanksAndBackslashesGo) {
  EXPECT_EQ(changeSongFileName(u"/m/1.mp3"_s, tagged({u"AC\\DC"_s}, {}, u"a_b"_s)), u"ACDC-a b.mp3"_s);
}

TEST(TrackTitle, IsTheFirstTagThatSaysSomething) {
  EXPECT_EQ(getTitleOfTrack(u"/m/1.mp3"_s, tagged({u"ABBA"_s}, u"Gold"_s, u"Waterloo?"_s)), u"Waterloo?"_s);
  EXPECT_EQ(getTitleOfTrack(u"/m/1.mp3"_s, tagged({u"ABBA"_s}, u"Gold!"_s, {})), u"Gold!"_s);
  EXPECT_EQ(getTitleOfTrack(u"/m/1.mp3"_s, tagged({u" \"AC\\DC\" "_s}, {}, {})), u"ACDC"_s);
}

TEST(TrackTitle, WithoutTagsTheFileNameLosesItsBeginning) {
  EXPECT_EQ(getTitleOfTrack(u"/m/01 Intro.mp3"_s, std::nullopt), u"Intro"_s);
  EXPECT_EQ(getTitleOfTrack(u"/m/01 Intro.mp3"_s, tagged({u"\""_s}, {}, {})), u"Intro"_s);
  EXPECT_EQ(getTitleOfTrack(u"/m/abcd.mp3"_s, TrackTags()), u"d"_s);
  EXPECT_EQ(getTitleOfTrack(u"/m/abc.mp3"_s, TrackTags()), u"bc"_s);
  EXPECT_EQ(getTitleOfTrack(u"/m/a.mp3"_s, TrackTags()), u"a"_s);
  EXPECT_EQ(getTitleOfTrack(u"/m/ab\U0001F3B5cd.mp3"_s, TrackTags()), u"cd"_s) << "no half of a pair";
}

TEST(TrackTexts, AreWhatTheNewStyleNameHolds) {
  EXPECT_EQ(trackTexts(tagged({u"Wham!"_s}, u"Fantastic!"_s, u"a\\b?"_s)),
            (TrackTexts{u"Wham!"_s, u"Fantastic"_s, u"ab"_s}));
  EXPECT_EQ(trackTexts(TrackTags()), TrackTexts());
}

TEST(ReturnsTitle, TakesWhatStandsInParentheses) {
  EXPECT_EQ(returnsTitle(u""_s), u""_s);
  EXPECT_EQ(returnsTitle(u"(Live (1997))"_s), u"Live (1997)"_s);
  EXPECT_EQ(returnsTitle(u"a (b) c"_s), u"b"_s);
  EXPECT_EQ(returnsTitle(u"plain"_s), u"plain"_s);
}

TEST(OlderName, WrapsThePartsAndMarksTheArtist) {
  EXPECT_EQ(changeSongFileNameOlderWay(u"/m/1.mp3"_s, tagged({u"Wham!"_s}, u"Gold_1"_s, u"a"_s)),
            u"(_Wham!_)-(Gold 1)-(a).mp3"_s);
  EXPECT_EQ(changeSongFileNameOlderWay(u"/m/1 x.mp3"_s, TrackTags()), u"(1 x).mp3"_s);
  EXPECT_EQ(changeSongFileNameOlderWay(u"/m/1_x.mp3"_s, std::nullopt), u"1_x.mp3"_s);
}

TEST(OlderName, AuthorsAreJoinedAndLoseTheirBackslashes) {
  EXPECT_EQ(changeSongFileNameOlderWay(u"/m/1.mp3"_s, tagged({u"AC\\DC"_s, u"B_C"_s}, u"x\\y"_s, {})),
            u"(_ACDC, B C_)-(x\\y)-(1).mp3"_s);
  EXPECT_EQ(changeSongFileNameOlderWay(u"/m/1 x.mp3"_s, tagged({u"ABBA"_s}, {}, {})), u"(_ABBA_)-(1 x).mp3"_s);
}

TEST(OlderName, QuotesOfAnAuthorStayUntilTheNameIsCleaned) {
  const QString name = changeSongFileNameOlderWay(u"/m/1.mp3"_s, tagged({u"\"Weird\" Al"_s}, {}, u"a:b"_s));
  EXPECT_EQ(name, u"(_\"Weird\" Al_)-(a:b).mp3"_s);
  EXPECT_EQ(cleanedName(name), u"(__Weird_ Al_)-(a_b).mp3"_s);
}

TEST(OlderName, OutsideLatin1TheOwnNameIsTakenAndLosesItsUnderscores) {
  EXPECT_EQ(changeSongFileNameOlderWay(u"/m/a_b.mp3"_s, tagged({u"東京"_s}, {}, u"x"_s)), u"a b.mp3"_s);
  EXPECT_EQ(changeSongFileNameOlderWay(u"/m/own.mp3"_s, tagged({u"Björk"_s}, {}, u"Jóga"_s)),
            u"(_Björk_)-(Jóga).mp3"_s);
}

TEST(NameLimit, NamesBelowItStay) {
  EXPECT_EQ(truncateFileName(QString(220, u'x')), QString(220, u'x'));
}

TEST(NameLimit, ANameInOnePairOfParenthesesBecomes220Characters) {
  EXPECT_EQ(truncateFileName(u'(' + QString(228, u'x') + u')'), u'(' + QString(218, u'x') + u')');
  EXPECT_EQ(truncateFileName(u'(' + QString(219, u'x') + u')').size(), 220);
}

TEST(NameLimit, APlainNameIsNeverCut) {
  EXPECT_EQ(truncateFileName(QString(230, u'x')).size(), 230);
}

TEST(NameLimit, LeadingPartsAreDroppedUntilItFits) {
  const QString last = u'(' + QString(100, u'c') + u')';
  EXPECT_EQ(truncateFileName(u"("_s + QString(60, u'a') + u")-("_s + QString(64, u'b') + u")-"_s + last),
            u"("_s + QString(64, u'b') + u")-"_s + last);
  EXPECT_EQ(truncateFileName(u"(a)-("_s + QString(230, u'b') + u")"_s), u'(' + QString(218, u'b') + u')');
}

TEST(NameLimit, ACutNeverLeavesHalfAPair) {
  const QString pairs = QString::fromUcs4(U"\U0001F3B5").repeated(120);
  const QString cut = truncateFileName(u"("_s + pairs + u")"_s);
  EXPECT_TRUE(cut.isValidUtf16());
  EXPECT_TRUE(cut.endsWith(u')'));
  EXPECT_LE(cut.size(), 220);
}

TEST(NameLimit, FoldersAreDroppedBeforeTheNameIsCut) {
  const QString name = QString(200, u'n') + u".mp3"_s;
  EXPECT_EQ(shortenedRelativeName(u"Artist Name/Album Name/"_s + name), u"Album Name/"_s + name);
  EXPECT_EQ(shortenedRelativeName(u"A/B/"_s + name), u"A/B/"_s + name);
  EXPECT_EQ(shortenedRelativeName(u"A/B/("_s + QString(230, u'n') + u").mp3"_s),
            u"("_s + QString(218, u'n') + u").mp3"_s);
}

TEST(NameLimit, TheFolderOfALimitedNameStays) {
  EXPECT_EQ(withinNameLimit(u"Album/("_s + QString(230, u'n') + u").mp3"_s),
            u"Album/("_s + QString(218, u'n') + u").mp3"_s);
}

TEST(HierarchyFolder, ComesFromTheSourcePath) {
  EXPECT_EQ(hierarchyFolder(u"/music/Artist/Album/1.mp3"_s, true), u"Artist/Album/"_s);
  EXPECT_EQ(hierarchyFolder(u"/music/Artist/Album/1.mp3"_s, false), u"Album/"_s);
  EXPECT_EQ(hierarchyFolder(u"/Album/1.mp3"_s, true), u"Album/"_s);
  EXPECT_EQ(hierarchyFolder(u"/1.mp3"_s, true), u""_s);
  EXPECT_EQ(hierarchyFolder(u"/m/A:\\*?\"<>|/B|C/1.mp3"_s, true), u"A________/B_C/"_s);
}

} // namespace sonorel
