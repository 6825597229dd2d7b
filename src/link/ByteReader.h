// Reads little-endian fields from foreign bytes. No length is trusted: whatever would pass the end throws Failure
// (Damaged) and allocates nothing. Pure; the bytes must outlive the reader.
#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace sonorel {

class ByteReader {
public:
  explicit ByteReader(QByteArrayView data) : m_data(data) {}

  [[nodiscard]] quint8 u8();
  [[nodiscard]] quint32 u32();
  // A copy of the next bytes.
  [[nodiscard]] QByteArray bytes(quint32 count);
  // The next bytes without a copy.
  [[nodiscard]] QByteArrayView view(quint32 count);
  // Moves to an offset counted from the beginning; the end itself is allowed.
  void seek(qsizetype position);

  [[nodiscard]] qsizetype position() const { return m_position; }
  [[nodiscard]] qsizetype remaining() const { return m_data.size() - m_position; }
  [[nodiscard]] bool atEnd() const { return remaining() == 0; }

private:
  void require(quint32 count) const;

  QByteArrayView m_data;
  qsizetype m_position = 0;
};

} // namespace sonorel
