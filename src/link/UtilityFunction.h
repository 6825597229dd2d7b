// Byte order of the host, and 32-bit integers as the server reads them: least significant byte first. Pure.
#pragma once

#include <QtGlobal>

namespace sonorel {

class UtilityFunction {
public:
  // 1 on a big-endian host, 2 on a little-endian host.
  [[nodiscard]] static int getArch();
  // The value whose bytes in memory stand in little-endian order.
  [[nodiscard]] static quint32 convertToWindowInt(quint32 value);
  // Four bytes read as an unsigned little-endian value.
  [[nodiscard]] static quint32 convertToMacInt(const char *fourBytes);
};

} // namespace sonorel
