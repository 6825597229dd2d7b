// Wakes the product that is about to be connected to, by a magic packet to the whole network. Nothing that goes wrong
// here is an error: a product that is awake needs no packet. Controller's thread; blocks for a second after a packet.
#pragma once

#include "platform/Clock.h"
#include "platform/Datagrams.h"
#include "platform/Desktop.h"
#include "products/ProductList.h"

#include <QByteArray>

#include <chrono>
#include <functional>
#include <optional>
#include <stop_token>

namespace sonorel {

inline constexpr quint16 kWakePort = 9;
inline constexpr QStringView kWakeAddress = u"255.255.255.255";
inline constexpr qsizetype kHardwareBytes = 6;

// The first six digit pairs of the text without "-"; a character that is no hexadecimal digit counts as 0. nullopt
// when there are fewer than twelve.
[[nodiscard]] std::optional<QByteArray> hardwareBytes(const QString &address);
[[nodiscard]] bool hasOnlyHexadecimalPairs(const QString &address);
// Six bytes FF and the address sixteen times: 102 bytes.
[[nodiscard]] QByteArray magicPacket(const QByteArray &hardwareAddress);

class WakeOnLan {
public:
  static constexpr std::chrono::milliseconds kPause{1'000};

  struct Hooks {
    std::function<std::stop_token()> stop; // ends the pause
    std::function<void()> waiting;         // a packet was tried: people may be told what is waited for
  };

  // All references must outlive the object.
  WakeOnLan(ProductList &products, Datagrams &datagrams, Clock &clock, Desktop &desktop, Hooks hooks);

  void WakeupOnLanAProduct(const QString &ipAddress);
  // False when no network took it.
  bool WakeByMac(const QByteArray &hardwareAddress, quint16 port);

private:
  ProductList &m_products;
  Datagrams &m_datagrams;
  Clock &m_clock;
  Desktop &m_desktop;
  Hooks m_hooks;
};

} // namespace sonorel
