#include "products/PasswordArchive.h"

#include "platform/linux/LibplistPropertyLists.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

TEST(PasswordArchiveTest, GivesBackWhatItTook) {
  LibplistPropertyLists lists;
  const QByteArray stored = encrypt(lists, u"p@ss;100% \u00FC"_s);
  EXPECT_EQ(stored.left(8), QByteArray("bplist00"));
  EXPECT_EQ(decrypt(lists, stored), u"p@ss;100% \u00FC"_s);
}

TEST(PasswordArchiveTest, TextWrittenByHandIsTaken) {
  LibplistPropertyLists lists;
  EXPECT_EQ(decrypt(lists, u"secret"_s), u"secret"_s);
}

TEST(PasswordArchiveTest, AnythingMalformedIsEmpty) {
  LibplistPropertyLists lists;
  EXPECT_EQ(decrypt(lists, QByteArray("bplist00 and then nothing")), QString());
  EXPECT_EQ(decrypt(lists, QByteArray()), QString());
  EXPECT_EQ(decrypt(lists, 5), QString());
  EXPECT_EQ(decrypt(lists, {}), QString());
}
