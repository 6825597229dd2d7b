#include "products/WakeOnLan.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qsizetype kDigits = 2 * kHardwareBytes;
constexpr int kRepetitions = 16;

QString withoutSeparators(QString address) {
  return address.remove(u'-');
}

// -1 for anything else.
int digitValue(QChar digit) {
  const char16_t unit = digit.unicode();
  if (unit >= u'0' && unit <= u'9') {
    return unit - u'0';
  }
  const char16_t lower = unit | 0x20;
  return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

} // namespace

std::optional<QByteArray> hardwareBytes(const QString &address) {
  const QString digits = withoutSeparators(address);
  if (digits.size() < kDigits) {
    return std::nullopt;
  }
  QByteArray bytes;
  for (qsizetype i = 0; i < kDigits; i += 2) {
    const int high = std::max(digitValue(digits.at(i)), 0);
    const int low = std::max(digitValue(digits.at(i + 1)), 0);
    bytes.append(static_cast<char>(high << 4 | low));
  }
  return bytes;
}

bool hasOnlyHexadecimalPairs(const QString &address) {
  const QString digits = withoutSeparators(address);
  return digits.size() == kDigits &&
         std::all_of(digits.begin(), digits.end(), [](QChar digit) { return digitValue(digit) >= 0; });
}

QByteArray magicPacket(const QByteArray &hardwareAddress) {
  return QByteArray(kHardwareBytes, '\xff') + hardwareAddress.repeated(kRepetitions);
}

WakeOnLan::WakeOnLan(ProductList &products, Datagrams &datagrams, Clock &clock, Desktop &desktop, Hooks hooks)
    : m_products(products), m_datagrams(datagrams), m_clock(clock), m_desktop(desktop), m_hooks(std::move(hooks)) {}

void WakeOnLan::WakeupOnLanAProduct(const QString &ipAddress) {
  const QString address = m_products.hardwareAddressFor(ipAddress);
  if (address.isEmpty()) {
    return;
  }
  const auto bytes = hardwareBytes(address);
  if (!bytes) {
    m_desktop.log(u"the product is not woken: its hardware address \"%1\" is too short"_s.arg(address));
    return;
  }
  if (!hasOnlyHexadecimalPairs(address)) {
    m_desktop.log(u"the product's hardware address \"%1\" is not made of hexadecimal pairs and \"-\""_s.arg(address));
  }
  WakeByMac(*bytes, kWakePort);
  m_hooks.waiting();
  m_clock.sleep(kPause, m_hooks.stop());
}

bool WakeOnLan::WakeByMac(const QByteArray &hardwareAddress, quint16 port) {
  return m_datagrams.broadcast(magicPacket(hardwareAddress), kWakeAddress.toString(), port);
}

} // namespace sonorel
