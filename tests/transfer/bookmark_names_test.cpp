#include "transfer/BookmarkNames.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

TEST(BookmarkNames, AFileHoldsTheAddressAndNoLineEnd) {
  EXPECT_EQ(shortcutText(u"http://example.org/ä"_s), u"[InternetShortcut]\nURL=http://example.org/ä"_s);
  EXPECT_EQ(schemeOf(u"[InternetShortcut]\nURL=feed://x/"_s), u"feed"_s);
  EXPECT_EQ(schemeOf(u"[InternetShortcut]\nURL="_s), QString());
}

TEST(BookmarkNames, ATitleIsCleanedAndLosesItsOuterStops) {
  EXPECT_EQ(bookmarkFileName(u"a/b:c"_s), u"a_b_c.url"_s);
  EXPECT_EQ(bookmarkFileName(u".notes"_s), u"notes.url"_s);
  EXPECT_EQ(bookmarkFileName(u"a\\b*c?d\"e<f>g|h"_s), u"a_b_c_d_e_f_g_h.url"_s);
  EXPECT_EQ(bookmarkFileName(u"two\nlines"_s), u"two\nlines.url"_s);
  EXPECT_EQ(bookmarkFileName(u"end..."_s), u"end....url"_s);
}

TEST(BookmarkNames, ATitleOfWhichNothingIsLeftHasAName) {
  EXPECT_EQ(bookmarkFileName({}), u"_.url"_s);
  EXPECT_EQ(bookmarkFileName(u"."_s), u"_.url"_s);
  EXPECT_EQ(bookmarkFileName(QString(300, u'.')), u"_.url"_s);
  EXPECT_EQ(bookmarkFileName(u"url"_s), u"url.url"_s);
  EXPECT_EQ(bookmarkFileName(u".url"_s), u"url.url"_s);
}

TEST(BookmarkNames, AFileNameHasAtMost255Bytes) {
  EXPECT_EQ(bookmarkFileName(QString(251, u'x')), QString(251, u'x') + u".url"_s);
  EXPECT_EQ(bookmarkFileName(QString(300, u'x')), QString(251, u'x') + u".url"_s);
  EXPECT_EQ(bookmarkFileName(QString(300, u'ä')), QString(125, u'ä') + u".url"_s);
  EXPECT_EQ(bookmarkFileName(u"x"_s + QString(300, u'語')), u"x"_s + QString(83, u'語') + u".url"_s);
  const QString clef = QString::fromUtf8("\xF0\x9D\x84\x9E"); // four bytes, two units
  EXPECT_EQ(bookmarkFileName(clef.repeated(100)), clef.repeated(62) + u".url"_s);
  EXPECT_EQ(bookmarkFileName(u"x"_s + clef.repeated(100)), u"x"_s + clef.repeated(62) + u".url"_s);
}

} // namespace sonorel::test
