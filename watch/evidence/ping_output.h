// A block of ping_history_verbose.log: what one ping has printed, from its "PING " on.
#pragma once

#include "evidence/source.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace watch {

/// Milliseconds. What the summary does not hold is NaN.
struct PingSummary {
  double min;
  double avg;
  double max;
  double stddev;
};

struct PingOutput {
  /// What was pinged, as ping has printed it.
  std::string target;
  std::optional<std::uint32_t> sent;
  std::optional<std::uint32_t> received;
  /// As ping prints it, in whatever form.
  std::optional<PingSummary> summary;
  /// The tester has read the summary, and so has written a line of the history; it had read four
  /// numbers there.
  bool summaryIsRead = false;
  bool summaryIsWhole = false;
  /// Replies, without duplicates: how many, and the sum of their times in milliseconds.
  std::uint32_t replies = 0;
  double leastMs = 0;
  double greatestMs = 0;
  double sumMs = 0;
  /// The same for the same times in the same order.
  std::uint64_t fingerprint = 0;
  Source from;
};

/// Puts the blocks together from the log's lines, which are given one after the other.
class PingOutputReader {
 public:
  /// `line` comes without its newline. Returns the block that ended before it.
  std::optional<PingOutput> take(std::string_view line, std::uint32_t file, std::uint32_t number);
  /// Returns the last block.
  std::optional<PingOutput> end();
  /// Lines before the first block, which belong to none.
  std::uint32_t linesBefore() const { return before_; }

 private:
  std::optional<PingOutput> open_;
  std::uint32_t before_ = 0;
};

}  // namespace watch
