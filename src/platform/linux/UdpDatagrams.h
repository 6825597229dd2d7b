// Broadcasts by UDP, once from each interface's own IPv4 address: a machine without a default route reaches its
// networks that way, and one with several reaches all of them. Any thread; does not block.
#pragma once

#include "platform/Datagrams.h"

namespace sonorel {

class UdpDatagrams final : public Datagrams {
public:
  bool broadcast(const QByteArray &bytes, const QString &address, quint16 port) override;
};

} // namespace sonorel
