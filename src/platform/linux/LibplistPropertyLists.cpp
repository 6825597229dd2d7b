#include "platform/linux/LibplistPropertyLists.h"

#include "platform/Failure.h"
#include "platform/linux/LibplistNode.h"
#include "platform/linux/PropertyListGuard.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr quint64 kArchiveVersion = 100000;

// The guard has passed the bytes already.
plist_t treeOfXml(const QByteArray &bytes) {
  plist_t node = nullptr;
  plist_from_xml(bytes.constData(), static_cast<uint32_t>(bytes.size()), &node);
  return node;
}

PlistNode parsed(const QByteArray &bytes, std::span<const QByteArrayList> keys = {}) {
  const CLocale locale;
  plist_t node = nullptr;
  if (isBinaryPropertyList(bytes)) {
    checkBinaryPropertyList(bytes);
    plist_from_bin(bytes.constData(), static_cast<uint32_t>(bytes.size()), &node);
  } else if (keys.empty()) {
    checkXmlPropertyList(bytes);
    node = treeOfXml(bytes);
  } else {
    node = treeOfXml(wantedOfXmlPropertyList(bytes, keys));
  }
  if (!node) {
    refusePropertyList(u"it cannot be parsed"_s);
  }
  return PlistNode(node);
}

QByteArray binaryOf(plist_t node) {
  char *bytes = nullptr;
  uint32_t length = 0;
  plist_to_bin(node, &bytes, &length);
  if (!bytes) {
    throw Failure(u"the property list could not be written"_s);
  }
  const QByteArray result(bytes, length);
  plist_to_bin_free(bytes);
  return result;
}

// The object of the archive at the root's number; null when the archive is not one of ours.
plist_t archivedRoot(plist_t archive) {
  if (plist_get_node_type(archive) != PLIST_DICT) {
    return nullptr;
  }
  const plist_t top = plist_dict_get_item(archive, "$top");
  const plist_t objects = plist_dict_get_item(archive, "$objects");
  if (!top || plist_get_node_type(top) != PLIST_DICT || !objects || plist_get_node_type(objects) != PLIST_ARRAY) {
    return nullptr;
  }
  const plist_t root = plist_dict_get_item(top, "root");
  if (!root || plist_get_node_type(root) != PLIST_UID) {
    return nullptr;
  }
  uint64_t number = 0;
  plist_get_uid_val(root, &number);
  // Number 0 is always "$null".
  return number > 0 && number < plist_array_get_size(objects)
             ? plist_array_get_item(objects, static_cast<uint32_t>(number))
             : nullptr;
}

} // namespace

QVariant LibplistPropertyLists::decode(const QByteArray &bytes) {
  return decode(bytes, {});
}

QVariant LibplistPropertyLists::decode(const QByteArray &bytes, const WantedKeys &keys) {
  return valueOfNode(parsed(bytes, keys).get(), keys);
}

QByteArray LibplistPropertyLists::encodeXml(const QVariant &value) {
  const CLocale locale;
  const PlistNode node = nodeOfValue(value);
  char *text = nullptr;
  uint32_t length = 0;
  plist_to_xml(node.get(), &text, &length);
  if (!text) {
    throw Failure(u"the property list could not be written"_s);
  }
  const QByteArray result(text, length);
  plist_to_xml_free(text);
  return result;
}

QByteArray LibplistPropertyLists::encodeBinary(const QVariant &value) {
  return binaryOf(nodeOfValue(value).get());
}

QByteArray LibplistPropertyLists::archive(const QString &text) {
  const PlistNode archive(plist_new_dict());
  const plist_t top = plist_new_dict();
  const plist_t objects = plist_new_array();
  plist_dict_set_item(archive.get(), "$version", plist_new_uint(kArchiveVersion));
  plist_dict_set_item(archive.get(), "$objects", objects);
  plist_dict_set_item(archive.get(), "$archiver", plist_new_string("NSKeyedArchiver"));
  plist_dict_set_item(archive.get(), "$top", top);
  plist_dict_set_item(top, "root", plist_new_uid(1));
  plist_array_append_item(objects, plist_new_string("$null"));
  plist_array_append_item(objects, nodeOfValue(text).release());
  return binaryOf(archive.get());
}

std::optional<QString> LibplistPropertyLists::unarchive(const QByteArray &bytes) {
  try {
    if (!isBinaryPropertyList(bytes)) {
      return std::nullopt;
    }
    const PlistNode archive = parsed(bytes);
    plist_t root = archivedRoot(archive.get());
    if (root && plist_get_node_type(root) == PLIST_DICT) {
      root = plist_dict_get_item(root, "NS.string"); // a text that was mutable when it was archived
    }
    if (!root || plist_get_node_type(root) != PLIST_STRING) {
      return std::nullopt;
    }
    return textOfNode(root);
  } catch (const Failure &) {
    return std::nullopt;
  }
}

} // namespace sonorel
