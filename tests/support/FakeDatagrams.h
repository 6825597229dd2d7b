// Datagrams that go nowhere and are kept. Not thread-safe.
#pragma once

#include "platform/Datagrams.h"

#include <QList>

namespace sonorel::test {

struct SentDatagram {
  QByteArray bytes;
  QString address;
  quint16 port = 0;
};

class FakeDatagrams : public Datagrams {
public:
  QList<SentDatagram> sent;
  bool taken = true; // what broadcast answers

  bool broadcast(const QByteArray &bytes, const QString &address, quint16 port) override {
    sent.append({bytes, address, port});
    return taken;
  }
};

} // namespace sonorel::test
