// Identifiers that count up from 1, the texts and the bytes each for themselves. Any thread.
#pragma once

#include "platform/Identifiers.h"

#include <atomic>

namespace sonorel::test {

class FakeIdentifiers : public Identifiers {
public:
  QString generateUUID() override {
    return QStringLiteral("00000000-0000-0000-0000-") +
           QString::number(++m_texts, 16).toUpper().rightJustified(12, u'0');
  }
  QByteArray generateUUIDBytes() override {
    const quint32 number = ++m_bytes;
    QByteArray bytes(16, '\0');
    for (int i = 0; i < 4; ++i) {
      bytes[15 - i] = static_cast<char>(number >> (8 * i) & 0xFF);
    }
    return bytes;
  }

private:
  std::atomic<quint32> m_texts{0};
  std::atomic<quint32> m_bytes{0};
};

} // namespace sonorel::test
