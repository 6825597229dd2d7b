#include "platform/linux/LibplistNode.h"

#include "platform/Failure.h"
#include "platform/PropertyLists.h"

#include <QDateTime>
#include <QMetaType>

#include <cmath>
#include <cstdlib>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qint64 kListEpoch = 978307200; // 2001-01-01 in seconds since 1970

struct FreeMemory {
  void operator()(void *memory) const { std::free(memory); }
};
using Memory = std::unique_ptr<char, FreeMemory>;

bool isWanted(const char *key, std::span<const QByteArrayList> keys) {
  return keys.empty() || keys.front().isEmpty() || keys.front().contains(QByteArrayView(key));
}

QVariantMap mapOfNode(plist_t node, std::span<const QByteArrayList> keys) {
  const auto keysBelow = keys.empty() ? keys : keys.subspan(1);
  QVariantMap map;
  plist_dict_iter created = nullptr;
  plist_dict_new_iter(node, &created);
  const std::unique_ptr<void, FreeMemory> iterator(created);
  while (true) {
    char *key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(node, iterator.get(), &key, &value);
    const Memory keptKey(key);
    if (!value) {
      return map;
    }
    if (isWanted(key, keys)) {
      map.insert(QString::fromUtf8(key), valueOfNode(value, keysBelow));
    }
  }
}

QVariantList listOfNode(plist_t node) {
  QVariantList list;
  list.reserve(plist_array_get_size(node));
  plist_array_iter created = nullptr;
  plist_array_new_iter(node, &created);
  const std::unique_ptr<void, FreeMemory> iterator(created);
  while (true) {
    plist_t value = nullptr;
    plist_array_next_item(node, iterator.get(), &value);
    if (!value) {
      return list;
    }
    list.append(valueOfNode(value));
  }
}

QDateTime dateOfNode(plist_t node) {
  qint32 seconds = 0;
  qint32 microseconds = 0;
  plist_get_date_val(node, &seconds, &microseconds);
  return QDateTime::fromMSecsSinceEpoch((kListEpoch + seconds) * 1000 + microseconds / 1000, Qt::UTC);
}

template <typename Value, typename Read> Value scalarOfNode(plist_t node, Read read) {
  Value value{};
  read(node, &value);
  return value;
}

PlistNode nodeOfText(const QString &text) {
  if (text.contains(QChar(u'\0'))) {
    throw Failure(u"a text with a NUL character cannot stand in a property list"_s);
  }
  return PlistNode(plist_new_string(text.toUtf8().constData()));
}

PlistNode nodeOfMap(const QVariantMap &map) {
  PlistNode node(plist_new_dict());
  for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry) {
    if (entry.key().contains(QChar(u'\0'))) {
      throw Failure(u"a key with a NUL character cannot stand in a property list"_s);
    }
    plist_dict_set_item(node.get(), entry.key().toUtf8().constData(), nodeOfValue(entry.value()).release());
  }
  return node;
}

template <typename List> PlistNode nodeOfList(const List &list) {
  PlistNode node(plist_new_array());
  for (const auto &value : list) {
    plist_array_append_item(node.get(), nodeOfValue(value).release());
  }
  return node;
}

PlistNode nodeOfDate(const QDateTime &date) {
  const qint64 seconds = date.toSecsSinceEpoch() - kListEpoch;
  if (!date.isValid() || seconds > std::numeric_limits<qint32>::max() ||
      seconds < std::numeric_limits<qint32>::min()) {
    throw Failure(u"a date cannot stand in a property list"_s);
  }
  return PlistNode(plist_new_date(static_cast<qint32>(seconds), 0));
}

} // namespace

QString textOfNode(plist_t node) {
  uint64_t length = 0;
  const char *text = plist_get_string_ptr(node, &length);
  return QString::fromUtf8(text, static_cast<qsizetype>(length));
}

QVariant valueOfNode(plist_t node, std::span<const QByteArrayList> keys) {
  switch (plist_get_node_type(node)) {
  case PLIST_DICT:
    return mapOfNode(node, keys);
  case PLIST_ARRAY:
    return listOfNode(node);
  case PLIST_STRING:
    return textOfNode(node);
  case PLIST_BOOLEAN:
    return scalarOfNode<uint8_t>(node, plist_get_bool_val) != 0;
  case PLIST_UINT:
    return static_cast<qlonglong>(scalarOfNode<uint64_t>(node, plist_get_uint_val));
  case PLIST_REAL:
    return scalarOfNode<double>(node, plist_get_real_val);
  case PLIST_DATE:
    return dateOfNode(node);
  case PLIST_DATA: {
    uint64_t length = 0;
    const char *data = plist_get_data_ptr(node, &length);
    return QByteArray(data, static_cast<qsizetype>(length));
  }
  default:
    throw Failure(u"damaged property list: it holds a value of an unknown kind"_s, FailureKind::Damaged);
  }
}

PlistNode nodeOfValue(const QVariant &value) {
  switch (value.typeId()) {
  case QMetaType::QVariantMap:
    return nodeOfMap(value.toMap());
  case QMetaType::QVariantList:
    return nodeOfList(value.toList());
  case QMetaType::QStringList:
    return nodeOfList(value.toStringList());
  case QMetaType::QString:
    return nodeOfText(value.toString());
  case QMetaType::QByteArray: {
    const QByteArray data = value.toByteArray();
    return PlistNode(plist_new_data(data.constData(), static_cast<uint64_t>(data.size())));
  }
  case QMetaType::Bool:
    return PlistNode(plist_new_bool(value.toBool() ? 1 : 0));
  case QMetaType::Int:
  case QMetaType::UInt:
  case QMetaType::LongLong:
    return PlistNode(plist_new_uint(static_cast<uint64_t>(value.toLongLong())));
  case QMetaType::Double:
    if (!std::isfinite(value.toDouble())) {
      throw Failure(u"a number that is not finite cannot stand in a property list"_s);
    }
    return PlistNode(plist_new_real(value.toDouble()));
  case QMetaType::QDateTime:
    return nodeOfDate(value.toDateTime());
  default:
    throw Failure(u"a value of type %1 cannot stand in a property list"_s.arg(
        QString::fromLatin1(value.isValid() ? value.typeName() : "nothing")));
  }
}

} // namespace sonorel
