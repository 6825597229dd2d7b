#include "products/ProductRecord.h"

#include <algorithm>

namespace sonorel {

namespace {

bool sameWhenGiven(const ProductRecord &record, const ProductRecord &added, QStringView key) {
  const QString wanted = productText(added, key);
  return wanted.isEmpty() || wanted == productText(record, key);
}

} // namespace

QString productText(const ProductRecord &record, QStringView key) {
  const QVariant value = record.value(key.toString());
  return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

QString productText(const ProductRecord &record, QStringView key, QStringView absent) {
  const QString text = productText(record, key);
  return text.isEmpty() ? absent.toString() : text;
}

void setProductText(ProductRecord &record, QStringView key, QStringView text) {
  record.insert(key.toString(), text.toString());
}

bool isActive(const ProductRecord &record) {
  return productText(record, kIsSelectedKey) == kSelectedYes;
}

qsizetype activeIndex(const ProductRecords &records) {
  const auto found = std::find_if(records.begin(), records.end(), isActive);
  return found == records.end() ? -1 : found - records.begin();
}

QString connectionAddress(const ProductRecord &record) {
  const QString address = productText(record, kIpAddressKey);
  if (!address.isEmpty() && address != kNoIpAddress && address != kNoAddress) {
    return address;
  }
  const QString host = productText(record, kHostNameKey);
  return host == kNoHostName ? QString() : host;
}

bool sameProductText(const ProductRecord &a, const ProductRecord &b, QStringView key) {
  const QString text = productText(a, key);
  return !text.isEmpty() && text == productText(b, key);
}

bool sameDetectedProduct(const ProductRecord &a, const ProductRecord &b) {
  return sameProductText(a, b, kMacAddressKey) || sameProductText(a, b, kSerialNumberKey);
}

bool sameManualEntry(const ProductRecord &a, const ProductRecord &b) {
  return sameProductText(a, b, kHostNameKey) || sameProductText(a, b, kIpAddressKey);
}

bool sameSelectedProduct(const ProductRecord &selected, const ProductRecord &added) {
  const bool byHand = productText(added, kDetectionTypeKey) == kAddedByHand;
  if (byHand != (productText(selected, kDetectionTypeKey) == kAddedByHand)) {
    return false;
  }
  if (!byHand) {
    return sameDetectedProduct(selected, added);
  }
  return sameWhenGiven(selected, added, kIpAddressKey) && sameWhenGiven(selected, added, kHostNameKey);
}

} // namespace sonorel
