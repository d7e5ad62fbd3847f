// A line of connection_test_results_history.log: what a run has said at its end.
#pragma once

#include "evidence/source.h"
#include "local_time.h"

#include <optional>
#include <string_view>

namespace watch {

struct ResultLine {
  /// The end of the ping. Nothing where no summary was read.
  std::optional<LocalTime> date;
  /// Whole milliseconds. Nothing for "n/a".
  std::optional<std::uint32_t> latencyMs;
  /// Whole units. Nothing for "n/a".
  std::optional<std::uint64_t> write;
  std::optional<std::uint64_t> read;
  /// Bits per second that a unit stands for.
  std::uint64_t unitBps = 1;
  Source from;
};

/// Returns what the whole of `line` says, or nothing.
std::optional<ResultLine> parseResultLine(std::string_view line);

/// Returns where in `line` the last line begins that may have followed on a cut one, or npos.
std::size_t lastResultLine(std::string_view line);

}  // namespace watch
