#include "link/UtilityFunction.h"

#include <bit>

namespace sonorel {

namespace {

constexpr int kBigEndian = 1;
constexpr int kLittleEndian = 2;

} // namespace

int UtilityFunction::getArch() {
  return std::endian::native == std::endian::big ? kBigEndian : kLittleEndian;
}

quint32 UtilityFunction::convertToWindowInt(quint32 value) {
  if (getArch() == kLittleEndian) {
    return value;
  }
  return value << 24 | (value & 0xFF00U) << 8 | (value >> 8 & 0xFF00U) | value >> 24;
}

quint32 UtilityFunction::convertToMacInt(const char *fourBytes) {
  quint32 value = 0;
  for (int i = 3; i >= 0; --i) {
    value = value << 8 | static_cast<quint8>(fourBytes[i]);
  }
  return value;
}

} // namespace sonorel
