// The part of the product list that the connect flow uses: which product is the active one, and what a connection
// leaves in its records.
#include "link/HardwareAddress.h"
#include "products/PasswordArchive.h"
#include "products/ProductList.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

struct ConnectedInfo {
  QString address;
  QByteArray password;
  QString hardwareAddress;
  QString detectionType; // empty when it is not known
};

void setPasswordAndAddress(ProductRecord &record, const ConnectedInfo &info) {
  record.insert(kPasswordKey.toString(), info.password);
  setProductText(record, kMacAddressKey, info.hardwareAddress);
}

void updateEarlier(ProductRecords &earlier, const ConnectedInfo &info) {
  const auto found = std::find_if(earlier.begin(), earlier.end(), [&](const ProductRecord &one) {
    return productText(one, kIpAddressKey) == info.address &&
           productText(one, kDetectionTypeKey) == info.detectionType;
  });
  if (found != earlier.end()) {
    setPasswordAndAddress(*found, info);
    return;
  }
  ProductRecord record;
  setPasswordAndAddress(record, info);
  setProductText(record, kIpAddressKey, info.address);
  if (!info.detectionType.isEmpty()) {
    setProductText(record, kDetectionTypeKey, info.detectionType);
  }
  earlier.append(record);
}

// What stands for "not known" is no address.
QString knownHardwareAddress(const ProductRecord &record) {
  const QString address = productText(record, kMacAddressKey);
  return address == kNoMacAddress || address == kNoMacAddressSet ? QString() : address;
}

} // namespace

ProductList::ActiveProduct ProductList::activeProduct() {
  const ProductRecords selected = productRecords(content(u"activeProduct"_s), kSelectedDevices);
  ActiveProduct product;
  product.listIsEmpty = selected.isEmpty();
  if (const qsizetype active = activeIndex(selected); active >= 0) {
    product.address = connectionAddress(selected.at(active));
    product.password = decrypt(m_tools.lists, selected.at(active).value(kPasswordKey.toString()));
  }
  return product;
}

void ProductList::updateProductInfoInProductsLists(const QString &address) {
  const QString found = hardwareAddressIn(m_tools.settings.data(u"MACAdress"_s));
  ConnectedInfo info;
  info.address = address;
  info.hardwareAddress = found.isEmpty() ? kNoMacAddress.toString() : found;
  if (!m_file.exists()) {
    return; // none is made for this
  }
  change(u"updateProductInfoInProductsLists"_s, [&](QVariantMap &lists) {
    info.password = encrypt(m_tools.lists, m_tools.session.PasswordString());
    ProductRecords selected = productRecords(lists, kSelectedDevices);
    if (const qsizetype active = activeIndex(selected); active >= 0) {
      setPasswordAndAddress(selected[active], info);
      info.detectionType = productText(selected.at(active), kDetectionTypeKey);
      setProductRecords(lists, kSelectedDevices, selected);
    }
    ProductRecords earlier = productRecords(lists, kEarlierConnectedDevices);
    updateEarlier(earlier, info);
    setProductRecords(lists, kEarlierConnectedDevices, earlier);
  });
}

QString ProductList::hardwareAddressFor(const QString &address) {
  const QVariantMap lists = content(u"WakeupOnLanAProduct"_s);
  const ProductRecords selected = productRecords(lists, kSelectedDevices);
  QString type = kNoDetectionType.toString();
  if (const qsizetype active = activeIndex(selected); active >= 0) {
    const QString known = knownHardwareAddress(selected.at(active));
    if (!known.isEmpty()) {
      return known;
    }
    type = productText(selected.at(active), kDetectionTypeKey, kNoDetectionType);
  }
  const ProductRecords earlier = productRecords(lists, kEarlierConnectedDevices);
  const auto found = std::find_if(earlier.begin(), earlier.end(), [&](const ProductRecord &one) {
    return productText(one, kIpAddressKey) == address &&
           productText(one, kDetectionTypeKey, kNoDetectionType) == type;
  });
  return found == earlier.end() ? QString() : knownHardwareAddress(*found);
}

} // namespace sonorel
