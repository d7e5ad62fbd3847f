// A report of iperf3: iperf3_latest.log, iperf3_latest-R.log.
#pragma once

#include "local_time.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace watch {

struct Iperf3Report {
  /// Nothing where no test began.
  std::optional<EpochSeconds> start;
  std::uint16_t clientPort = 0;
  /// What stopped it, in iperf3's words. Empty when nothing did.
  std::string error;
  /// Intervals, of a second mostly, in which no byte was received (reverse) or sent (forward).
  std::uint32_t emptyIntervals = 0;
};

/// Reads a report. Returns nothing for a text that is no whole JSON object.
std::optional<Iperf3Report> parseIperf3Report(std::string_view text);

}  // namespace watch
