// The platform's monotonic clock, one source file for each platform.
#pragma once

#include <cstdint>

/// A tick lasts `numer` / `denom` nanoseconds.
struct ClockTimebase {
  std::uint32_t numer;
  std::uint32_t denom;
};

ClockTimebase monotonicTimebase();

/// Ticks since a moment that stays fixed while the machine runs.
std::uint64_t monotonicTicks();
