// CLOCK_MONOTONIC, a nanosecond a tick, wherever there is no mach clock.
#if !defined(__APPLE__)

#include "monotonic_clock.h"

#include <ctime>

ClockTimebase monotonicTimebase() {
  return {1, 1};
}

std::uint64_t monotonicTicks() {
  std::timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000 +
         static_cast<std::uint64_t>(now.tv_nsec);
}

#endif
