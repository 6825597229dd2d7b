#include "link/TextEncoding.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

TEST(Windows1252, WritesWhatItHolds) {
  EXPECT_EQ(toWindows1252(u"Bj\u00F6rk"_s), QByteArray("Bj\xF6rk"));
  EXPECT_EQ(toWindows1252(u"\u20AC \u017D \u0178 \u2122 \u2019"_s), QByteArray("\x80 \x8E \x9F \x99 \x92"));
  EXPECT_EQ(toWindows1252(u"\u00A0\u00FF"_s), QByteArray("\xA0\xFF"));
  EXPECT_EQ(toWindows1252(QString()), QByteArray());
}

TEST(Windows1252, WritesOneQuestionMarkForEachCharacterItCannotHold) {
  EXPECT_EQ(toWindows1252(u"\u6771\u4EAC"_s), QByteArray("??"));
  EXPECT_EQ(toWindows1252(u"a\U0001F3B5b"_s), QByteArray("a?b")) << "a pair of surrogates is one character";
  EXPECT_EQ(toWindows1252(QString(QChar(0xD83C)) + u'x'), QByteArray("?x"));
  EXPECT_EQ(toWindows1252(u'x' + QString(QChar(0xDFB5))), QByteArray("x?"));
}

TEST(Windows1252, ComposesBeforeItWrites) {
  EXPECT_EQ(toWindows1252(u"Bjo\u0308rk"_s), QByteArray("Bj\xF6rk"));
}

TEST(Windows1252, EveryByteSurvivesReadingAndWriting) {
  QByteArray all;
  for (int byte = 0; byte < 256; ++byte) {
    all.append(static_cast<char>(byte));
  }
  const QString text = fromWindows1252(all);
  ASSERT_EQ(text.size(), 256);
  EXPECT_EQ(toWindows1252(text), all);
}

TEST(Windows1252, ReadsTheFiveBytesWithoutACharacterAsTheirOwnNumber) {
  EXPECT_EQ(fromWindows1252("\x81\x8D\x8F\x90\x9D"), u"\u0081\u008D\u008F\u0090\u009D"_s);
  EXPECT_EQ(fromWindows1252("\x80\x82\x9F"), u"\u20AC\u201A\u0178"_s);
}

TEST(StrictUtf8, RefusesWhatIsNotValid) {
  EXPECT_EQ(fromStrictUtf8("Bj\xC3\xB6rk"), u"Bj\u00F6rk"_s);
  EXPECT_EQ(fromStrictUtf8(""), QString());
  for (const char *bad : {"\xF6", "a\xC3", "\xE6\x9D", "\xC0\x80", "\xED\xA0\x80", "\xFF", "ok\x80"}) {
    EXPECT_EQ(fromStrictUtf8(bad), std::nullopt) << QByteArray(bad).toHex().toStdString();
  }
}

TEST(StrictUtf8, KeepsAByteOrderMarkAndNulCharacters) {
  EXPECT_EQ(fromStrictUtf8("\xEF\xBB\xBFx"), u"\uFEFFx"_s);
  const QByteArray withNul("a\0b", 3);
  EXPECT_EQ(fromStrictUtf8(withNul), QString::fromLatin1(withNul));
}

TEST(DecodeText, FollowsTheFlagButNeverMakesSubstitutes) {
  EXPECT_EQ(decodeText("Bj\xC3\xB6rk", true), u"Bj\u00F6rk"_s);
  EXPECT_EQ(decodeText("Bj\xC3\xB6rk", false), u"Bj\u00C3\u00B6rk"_s);
  EXPECT_EQ(decodeText("Bj\xF6rk", true), u"Bj\u00F6rk"_s) << "no valid UTF-8: read as Windows-1252";
  EXPECT_EQ(decodeText("Bj\xF6rk", false), u"Bj\u00F6rk"_s);
}

TEST(EncodeText, FollowsTheFlag) {
  EXPECT_EQ(encodeText(u"\u6771 \u00F6"_s, true), QByteArray("\xE6\x9D\xB1 \xC3\xB6"));
  EXPECT_EQ(encodeText(u"\u6771 \u00F6"_s, false), QByteArray("? \xF6"));
}

TEST(IsLatin1, HoldsUpToUnitFF) {
  EXPECT_TRUE(isLatin1(u"Bj\u00F6rk \u00FF"));
  EXPECT_TRUE(isLatin1(u""));
  EXPECT_TRUE(isLatin1(u"\u0081"));
  EXPECT_FALSE(isLatin1(u"\u0100"));
  EXPECT_FALSE(isLatin1(u"\u20AC"));
  EXPECT_FALSE(isLatin1(u"o\u0308"));
}
