// Where libFuzzer enters the targets of connWatch, whose readers know no state but the zone.
#include "promise.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  setenv("TZ", "Europe/Berlin", 1);
  readInput({reinterpret_cast<const char*>(data), size});
  return 0;
}
