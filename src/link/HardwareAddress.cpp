#include "link/HardwareAddress.h"

#include <algorithm>

namespace sonorel {

namespace {

bool isHexadecimal(QChar character) {
  const char16_t lower = character.toLower().unicode();
  return (lower >= u'0' && lower <= u'9') || (lower >= u'a' && lower <= u'f');
}

} // namespace

QString hardwareAddressIn(const QByteArray &addressFile) {
  const qsizetype lineFeed = addressFile.indexOf('\n');
  if (lineFeed < 0 || addressFile.size() - lineFeed - 1 < kHardwareAddressLength) {
    return {};
  }
  const QString found = QString::fromLatin1(addressFile.mid(lineFeed + 1, kHardwareAddressLength));
  const bool isText = std::all_of(found.begin(), found.end(), [](QChar one) { return one.unicode() >= 0x20; });
  return isText ? found : QString();
}

bool isHardwareAddress(QStringView text) {
  if (text.size() != kHardwareAddressLength) {
    return false;
  }
  for (qsizetype i = 0; i < text.size(); ++i) {
    const bool separator = i % 3 == 2;
    if (isHexadecimal(text.at(i)) == separator) {
      return false;
    }
  }
  return true;
}

} // namespace sonorel
