#include "link/HardwareAddress.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

TEST(HardwareAddress, IsExactlyThe17CharactersAfterTheFirstLineFeed) {
  EXPECT_EQ(hardwareAddressIn("192.168.1.20\n00-1A-2B-3C-4D-5E"), u"00-1A-2B-3C-4D-5E"_s);
  EXPECT_EQ(hardwareAddressIn("192.168.1.20\r\n00-1A-2B-3C-4D-5E\r\nmore\n"), u"00-1A-2B-3C-4D-5E"_s);
  EXPECT_EQ(hardwareAddressIn("\n00:1a:2b:3c:4d:5eXYZ"), u"00:1a:2b:3c:4d:5e"_s);
  EXPECT_EQ(hardwareAddressIn("x\n not an address, yet text"), u" not an address, "_s);
}

TEST(HardwareAddress, CountsAsAbsentWhenItIsTooShortOrNoText) {
  EXPECT_EQ(hardwareAddressIn("192.168.1.20 00-1A-2B-3C-4D-5E"), QString());
  EXPECT_EQ(hardwareAddressIn("192.168.1.20\n00-1A-2B-3C-4D-5"), QString());
  EXPECT_EQ(hardwareAddressIn(""), QString());
  EXPECT_EQ(hardwareAddressIn("\n"), QString());
  EXPECT_EQ(hardwareAddressIn(QByteArray("x\n00-1A-2B\0003C-4D-5E", 19)), QString());
}

TEST(HardwareAddress, IsRecognisedByItsGroups) {
  EXPECT_TRUE(isHardwareAddress(u"00-1A-2B-3C-4D-5E"));
  EXPECT_TRUE(isHardwareAddress(u"00:1a:2b:3c:4d:ff"));
  EXPECT_FALSE(isHardwareAddress(u"00-1A-2B-3C-4D-5"));
  EXPECT_FALSE(isHardwareAddress(u"00-1A-2B-3C-4D-5G"));
  EXPECT_FALSE(isHardwareAddress(u"001A2B3C4D5E00000"));
  EXPECT_FALSE(isHardwareAddress(u""));
}
