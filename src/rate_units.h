// The units in which the result line shows its rates.
#pragma once

#include <cstdint>
#include <iterator>

/// A unit, and its size in bits per second.
struct RateUnit {
  const char* name;
  unsigned long long bps;
};

/// The `outputFormat` that chooses a unit is its place in here, from 1 on.
inline constexpr RateUnit kRateUnits[] = {
    {"bps", 1}, {"Mebibps", 1ULL << 20}, {"Megabps", 1'000'000}};

/// Returns the unit that `outputFormat` chooses, or null where it chooses none.
constexpr const RateUnit* rateUnit(std::int32_t outputFormat) {
  const auto place = static_cast<std::uint32_t>(outputFormat) - 1U;
  return place < std::size(kRateUnits) ? &kRateUnits[place] : nullptr;
}
