// One broadcast datagram. Any thread; does not block.
#pragma once

#include <QByteArray>
#include <QString>

namespace sonorel {

class Datagrams {
public:
  virtual ~Datagrams() = default;
  // False when no interface took it.
  virtual bool broadcast(const QByteArray &bytes, const QString &address, quint16 port) = 0;
};

} // namespace sonorel
