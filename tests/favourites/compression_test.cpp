#include "favourites/Compression.h"

#include "HandMade.h"
#include "favourites/ChunkWriter.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace sonorel;
using namespace sonorel::test;

TEST(Compression, CompressesToAZlibStreamOfTheDefaultLevel) {
  const auto stream = Compression::DMCompress(QByteArrayView("aaaaaaaaaaaaaaaa"));
  ASSERT_TRUE(stream);
  EXPECT_EQ(stream->toHex(), "789c4b4c44050033980611");
}

TEST(Compression, NothingCompressesToNothing) {
  EXPECT_FALSE(Compression::DMCompress(QByteArrayView()));
  EXPECT_TRUE(Compression::DMCompress(QByteArrayView("")));
}

TEST(Compression, DecompressesToTheRealLengthWhenTheExpectedOneIsLonger) {
  const QByteArray stream = QByteArray::fromHex("789c4b4c44050033980611");
  EXPECT_EQ(Compression::DMDecompress(stream, 16), QByteArray(16, 'a'));
  EXPECT_EQ(Compression::DMDecompress(stream, 40), QByteArray(16, 'a'));
}

TEST(Compression, DecompressesNothingWhenTheExpectedLengthIsTooShortOrTheStreamDamaged) {
  QByteArray stream = QByteArray::fromHex("789c4b4c44050033980611");
  EXPECT_FALSE(Compression::DMDecompress(stream, 15));
  EXPECT_FALSE(Compression::DMDecompress(stream.chopped(1), 16));
  stream[9] = 0;
  EXPECT_FALSE(Compression::DMDecompress(stream, 16));
  EXPECT_FALSE(Compression::DMDecompress(QByteArray(), 16));
}

TEST(Compression, IgnoresBytesBehindTheStream) {
  EXPECT_EQ(Compression::DMDecompress(QByteArray::fromHex("789c4b4c44050033980611ffffff"), 16), QByteArray(16, 'a'));
}

TEST(Compression, RefusesLengthsThatCannotComeOutOfTheStreamBeforeItAllocates) {
  EXPECT_FALSE(Compression::DMDecompress(QByteArray::fromHex("789c4b4c44050033980611"), 0xFFFFFFFF));
  EXPECT_FALSE(Compression::DMDecompress(QByteArray(10, 'x'), 1032 * 10 + 1024 + 1));
}

TEST(Compression, RefusesARealStreamOfMoreThan128MiB) {
  const QByteArray plain(128 * 1024 * 1024 + 1, '\0');
  EXPECT_FALSE(Compression::DMDecompress(chunk(plain).mid(8), static_cast<quint32>(plain.size())));
}

TEST(Compression, TellsWhereTheStreamEnds) {
  qsizetype size = 0;
  EXPECT_TRUE(Compression::DMDecompress(QByteArray::fromHex("789c4b4c44050033980611ffffff"), 16, &size));
  EXPECT_EQ(size, 11);
}

TEST(Compression, AppendsAChunkBehindWhatIsThere) {
  QByteArray chunks("before");
  Compression::compressData("aaaaaaaaaaaaaaaa", chunks);
  EXPECT_EQ(chunks, "before" + QByteArray::fromHex("100000000b000000789c4b4c44050033980611"));
}

TEST(Compression, AFailedCompressionGivesAChunkWithoutBytes) {
  QByteArray chunks;
  Compression::compressData(QByteArrayView(), chunks);
  EXPECT_EQ(chunks.toHex(), "0000000000000000");
}

TEST(Compression, AppendsTheDecompressedBytesOrNothing) {
  QByteArray plain("before");
  Compression::decompresssData(QByteArray::fromHex("789c4b4c44050033980611"), 16, plain);
  EXPECT_EQ(plain, "before" + QByteArray(16, 'a'));
  Compression::decompresssData("damaged", 16, plain);
  EXPECT_EQ(plain, "before" + QByteArray(16, 'a'));
}

TEST(ChunkWriter, ManyLargeContentsKeepTheirOrder) {
  std::vector<QByteArray> contents;
  QByteArray expected;
  for (int i = 0; i < 40; ++i) {
    QByteArray plain;
    for (int k = 0; k < 10000 + i; ++k) {
      plain += QByteArray::number(k * 7919 + i);
    }
    contents.push_back(plain);
    expected += chunk(plain);
  }
  const std::vector<QByteArray> chunks =
      compressedChunks(contents.size(), 2 * kParallelFrom, [&](std::size_t i) { return contents.at(i); });
  EXPECT_TRUE(assembledFile("head", chunks) == "head" + le32(static_cast<quint32>(expected.size())) + expected);
}
