#include "platform/Failure.h"
#include "platform/linux/LibplistPropertyLists.h"
#include "support/Printers.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <clocale>

using namespace sonorel;
using namespace Qt::Literals::StringLiterals;

namespace {

class PropertyListsTest : public testing::Test {
protected:
  LibplistPropertyLists lists;

  FailureKind kindOf(const QByteArray &bytes) {
    try {
      (void)lists.decode(bytes);
    } catch (const Failure &e) {
      return e.kind();
    }
    ADD_FAILURE() << "it was decoded";
    return FailureKind::Other;
  }
};

} // namespace

TEST_F(PropertyListsTest, WritesXmlWithSortedKeys) {
  const QVariantMap map{{u"b"_s, 7}, {u"a"_s, u"x < y & z"_s}, {u"C"_s, true}};
  EXPECT_EQ(lists.encodeXml(map), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                             "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                             "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                             "<plist version=\"1.0\">\n"
                                             "<dict>\n"
                                             "\t<key>C</key>\n\t<true/>\n"
                                             "\t<key>a</key>\n\t<string>x &lt; y &amp; z</string>\n"
                                             "\t<key>b</key>\n\t<integer>7</integer>\n"
                                             "</dict>\n"
                                             "</plist>\n"));
}

TEST_F(PropertyListsTest, ReadsEveryKindOfValue) {
  const QVariantMap map =
      lists
          .decode("<plist version=\"1.0\"><dict><key>text</key><string>Caf\xC3\xA9 &#8364;</string><key>empty</key>"
                  "<string/><key>yes</key><true/><key>no</key><false/><key>number</key><integer>-5</integer>"
                  "<key>real</key><real>1.5</real><key>data</key><data>AAEC/w==</data><key>date</key>"
                  "<date>2026-01-31T12:34:56Z</date><key>list</key><array><string>a</string><array/></array>"
                  "<key>map</key><dict><key>k</key><string>v</string></dict></dict></plist>")
          .toMap();
  EXPECT_EQ(map.value(u"text"_s), QVariant(u"Café €"_s));
  EXPECT_EQ(map.value(u"empty"_s), QVariant(QString(u""_s)));
  EXPECT_EQ(map.value(u"yes"_s), QVariant(true));
  EXPECT_EQ(map.value(u"no"_s), QVariant(false));
  EXPECT_EQ(map.value(u"number"_s), QVariant(qlonglong(-5)));
  EXPECT_EQ(map.value(u"real"_s), QVariant(1.5));
  EXPECT_EQ(map.value(u"data"_s), QVariant(QByteArray("\x00\x01\x02\xFF", 4)));
  EXPECT_EQ(map.value(u"date"_s).toDateTime(), QDateTime(QDate(2026, 1, 31), QTime(12, 34, 56), Qt::UTC));
  EXPECT_EQ(map.value(u"list"_s), QVariant(QVariantList{u"a"_s, QVariantList{}}));
  EXPECT_EQ(map.value(u"map"_s), QVariant(QVariantMap{{u"k"_s, u"v"_s}}));
}

TEST_F(PropertyListsTest, LeavesOutWhatIsNotWantedAndChecksItAllTheSame) {
  const QVariantMap picture{{u"Path"_s, u"/a"_s}, {u"Rating"_s, 5}, {u"More"_s, QVariantMap{{u"x"_s, 1}}}};
  const QVariantMap map{{u"List"_s, QVariantMap{{u"1"_s, picture}, {u"2"_s, u"no dictionary"_s}}},
                        {u"Array"_s, QVariantList{picture}},
                        {u"Other"_s, picture}};
  for (const QByteArray &bytes : {lists.encodeXml(map), lists.encodeBinary(map)}) {
    EXPECT_EQ(lists.decode(bytes, {{"List", "Array"}, {}, {"Path", "More", "None"}}),
              QVariant(QVariantMap{
                  {u"List"_s,
                   QVariantMap{{u"1"_s, QVariantMap{{u"Path"_s, u"/a"_s}, {u"More"_s, picture.value(u"More"_s)}}},
                               {u"2"_s, u"no dictionary"_s}}},
                  {u"Array"_s, QVariantList{picture}}}));
    EXPECT_EQ(lists.decode(bytes, {}), QVariant(map));
  }
  EXPECT_THROW(
      (void)lists.decode("<plist version=\"1.0\"><dict><key>a</key><integer>x</integer></dict></plist>", {{"b"}}),
      Failure);
}

