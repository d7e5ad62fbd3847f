// A line of ping_history.log: the summary of one ping.
#pragma once

#include "evidence/source.h"
#include "local_time.h"

#include <optional>
#include <string_view>

namespace watch {

struct PingLine {
  LocalTime start;
  /// Milliseconds. Zeros where the summary was not four numbers; `stddev` may be no number (NaN).
  double min = 0;
  double avg = 0;
  double max = 0;
  double stddev = 0;
  Source from;

  bool isZeros() const { return min == 0 && avg == 0 && max == 0 && stddev == 0; }
};

/// Returns what the whole of `line` says, or nothing.
std::optional<PingLine> parsePingLine(std::string_view line);

/// Returns where in `line` the last line begins that may have followed on a cut one, or npos.
std::size_t lastPingLine(std::string_view line);

}  // namespace watch
