#include "products/ProductRows.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

QString knownText(const ProductRecord &record, QStringView key, QStringView unknown) {
  const QString text = productText(record, key);
  return text == unknown ? QString() : text;
}

QString withDetails(const QString &name, QStringList details) {
  details.removeAll(QString());
  if (details.isEmpty()) {
    return name;
  }
  return name.isEmpty() ? details.join(u", "_s) : name + u" ("_s + details.join(u", "_s) + u')';
}

} // namespace

QString detectedRowText(const ProductRecord &record) {
  const QString location = productText(record, kLocationKey, kNoLocation);
  return productText(record, kProductNameKey, kNoProductName) + u" ("_s +
         productText(record, kHostNameKey, kNoHostName) + (location == kNoLocation ? QString() : u',' + location) +
         u')';
}

QString addedRowText(const ProductRecord &record) {
  const QString host = productText(record, kHostNameKey, kNoHostName);
  const QString address = productText(record, kIpAddressKey, kNoAddress);
  if (host == kNoHostName) {
    return address;
  }
  return address == kNoAddress ? host : host + u" ("_s + address + u')';
}

QString selectedRowText(const ProductRecord &record) {
  if (!productText(record, kProductNameKey).isEmpty()) {
    return detectedRowText(record);
  }
  return addedRowText(record) + kAddedByHandMark.toString();
}

QString productRowText(ProductTable table, const ProductRecord &record) {
  switch (table) {
  case ProductTable::Detected:
    return detectedRowText(record);
  case ProductTable::Added:
    return addedRowText(record);
  case ProductTable::Selected:
    break;
  }
  return selectedRowText(record);
}

QStringList productRowTexts(ProductTable table, const ProductRecords &records) {
  QStringList texts;
  texts.reserve(records.size());
  for (const ProductRecord &record : records) {
    texts.append(productRowText(table, record));
  }
  return texts;
}

QString chopStringforStar(const QString &text, const std::function<bool(const QString &)> &fits) {
  if (fits(text)) {
    return text;
  }
  const auto dots = u"..."_s;
  qsizetype fitting = 0; // longest beginning known to fit
  qsizetype tooLong = text.size();
  while (tooLong - fitting > 1) {
    const qsizetype middle = fitting + (tooLong - fitting) / 2;
    (fits(text.left(middle) + dots) ? fitting : tooLong) = middle;
  }
  if (fitting > 0 && text.at(fitting - 1).isHighSurrogate()) {
    --fitting;
  }
  return text.left(fitting) + dots;
}

QString dockMenuEntry(const ProductRecord &record) {
  const QString host = knownText(record, kHostNameKey, kNoHostName);
  if (productText(record, kProductNameKey).isEmpty()) {
    const QString address = knownText(record, kIpAddressKey, kNoAddress);
    return withDetails(host, {address == kNoIpAddress ? QString() : address});
  }
  return withDetails(knownText(record, kProductNameKey, kNoProductName),
                     {knownText(record, kLocationKey, kNoLocation), host});
}

QStringList dockMenuEntries(const ProductRecords &records) {
  QStringList entries;
  entries.reserve(records.size());
  for (const ProductRecord &record : records) {
    entries.append(dockMenuEntry(record));
  }
  return entries;
}

} // namespace sonorel
