// The mach clock of macOS. Written from the platform's manual and never run by the authors.
#if defined(__APPLE__)

#include "monotonic_clock.h"

#include <mach/mach_time.h>

ClockTimebase monotonicTimebase() {
  mach_timebase_info_data_t timebase = {};
  mach_timebase_info(&timebase);
  return {timebase.numer, timebase.denom};
}

std::uint64_t monotonicTicks() {
  return mach_absolute_time();
}

#endif
