#include "link/ByteReader.h"

#include "link/UtilityFunction.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

void ByteReader::require(quint32 count) const {
  if (static_cast<quint64>(remaining()) < count) {
    throw Failure(u"%1 bytes wanted at offset %2, %3 left"_s.arg(count).arg(m_position).arg(remaining()),
                  FailureKind::Damaged);
  }
}

quint8 ByteReader::u8() {
  require(1);
  return static_cast<quint8>(m_data.at(m_position++));
}

quint32 ByteReader::u32() {
  require(4);
  const quint32 value = UtilityFunction::convertToMacInt(m_data.data() + m_position);
  m_position += 4;
  return value;
}

QByteArray ByteReader::bytes(quint32 count) {
  return view(count).toByteArray();
}

QByteArrayView ByteReader::view(quint32 count) {
  require(count);
  const QByteArrayView found = m_data.sliced(m_position, count);
  m_position += count;
  return found;
}

void ByteReader::seek(qsizetype position) {
  if (position < 0 || position > m_data.size()) {
    throw Failure(u"offset %1 of %2 bytes"_s.arg(position).arg(m_data.size()), FailureKind::Damaged);
  }
  m_position = position;
}

} // namespace sonorel
