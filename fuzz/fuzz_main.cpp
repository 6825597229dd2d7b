// One fuzz program; SONOREL_FUZZ_TARGET is the function of FuzzTargets.h that it calls.
#include "FuzzTargets.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  sonorel::fuzz::SONOREL_FUZZ_TARGET(QByteArrayView(data, static_cast<qsizetype>(size)));
  return 0;
}
