#include "favourites/ListContent.h"

#include "favourites/FavouritesFormat.h"
#include "link/ByteReader.h"
#include "platform/Failure.h"

namespace sonorel {

namespace {

constexpr qsizetype kItemCountSize = 4;
constexpr quint32 kRecordsToExpect = 1024; // whatever a count says, no more room is made on trust

struct Field {
  quint8 kind = 0;
  QByteArrayView content;
  quint32 declaredFields = 0; // leading fields only
};

// The field at the reader, or none when there is no complete one; the reader then stays in front of it.
std::optional<Field> nextField(ByteReader &reader) {
  const qsizetype start = reader.position();
  try {
    Field field;
    field.kind = reader.u8();
    if (field.kind != kLeadingField && field.kind != kFurtherField) {
      reader.seek(start);
      return std::nullopt;
    }
    field.content = reader.view(reader.u32());
    if (field.kind == kLeadingField) {
      field.declaredFields = reader.u32();
    }
    return field;
  } catch (const Failure &) {
    reader.seek(start);
    return std::nullopt;
  }
}

} // namespace

ListItems listItems(QByteArrayView content) {
  ListItems items;
  if (content.size() < kItemCountSize) {
    if (!content.isEmpty()) {
      items.damagedAt = 0;
    }
    return items;
  }
  ByteReader reader(content);
  items.count = reader.u32();
  while (!reader.atEnd()) {
    const auto field = nextField(reader);
    if (!field) {
      items.damagedAt = reader.position();
      break;
    }
    items.fields.push_back(field->content);
  }
  return items;
}

StoredList storedList(QByteArrayView content, quint32 expectedFields) {
  StoredList list;
  if (content.size() < kItemCountSize) {
    list.damagedAt = 0;
    return list;
  }
  ByteReader reader(content);
  list.count = reader.u32();
  list.records.reserve(qMin(*list.count, kRecordsToExpect));
  while (!reader.atEnd() && !list.damagedAt) {
    const auto field = nextField(reader);
    if (!field || (field->kind == kFurtherField && list.records.empty() && list.tag)) {
      list.damagedAt = reader.position();
    } else if (field->kind == kLeadingField) {
      list.records.push_back({field->content, field->declaredFields, 0, {}});
    } else if (list.records.empty()) {
      list.tag = field->content;
    } else {
      StoredRecord &record = list.records.back();
      if (record.fieldCount < StoredRecord::kKept) {
        record.fields.at(record.fieldCount) = field->content;
      }
      ++record.fieldCount;
    }
  }
  if (!list.records.empty() && list.records.back().lacksFields(expectedFields)) {
    list.records.pop_back();
    list.damagedAt = list.damagedAt.value_or(content.size());
  }
  return list;
}

} // namespace sonorel