TEST_F(PropertyListsTest, KeepsValuesInBothForms) {
  const QVariantMap map{{u"data"_s, QByteArray("\x00\xFF\x10", 3)},
                        {u"date"_s, QDateTime(QDate(1999, 12, 31), QTime(23, 59, 59), Qt::UTC)},
                        {u"large"_s, qlonglong(9223372036854775807LL)},
                        {u"list"_s, QVariantList{u"日本"_s, QVariantMap{}, false, QString(u""_s)}},
                        {u"small"_s, qlonglong(-9223372036854775807LL)},
                        {u"surrogates 🎵"_s, u"🎵"_s}};
  EXPECT_EQ(lists.decode(lists.encodeXml(map)), QVariant(map));
  EXPECT_EQ(lists.decode(lists.encodeBinary(map)), QVariant(map));
}

TEST_F(PropertyListsTest, WritesListsOfTexts) {
  EXPECT_EQ(lists.decode(lists.encodeXml(QStringList{u"a"_s, u"b"_s})), QVariant(QVariantList{u"a"_s, u"b"_s}));
}

TEST_F(PropertyListsTest, DecimalPointDoesNotDependOnTheLocale) {
  const char *german = std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
  if (!german) {
    german = std::setlocale(LC_NUMERIC, "C");
  }
  EXPECT_TRUE(lists.encodeXml(2.5).contains("<real>2.5")) << german;
  EXPECT_EQ(lists.decode("<plist><real>2.5</real></plist>"), QVariant(2.5));
  std::setlocale(LC_NUMERIC, "C");
}

TEST_F(PropertyListsTest, RefusesDamagedLists) {
  EXPECT_EQ(kindOf({}), FailureKind::Damaged);
  EXPECT_EQ(kindOf("<plist><dict><key>a</key><string>b</string></dict>"), FailureKind::Damaged);
  EXPECT_EQ(kindOf("<plist><integer>x</integer></plist>"), FailureKind::Damaged);
  EXPECT_EQ(kindOf("bplist00"), FailureKind::Damaged);
  EXPECT_EQ(kindOf("<plist>" + QByteArray("<dict><key>a</key>").repeated(100000)), FailureKind::Damaged);
}

TEST_F(PropertyListsTest, EveryChangedByteOfABinaryListIsReadOrRefused) {
  const QByteArray whole = lists.encodeBinary(QVariantMap{{u"k"_s, QVariantList{u"v"_s, 5, QByteArray("d")}}});
  int refused = 0;
  for (qsizetype i = 0; i < whole.size(); ++i) {
    for (const int change : {0x01, 0x10, 0x80, 0xFF}) {
      QByteArray bytes = whole;
      bytes[i] = static_cast<char>(bytes[i] ^ change);
      try {
        (void)lists.decode(bytes);
      } catch (const Failure &e) {
        EXPECT_EQ(e.kind(), FailureKind::Damaged);
        ++refused;
      }
    }
  }
  EXPECT_GT(refused, 0);
}

TEST_F(PropertyListsTest, WhatCannotBeWrittenIsAFailure) {
  EXPECT_THROW((void)lists.encodeXml(QVariant()), Failure);
  EXPECT_THROW((void)lists.encodeXml(qQNaN()), Failure);
  EXPECT_THROW((void)lists.encodeBinary(-qInf()), Failure);
  EXPECT_THROW((void)lists.encodeXml(QString(QChar(u'\0'))), Failure);
  EXPECT_THROW((void)lists.encodeXml(QVariantMap{{u"a"_s, QVariantList{QVariant()}}}), Failure);
}

TEST_F(PropertyListsTest, ArchivesOneText) {
  const QByteArray bytes = lists.archive(u"pässwort €"_s);
  EXPECT_TRUE(bytes.startsWith("bplist00"));
  EXPECT_TRUE(bytes.contains("NSKeyedArchiver"));
  EXPECT_TRUE(bytes.contains("$null"));
  EXPECT_EQ(lists.unarchive(bytes), u"pässwort €"_s);
  EXPECT_EQ(lists.unarchive(lists.archive(QString())), QString(u""_s));
}

TEST_F(PropertyListsTest, UnarchivesNothingFromAnythingElse) {
  EXPECT_EQ(lists.unarchive({}), std::nullopt);
  EXPECT_EQ(lists.unarchive("plain"), std::nullopt);
  EXPECT_EQ(lists.unarchive(lists.encodeBinary(u"text"_s)), std::nullopt);
  EXPECT_EQ(lists.unarchive(lists.encodeBinary(QVariantMap{{u"$top"_s, QVariantMap{{u"root"_s, 1}}}})), std::nullopt);
  EXPECT_EQ(lists.unarchive(lists.archive(u"x"_s).chopped(1)), std::nullopt);
}
