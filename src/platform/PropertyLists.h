// Property lists as values: QVariantMap, QVariantList, QString, QByteArray, bool, qlonglong, double, QDateTime.
// Bytes in, values out; no files. Pure, any thread. Decoding throws Failure (Damaged) with a reason: size,
// depth and object count are checked before anything is parsed.
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <optional>
#include <vector>

namespace sonorel {

class PropertyLists {
public:
  virtual ~PropertyLists() = default;
  // XML or binary. A truncated list, a wrong number or a bad base64 text is damaged, never silently empty.
  [[nodiscard]] virtual QVariant decode(const QByteArray &bytes) = 0;
  // Which keys become values, of the dictionaries at each level, the outermost first: none named wants all of them,
  // and below the last level nothing is left out.
  using WantedKeys = std::vector<QByteArrayList>;
  // As decode, for a long list of which little is wanted. What is left out is checked all the same.
  [[nodiscard]] virtual QVariant decode(const QByteArray &bytes, const WantedKeys &keys) = 0;
  [[nodiscard]] virtual QByteArray encodeXml(const QVariant &value) = 0;
  [[nodiscard]] virtual QByteArray encodeBinary(const QVariant &value) = 0;
  // A keyed archive of one text, and back; nullopt for anything malformed.
  [[nodiscard]] virtual QByteArray archive(const QString &text) = 0;
  [[nodiscard]] virtual std::optional<QString> unarchive(const QByteArray &bytes) = 0;

  static constexpr qsizetype kSizeLimit = 128LL * 1024 * 1024;
  static constexpr int kDepthLimit = 64;
};

// A value of the wrong type reads as absent.
[[nodiscard]] inline QString textAt(const QVariantMap &values, const QString &key) {
  const QVariant value = values.value(key);
  return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

} // namespace sonorel
