#include "products/AddressField.h"

#include <gtest/gtest.h>

#include "support/Printers.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

TEST(AddressFieldTest, AddressPassesUnchanged) {
  EXPECT_EQ(controlTextDidChange(u"192.168.100.200"_s), u"192.168.100.200"_s);
  EXPECT_EQ(controlTextDidChange({}), QString());
}

TEST(AddressFieldTest, SixteenthCharacterIsDeleted) {
  EXPECT_EQ(controlTextDidChange(u"192.168.100.2001"_s), u"192.168.100.200"_s);
  EXPECT_EQ(controlTextDidChange(u"12345678901234567"_s), u"1234567890123456"_s) << "one at a time";
}

TEST(AddressFieldTest, FourthFullStopIsUndone) {
  EXPECT_EQ(controlTextDidChange(u"10.0.0.1."_s), u"10.0.0.1"_s);
  EXPECT_EQ(controlTextDidChange(u"10.0.0."_s), u"10.0.0."_s);
  EXPECT_EQ(controlTextDidChange(u"1.2.3.4.5"_s), u"1.2.3.4.5"_s) << "it does not end with the full stop";
}

TEST(AddressFieldTest, EachRuleDeletesOneCharacter) {
  EXPECT_EQ(controlTextDidChange(u"1a"_s), u"1"_s);
  EXPECT_EQ(controlTextDidChange(u"1ab2"_s), u"1b2"_s);
  EXPECT_EQ(controlTextDidChange(u"1+2"_s), u"12"_s);
  EXPECT_EQ(controlTextDidChange(u"1 2"_s), u"12"_s);
  EXPECT_EQ(controlTextDidChange(u"1\u00072"_s), u"12"_s);
  EXPECT_EQ(controlTextDidChange(u"a+: \u0007"_s), QString());
}

TEST(AddressFieldTest, LineEndFallsUnderTwoRules) {
  EXPECT_EQ(controlTextDidChange(u"1\n\n2"_s), u"12"_s);
}

TEST(AddressFieldTest, EveryRefusedSignIsDeletedTheBackslashIncluded) {
  for (const QChar sign : u"\"!%'(),-/:;?[\\]{}@#&*_"_s) {
    EXPECT_EQ(controlTextDidChange(u"1"_s + sign), u"1"_s) << QString(sign).toStdString();
  }
}

TEST(AddressFieldTest, LetterOutsideThePlaneIsDeletedWhole) {
  EXPECT_EQ(controlTextDidChange(u"1\U0001D4002"_s), u"12"_s);
}

TEST(AddressFieldTest, TellsWhatTheFieldCanHold) {
  EXPECT_TRUE(fitsAddressField(u"192.168.1.20"_s));
  EXPECT_TRUE(fitsAddressField({}));
  EXPECT_FALSE(fitsAddressField(u"vaultbox"_s));
  EXPECT_FALSE(fitsAddressField(u"1.2.3.4.5"_s));
  EXPECT_FALSE(fitsAddressField(u"1234567890123456"_s));
}
