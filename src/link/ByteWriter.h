// Appends little-endian fields to a growing buffer. Pure.
#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <utility>

namespace sonorel {

class ByteWriter {
public:
  ByteWriter() = default;
  explicit ByteWriter(qsizetype capacity) { m_data.reserve(capacity); }

  void u8(quint8 value) { m_data.append(static_cast<char>(value)); }
  void u32(quint32 value);
  void bytes(QByteArrayView value) { m_data.append(value); }
  // Writes over four bytes that were appended before; an offset outside them is a failure.
  void patchU32(qsizetype offset, quint32 value);

  [[nodiscard]] qsizetype size() const { return m_data.size(); }
  [[nodiscard]] const QByteArray &data() const { return m_data; }
  // The buffer; the writer is empty afterwards.
  [[nodiscard]] QByteArray take() { return std::exchange(m_data, {}); }

private:
  QByteArray m_data;
};

} // namespace sonorel
