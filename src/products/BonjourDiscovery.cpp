#include "products/BonjourDiscovery.h"

#include <QStringDecoder>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

// A control character or a half of a pair cannot stand in an XML file: it would cost the user the whole list.
bool standsInXml(QChar unit, bool inPair) {
  const char16_t code = unit.unicode();
  return inPair || (code >= 0x20 && !unit.isSurrogate() && code < 0xFFFE) || code == u'\t' || code == u'\n';
}

QString withoutUnwritable(const QString &text) {
  QString kept;
  kept.reserve(text.size());
  for (qsizetype i = 0; i < text.size(); ++i) {
    const bool first = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
    const bool second = text[i].isLowSurrogate() && i > 0 && text[i - 1].isHighSurrogate();
    if (standsInXml(text[i], first || second)) {
      kept.append(text[i]);
    }
  }
  return kept;
}

QString withoutLastCharacter(const QString &text) {
  const bool pair = text.size() > 1 && text.back().isLowSurrogate() && text[text.size() - 2].isHighSurrogate();
  return text.chopped(pair ? 2 : 1);
}

// Products end each value with one extra character. Nothing is left of a value of one character, or of bytes that are
// no UTF-8.
QString publishedText(const ResolvedService &service, const QByteArray &key, QStringView absent) {
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  const QString text = decoder(service.textRecord.value(key));
  if (text.isEmpty() || decoder.hasError()) {
    return absent.toString();
  }
  const QString value = withoutUnwritable(withoutLastCharacter(text));
  return value.isEmpty() ? absent.toString() : value;
}

bool isSame(const Service &a, const Service &b) {
  return a.name == b.name && a.type == b.type && a.domain == b.domain;
}

} // namespace

BonjourDiscovery::BonjourDiscovery(ServiceBrowser &bonjourServiceBrowser, ProductList &products)
    : m_bonjourServiceBrowser(bonjourServiceBrowser), m_products(products) {}

BonjourDiscovery::~BonjourDiscovery() {
  stop();
}

void BonjourDiscovery::init() {
  m_bonjourServiceBrowser.browse(kProductServiceType.toString(), QString(),
                                 {[this](const Service &service) { didFindService(service); },
                                  [this](const Service &service) { didRemoveService(service); },
                                  [this](const ResolvedService &service) { netServiceDidResolveAddress(service); },
                                  [](const Service &, const QString &) {}});
}

void BonjourDiscovery::stop() {
  m_bonjourServiceBrowser.stop();
  m_bonjourProductsArray.clear();
}

void BonjourDiscovery::didFindService(const Service &service) {
  if (indexOf(service) < 0) {
    m_bonjourProductsArray.append({service, {}, {}, 0, {}});
  }
  m_bonjourServiceBrowser.resolve(service);
}

void BonjourDiscovery::netServiceDidResolveAddress(const ResolvedService &service) {
  const qsizetype index = indexOf(service.service);
  if (index < 0) {
    return; // removed meanwhile
  }
  m_bonjourProductsArray[index] = service;
  m_products.addDetectedDevice(recordOfService(service));
}

void BonjourDiscovery::didRemoveService(const Service &service) {
  const qsizetype index = indexOf(service);
  if (index < 0) {
    return;
  }
  m_products.removeDetectedDevice(recordOfService(m_bonjourProductsArray.takeAt(index)));
}

qsizetype BonjourDiscovery::indexOf(const Service &service) const {
  const auto found = std::find_if(m_bonjourProductsArray.begin(), m_bonjourProductsArray.end(),
                                  [&](const ResolvedService &one) { return isSame(one.service, service); });
  return found == m_bonjourProductsArray.end() ? -1 : found - m_bonjourProductsArray.begin();
}

// --- what a product publishes ---

QString getHostNameForProduct(const ResolvedService &service) {
  const QString name = withoutUnwritable(service.service.name);
  const qsizetype blank = name.indexOf(u' ');
  return blank > 0 ? name.first(blank) : name;
}

QString getMACAddressForProduct(const ResolvedService &service) {
  const QString name = withoutUnwritable(service.service.name);
  const qsizetype open = name.indexOf(u'[');
  const qsizetype close = open < 0 ? -1 : name.indexOf(u']', open);
  return close > open + 1 ? name.sliced(open + 1, close - open - 1) : name;
}

QString getLocationForProduct(const ResolvedService &service) {
  return publishedText(service, "LOCATION", kNoLocation);
}

QString getProductNameForProduct(const ResolvedService &service) {
  return publishedText(service, "PRODUCT_NAME", kNoProductName);
}

QString getSerialNumberForProduct(const ResolvedService &service) {
  return publishedText(service, "PRODUCT_SERIALNO", kNoSerialNumber);
}

QString getIPAddressForProduct(const ResolvedService &service) {
  return service.address.isEmpty() ? kNoIpAddress.toString() : service.address;
}

ProductRecord recordOfService(const ResolvedService &service) {
  ProductRecord record;
  setProductText(record, kHostNameKey, getHostNameForProduct(service));
  setProductText(record, kLocationKey, getLocationForProduct(service));
  setProductText(record, kIpAddressKey, getIPAddressForProduct(service));
  setProductText(record, kMacAddressKey, getMACAddressForProduct(service));
  setProductText(record, kProductNameKey, getProductNameForProduct(service));
  setProductText(record, kSerialNumberKey, getSerialNumberForProduct(service));
  setProductText(record, kDetectionTypeKey, kDetected);
  return record;
}

} // namespace sonorel
