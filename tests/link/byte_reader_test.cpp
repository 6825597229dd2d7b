#include "link/ByteReader.h"

#include "platform/Failure.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <functional>

using sonorel::ByteReader;
using sonorel::Failure;
using sonorel::FailureKind;

namespace {

FailureKind kindOf(const std::function<void()> &operation) {
  try {
    operation();
  } catch (const Failure &e) {
    return e.kind();
  }
  ADD_FAILURE() << "nothing was thrown";
  return FailureKind::Other;
}

} // namespace

TEST(ByteReader, ReadsLittleEndianFieldsInTurn) {
  const QByteArray bytes("\x01\x26\x00\x00\x00\xFF\xFF\xFF\xFF"
                         "abc",
                         12);
  ByteReader reader(bytes);
  EXPECT_EQ(reader.u8(), 1);
  EXPECT_EQ(reader.u32(), 38U);
  EXPECT_EQ(reader.u32(), 0xFFFFFFFFU);
  EXPECT_EQ(reader.position(), 9);
  EXPECT_EQ(reader.remaining(), 3);
  EXPECT_EQ(reader.bytes(3), QByteArray("abc"));
  EXPECT_TRUE(reader.atEnd());
}

TEST(ByteReader, RefusesEveryFieldThatPassesTheEnd) {
  const QByteArray bytes("abc");
  EXPECT_EQ(kindOf([&] { static_cast<void>(ByteReader(bytes).u32()); }), FailureKind::Damaged);
  EXPECT_EQ(kindOf([&] { static_cast<void>(ByteReader(bytes).bytes(4)); }), FailureKind::Damaged);
  EXPECT_EQ(kindOf([&] { static_cast<void>(ByteReader(bytes).view(4)); }), FailureKind::Damaged);
  EXPECT_EQ(kindOf([&] { static_cast<void>(ByteReader(QByteArrayView()).u8()); }), FailureKind::Damaged);
}

TEST(ByteReader, RefusesALengthOfFourGigabytesWithoutAllocatingIt) {
  const QByteArray bytes("\xFF\xFF\xFF\xFF"
                         "x",
                         5);
  ByteReader reader(bytes);
  const quint32 length = reader.u32();
  EXPECT_EQ(kindOf([&] { static_cast<void>(reader.bytes(length)); }), FailureKind::Damaged);
  EXPECT_EQ(reader.position(), 4) << "a refused field is not consumed";
  EXPECT_EQ(reader.bytes(1), QByteArray("x"));
}

TEST(ByteReader, SaysWhatWasWantedAndWhatIsLeft) {
  ByteReader reader(QByteArrayView("abcde"));
  reader.seek(3);
  try {
    static_cast<void>(reader.u32());
    FAIL() << "nothing was thrown";
  } catch (const Failure &e) {
    EXPECT_EQ(e.reason(), QStringLiteral("4 bytes wanted at offset 3, 2 left"));
  }
}

TEST(ByteReader, SeeksUpToTheEndAndNotBeyond) {
  ByteReader reader(QByteArrayView("abcd"));
  reader.seek(4);
  EXPECT_TRUE(reader.atEnd());
  reader.seek(1);
  EXPECT_EQ(reader.u8(), 'b');
  EXPECT_EQ(kindOf([&] { reader.seek(5); }), FailureKind::Damaged);
  EXPECT_EQ(kindOf([&] { reader.seek(-1); }), FailureKind::Damaged);
}

TEST(ByteReader, ReadsZeroBytesAnywhere) {
  ByteReader reader(QByteArrayView("a"));
  reader.seek(1);
  EXPECT_EQ(reader.bytes(0), QByteArray());
  EXPECT_TRUE(reader.atEnd());
}
