// The content of one list (after decompression): int32 item count, a version tag, records of tagged fields. Pure; any
// thread. Reading stops at the first byte that makes no sense and hands out what was complete before it.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace sonorel {

struct ListItems {
  std::optional<quint32> count;       // none: the content is too short to hold one
  std::vector<QByteArrayView> fields; // into the content, which must outlive them; the version tag is the first
  std::optional<qsizetype> damagedAt; // offset of the field that could not be read
};

struct StoredRecord {
  static constexpr quint32 kKept = 3;

  QByteArrayView lead;
  quint32 declaredFields = 0;               // the count that stands behind the leading field; readers do not go by it
  quint32 fieldCount = 0;                   // the "N" fields that really follow
  std::array<QByteArrayView, kKept> fields; // the first of them

  // A count that promises more than a record has is no sign of damage by itself.
  [[nodiscard]] bool lacksFields(quint32 expectedFields) const {
    return fieldCount < qMin(declaredFields, expectedFields);
  }
};

struct StoredList {
  std::optional<quint32> count;
  std::optional<QByteArrayView> tag;
  std::vector<StoredRecord> records;
  std::optional<qsizetype> damagedAt; // as above, or the end of a content that stops within a record
};

// `getItemsFromOrvFile:`: all fields in file order, field counts stepped over.
[[nodiscard]] ListItems listItems(QByteArrayView content);
// The same walk, with the fields gathered into records. A last record that lacks fields, both of its own count and of
// the expected ones, is left out: the content was cut.
[[nodiscard]] StoredList storedList(QByteArrayView content, quint32 expectedFields);

} // namespace sonorel
