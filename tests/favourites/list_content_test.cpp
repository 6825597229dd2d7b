#include "favourites/ListContent.h"

#include "HandMade.h"
#include "favourites/FavouritesFormat.h"
#include "favourites/Parser.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace sonorel;
using namespace sonorel::test;

namespace {

QByteArray partyAndOld() {
  return albums({listRecord("Party", "9", "6", guid('p')), listRecord("Old", "7", "6", guid('o'))});
}

std::vector<QByteArray> copied(const std::vector<QByteArrayView> &fields) {
  std::vector<QByteArray> copies;
  for (const QByteArrayView field : fields) {
    copies.push_back(field.toByteArray());
  }
  return copies;
}

} // namespace

TEST(GetItemsFromOrvFile, GivesTheCountAndEveryFieldInFileOrder) {
  const QByteArray content = partyAndOld();
  const ListItems items = Parser::getItemsFromOrvFile(content);
  EXPECT_EQ(items.count, 3U);
  EXPECT_EQ(copied(items.fields), (std::vector<QByteArray>{"FavoriteAlbums-1.2", "Party", "9", "6", guid('p'), "Old",
                                                           "7", "6", guid('o')}));
  EXPECT_FALSE(items.damagedAt);
}

TEST(GetItemsFromOrvFile, StepsOverTheFieldCountWithoutBelievingIt) {
  QByteArray content = partyAndOld();
  content.replace(field('L', "Old") + le32(3), field('L', "Old") + le32(77));
  EXPECT_EQ(Parser::getItemsFromOrvFile(content).fields.size(), 9U);
}

TEST(GetItemsFromOrvFile, AnEmptyListHasNeitherCountNorFields) {
  const ListItems items = Parser::getItemsFromOrvFile(QByteArray());
  EXPECT_FALSE(items.count);
  EXPECT_TRUE(items.fields.empty());
  EXPECT_FALSE(items.damagedAt);
}

TEST(GetItemsFromOrvFile, StopsAtAnUnknownKindAndKeepsWhatCameBefore) {
  QByteArray content = partyAndOld();
  const qsizetype second = content.indexOf(field('L', "Old"));
  content[second] = 'X';
  const ListItems items = Parser::getItemsFromOrvFile(content);
  EXPECT_EQ(items.fields.size(), 5U);
  EXPECT_EQ(items.damagedAt, second);
}

TEST(GetItemsFromOrvFile, ALengthOfFourGigabytesIsDamageAndNotAnAllocation) {
  const QByteArray content = le32(2) + "N" + le32(0xFFFFFFFF) + "abc";
  const ListItems items = Parser::getItemsFromOrvFile(content);
  EXPECT_TRUE(items.fields.empty());
  EXPECT_EQ(items.damagedAt, 4);
}

// Writers that count the leading field in, or three where they write two.
TEST(StoredList, KeepsALastRecordThatLacksOnlyWhatItsCountSays) {
  QByteArray content =
      titles({titleRecord("a", zeros36(), guid('1'), "1"), titleRecord("b", zeros36(), guid('2'), "1")});
  content.replace(field('L', "b") + le32(3), field('L', "b") + le32(4));
  EXPECT_EQ(storedList(content, kTitleFields).records.size(), 2U);
  EXPECT_FALSE(storedList(content, kTitleFields).damagedAt);
  content = titles({titleOfVaultbox1("a", zeros36(), guid('1'))});
  content.replace(field('L', "a") + le32(2), field('L', "a") + le32(3));
  EXPECT_EQ(storedList(content, kTitleFieldsOfVaultbox1).records.size(), 1U);
  EXPECT_FALSE(storedList(content, kTitleFieldsOfVaultbox1).damagedAt);
  EXPECT_EQ(storedList(content, kTitleFields).records.size(), 0U) << "of another model it is cut";
  EXPECT_EQ(storedList(content, kTitleFields).damagedAt, content.size());
}

TEST(StoredList, GathersFieldsIntoRecords) {
  const QByteArray content = titles({titleRecord("a", zeros36(), guid('1'), "1"), titleOfVaultbox1("b", "c", "g")});
  const StoredList list = storedList(content, kTitleFields);
  EXPECT_EQ(list.count, 3U);
  EXPECT_EQ(list.tag->toByteArray(), "FavoriteTitles-1.2");
  ASSERT_EQ(list.records.size(), 2U);
  EXPECT_EQ(list.records[0].lead.toByteArray(), "a");
  EXPECT_EQ(list.records[0].fieldCount, 3U);
  EXPECT_EQ(list.records[0].fields[2].toByteArray(), "1");
  EXPECT_EQ(list.records[1].fieldCount, 2U);
  EXPECT_EQ(list.records[1].declaredFields, 2U);
  EXPECT_FALSE(list.damagedAt);
}

// A list that is cut anywhere gives its complete records and nothing else.
TEST(StoredList, CutAtEveryLengthItKeepsTheCompleteRecords) {
  const QByteArray whole = partyAndOld();
  const qsizetype first = le32(3).size() + field('N', "FavoriteAlbums-1.2").size();
  const qsizetype second = first + listRecord("Party", "9", "6", guid('p')).size();
  for (qsizetype length = 0; length < whole.size(); ++length) {
    const QByteArray cut = whole.left(length);
    const StoredList list = storedList(cut, kList1Fields);
    EXPECT_EQ(list.records.size(), length >= second ? 1U : 0U) << "cut at " << length;
    EXPECT_EQ(list.damagedAt.has_value(), length != 4 && length != first && length != second) << "cut at " << length;
  }
}

TEST(StoredList, FlippedAnywhereItNeverReadsBeyondItsEnd) {
  const QByteArray whole = partyAndOld();
  for (qsizetype at = 0; at < whole.size(); ++at) {
    for (const char bits : {'\x01', '\x80', '\xFF'}) {
      QByteArray flipped = whole;
      flipped[at] = static_cast<char>(flipped.at(at) ^ bits);
      const StoredList list = storedList(flipped, kList1Fields);
      EXPECT_LE(list.records.size(), 9U);
      for (const StoredRecord &record : list.records) {
        EXPECT_GE(record.lead.data(), flipped.constData());
        EXPECT_LE(record.lead.data() + record.lead.size(), flipped.constData() + flipped.size());
      }
    }
  }
}
