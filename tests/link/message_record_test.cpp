#include "link/MessageRecord.h"

#include "link/ClientMessages.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

const auto kGuid = u"{0F8FAD5B-D9CB-469F-A165-70867728950E}"_s;

} // namespace

TEST(MessageRecord, OfClientAliveHas66Bytes) {
  const QByteArray expected(
      "\x03\0\0\0\x26\0\0\0{0F8FAD5B-D9CB-469F-A165-70867728950E}\x0B\0\0\0ClientAlive\x01\0\0\0"
      "1",
      66);
  EXPECT_EQ(messageRecord(kGuid, u"ClientAlive"_s, u"1"_s), expected);
}

TEST(MessageRecord, MeasuresOnlyTheCommand) {
  const QByteArray expected("\x03\0\0\0\x26\0\0\0{short}\x02\0\0\0go\x01\0\0\0kind", 29);
  EXPECT_EQ(messageRecord(u"{short}"_s, u"go"_s, u"kind"_s), expected);
}

TEST(MessageRecord, CountsTheCommandsCharactersAndWritesItsBytes) {
  const QByteArray expected("\x03\0\0\0\x26\0\0\0\x05\0\0\0Gr\xC3\xBC\xC3\x9F"
                            "e\x01\0\0\0"
                            "1",
                            24);
  EXPECT_EQ(messageRecord(QString(), u"Gr\u00FC\u00DFe"_s, u"1"_s), expected);
}

TEST(MessageRecord, ServesTheHeaderOfTheFavouritesFiles) {
  EXPECT_EQ(
      ClientMessages::generateMetaDataForPL(kGuid, u"NetMusicFavorites"_s, u"1"_s),
      QByteArray("\x03\0\0\0\x26\0\0\0{0F8FAD5B-D9CB-469F-A165-70867728950E}\x11\0\0\0NetMusicFavorites\x01\0\0\0"
                 "1",
                 72));
}
