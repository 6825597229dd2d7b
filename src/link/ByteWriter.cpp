#include "link/ByteWriter.h"

#include "link/UtilityFunction.h"
#include "platform/Failure.h"

#include <cstring>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

void ByteWriter::u32(quint32 value) {
  const quint32 little = UtilityFunction::convertToWindowInt(value);
  char raw[sizeof little];
  std::memcpy(raw, &little, sizeof little);
  m_data.append(raw, sizeof raw);
}

void ByteWriter::patchU32(qsizetype offset, quint32 value) {
  if (offset < 0 || offset > m_data.size() - 4) {
    throw Failure(u"no field at offset %1 of %2 bytes"_s.arg(offset).arg(m_data.size()));
  }
  const quint32 little = UtilityFunction::convertToWindowInt(value);
  std::memcpy(m_data.data() + offset, &little, sizeof little);
}

} // namespace sonorel
