// One product as the product list file holds it: a dictionary of texts, of which any may be missing and which may
// hold keys that nobody here knows. The keys, the default texts and the rules by which two records mean the same
// product. Pure. Read next: ProductListFile.h.
#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <QVariantMap>

namespace sonorel {

using ProductRecord = QVariantMap;
using ProductRecords = QList<ProductRecord>;

// --- the file's arrays ---
inline constexpr QStringView kDetectedDevices = u"Detected Devices";
inline constexpr QStringView kManuallyAddedDevices = u"Manually Added Devices";
inline constexpr QStringView kSelectedDevices = u"Selected Devices";
inline constexpr QStringView kEarlierConnectedDevices = u"Earlier Connected Devices";

// --- a record's keys ---
inline constexpr QStringView kProductNameKey = u"Product Name";
inline constexpr QStringView kHostNameKey = u"Host Name";
inline constexpr QStringView kIpAddressKey = u"IP Address";
inline constexpr QStringView kMacAddressKey = u"Mac Address";
inline constexpr QStringView kLocationKey = u"Location";
inline constexpr QStringView kSerialNumberKey = u"Serial Number";
inline constexpr QStringView kDetectionTypeKey = u"Detection Type";
inline constexpr QStringView kIsSelectedKey = u"Is Selected";
inline constexpr QStringView kPasswordKey = u"Password"; // the bytes that encrypt makes

// --- values ---
inline constexpr QStringView kDetected = u"0";
inline constexpr QStringView kAddedByHand = u"1";
inline constexpr QStringView kSelectedYes = u"Yes";
inline constexpr QStringView kSelectedNo = u"No";

// --- what stands for an unknown value ---
inline constexpr QStringView kNoProductName = u"NOPRODUCTNAMESET";
inline constexpr QStringView kNoHostName = u"NOHOSTNAMESET";
inline constexpr QStringView kNoIpAddress = u"NOIPADDRESSSET"; // discovery
inline constexpr QStringView kNoAddress = u"NOADDRESSSET";     // display
inline constexpr QStringView kNoMacAddress = u"NOMACADDRESS";  // after a connection
inline constexpr QStringView kNoMacAddressSet = u"NOMACADDRESSSET";
inline constexpr QStringView kNoLocation = u"NOLOCATIONSET";
inline constexpr QStringView kNoSerialNumber = u"NOSERIALNUMBERSET";
inline constexpr QStringView kNoDetectionType = u"NODETECTIONTYPESET";

// Empty when the key is missing or its value is no text.
[[nodiscard]] QString productText(const ProductRecord &record, QStringView key);
[[nodiscard]] QString productText(const ProductRecord &record, QStringView key, QStringView absent);
void setProductText(ProductRecord &record, QStringView key, QStringView text);

[[nodiscard]] bool isActive(const ProductRecord &record);           // "Is Selected" is "Yes"
[[nodiscard]] qsizetype activeIndex(const ProductRecords &records); // the first active one; -1 when there is none

// The address to connect to: the IP address, else the host name; default texts are none. May be empty.
[[nodiscard]] QString connectionAddress(const ProductRecord &record);

// Both have the same text under the key. A key that is missing makes no match; a default text counts as any other.
[[nodiscard]] bool sameProductText(const ProductRecord &a, const ProductRecord &b, QStringView key);
// Detected products: the same hardware address or the same serial number.
[[nodiscard]] bool sameDetectedProduct(const ProductRecord &a, const ProductRecord &b);
// What the add panel makes twice: the same host name or the same IP address.
[[nodiscard]] bool sameManualEntry(const ProductRecord &a, const ProductRecord &b);
// Whether the list of selected products holds the added product in this record.
[[nodiscard]] bool sameSelectedProduct(const ProductRecord &selected, const ProductRecord &added);

} // namespace sonorel
