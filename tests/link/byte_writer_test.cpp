#include "link/ByteWriter.h"

#include "link/UtilityFunction.h"
#include "platform/Failure.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <cstring>

using sonorel::ByteWriter;
using sonorel::Failure;
using sonorel::UtilityFunction;

TEST(ByteWriter, WritesLittleEndianFieldsInTurn) {
  ByteWriter writer;
  writer.u8(0xFE);
  writer.u32(0x01020304);
  writer.bytes("xy");
  EXPECT_EQ(writer.size(), 7);
  EXPECT_EQ(writer.take(), QByteArray("\xFE\x04\x03\x02\x01xy", 7));
  EXPECT_EQ(writer.size(), 0) << "the writer is empty after take";
}

TEST(ByteWriter, WritesTheLargestNumber) {
  ByteWriter writer(4);
  writer.u32(0xFFFFFFFF);
  EXPECT_EQ(writer.data(), QByteArray("\xFF\xFF\xFF\xFF"));
}

TEST(ByteWriter, PatchesAFieldThatWasAppended) {
  ByteWriter writer;
  writer.u32(0);
  writer.bytes("abcde");
  writer.patchU32(0, 5);
  writer.patchU32(5, 0x64636261);
  EXPECT_EQ(writer.take(), QByteArray("\x05\0\0\0aabcd", 9));
}

TEST(ByteWriter, RefusesAPatchOutsideTheBuffer) {
  ByteWriter writer;
  writer.bytes("abcd");
  EXPECT_THROW(writer.patchU32(1, 7), Failure);
  EXPECT_THROW(writer.patchU32(-1, 7), Failure);
  EXPECT_EQ(writer.take(), QByteArray("abcd"));
}

TEST(UtilityFunction, KnowsTheByteOrderOfThisHost) {
  const quint32 one = 1;
  char first = 0;
  std::memcpy(&first, &one, 1);
  EXPECT_EQ(UtilityFunction::getArch(), first == 1 ? 2 : 1);
}

TEST(UtilityFunction, PutsTheLeastSignificantByteFirstInMemory) {
  const quint32 converted = UtilityFunction::convertToWindowInt(0x0A0B0C0D);
  char raw[4];
  std::memcpy(raw, &converted, 4);
  EXPECT_EQ(QByteArray(raw, 4), QByteArray("\x0D\x0C\x0B\x0A"));
}

TEST(UtilityFunction, ReadsFourBytesAsUnsigned) {
  EXPECT_EQ(UtilityFunction::convertToMacInt("\x26\0\0\0"), 38U);
  EXPECT_EQ(UtilityFunction::convertToMacInt("\0\0\0\x80"), 0x80000000U);
  EXPECT_EQ(UtilityFunction::convertToMacInt("\xFF\xFE\xFD\xFC"), 0xFCFDFEFFU);
}
