#include "favourites/FieldWriter.h"

#include "favourites/FavouritesFormat.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

QByteArray written(const QString &text, bool utf8) {
  ByteWriter data;
  writeToStream(text, 'N', data, utf8);
  return data.take();
}

} // namespace

TEST(FieldWriter, WritesKindLengthAndBytes) {
  ByteWriter data;
  writeToStream(u"Red"_s, kLeadingField, data, false);
  writeDataToStream(QByteArrayView("\x00\xff", 2), kFurtherField, data);
  EXPECT_EQ(data.take().toHex(), "4c030000005265644e0200000000ff");
}

TEST(FieldWriter, CountsTheBytesOfTheEncoding) {
  EXPECT_EQ(written(u"Bj\u00F6rk"_s, true).toHex(), "4e06000000426ac3b6726b");
  EXPECT_EQ(written(u"Bj\u00F6rk"_s, false).toHex(), "4e05000000426af6726b");
}

TEST(FieldWriter, WritesOneSubstituteForEachCharacterThatDoesNotFit) {
  EXPECT_EQ(written(u"a\u6771\u4EACb"_s, false).toHex(), "4e04000000613f3f62");
  EXPECT_EQ(written(u"\U0001F3B5!"_s, false).toHex(), "4e020000003f21");
}

TEST(FieldWriter, WritesTheLengthOfTheWholeTextButNoBytesFromTheFirstNulOn) {
  EXPECT_EQ(written(QString(u"ab\0cd"_s), false).toHex(), "4e050000006162");
  EXPECT_EQ(written(QString(u"ab\0cd"_s), true).toHex(), "4e050000006162");
}

TEST(FieldWriter, AnEmptyTextIsAFieldOfLengthNothing) {
  EXPECT_EQ(written(QString(), true).toHex(), "4e00000000");
}

TEST(FieldWriter, ATitleWithoutItemTypeHasTwoFields) {
  FavouriteTitle title{u"ignored"_s, QByteArray("CC"), QByteArray("GG"), std::nullopt};
  ByteWriter data;
  writeTitleRecord(title, u"E:\\a"_s, data, false);
  EXPECT_EQ(data.take(), QByteArray("L\x04\0\0\0E:\\a\x02\0\0\0N\x02\0\0\0CCN\x02\0\0\0GG", 27));
  title.itemType = u"1"_s;
  writeTitleRecord(title, u"E:\\a"_s, data, false);
  EXPECT_EQ(data.take(), QByteArray("L\x04\0\0\0E:\\a\x03\0\0\0N\x02\0\0\0CCN\x02\0\0\0GGN\x01\0\0\0"
                                    "1",
                                    33));
}
