#include "ping/latency.h"

#include "run_state.h"
#include "time_services.h"

#include <cstdint>

namespace {

std::int64_t wholeMilliseconds(double ms) {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  const bool fits = ms >= -kTwoTo63 && ms < kTwoTo63;
  return fits ? static_cast<std::int64_t>(ms) : 0;
}

}  // namespace

void recordLatency(double averageMs) {
  outputResults.latencyValid = true;
  outputResults.latencyMs = static_cast<std::uint32_t>(wholeMilliseconds(averageMs));
  getDateTimeString(outputResults.dateTime);
}
