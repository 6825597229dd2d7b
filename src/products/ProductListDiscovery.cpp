// The part of the product list that discovery uses: "Detected Devices", and the same product in "Selected Devices".
#include "products/ProductList.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

void putIntoDetected(QVariantMap &lists, const ProductRecord &record) {
  ProductRecords detected = productRecords(lists, kDetectedDevices);
  bool replaced = false;
  for (ProductRecord &one : detected) {
    if (sameDetectedProduct(one, record)) {
      one = record;
      replaced = true;
    }
  }
  if (!replaced) {
    detected.append(record);
  }
  setProductRecords(lists, kDetectedDevices, detected);
}

// The user's choice, the password and how the product was added outlast a new address or room.
void renewSelected(QVariantMap &lists, ProductRecord record) {
  ProductRecords selected = productRecords(lists, kSelectedDevices);
  const auto same = std::find_if(selected.begin(), selected.end(), [&](const ProductRecord &one) {
    return sameProductText(one, record, kMacAddressKey) && one.contains(kLocationKey.toString()) &&
           one.contains(kSerialNumberKey.toString());
  });
  if (same == selected.end()) {
    return;
  }
  for (const QStringView key : {kPasswordKey, kIsSelectedKey, kDetectionTypeKey}) {
    if (same->contains(key.toString())) {
      record.insert(key.toString(), same->value(key.toString()));
    }
  }
  *same = record;
  setProductRecords(lists, kSelectedDevices, selected);
}

} // namespace

void ProductList::addDetectedDevice(const ProductRecord &record) {
  change(u"netServiceDidResolveAddress"_s, [&](QVariantMap &lists) {
    putIntoDetected(lists, record);
    renewSelected(lists, record);
  });
}

void ProductList::removeDetectedDevice(const ProductRecord &record) {
  change(u"didRemoveService"_s, [&](QVariantMap &lists) {
    ProductRecords detected = productRecords(lists, kDetectedDevices);
    const auto sameIn = [&](QStringView key) {
      return std::find_if(detected.begin(), detected.end(),
                          [&](const ProductRecord &one) { return sameProductText(one, record, key); });
    };
    auto found = sameIn(kMacAddressKey);
    if (found == detected.end()) {
      found = sameIn(kSerialNumberKey);
    }
    if (found != detected.end()) {
      detected.erase(found);
      setProductRecords(lists, kDetectedDevices, detected);
    }
  });
}

} // namespace sonorel
