// A block of ping_history_verbose.log: what one ping has printed, from its "PING " on.
#pragma once

#include "evidence/source.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
  /// The times of the replies, without duplicates, in milliseconds.
  std::vector<double> replies;
  Source from;
};

/// Whether `line` is the summary of the round-trip times, in whatever form a ping prints it.
bool isPingSummary(std::string_view line);
/// Takes what the summary `line` tells into `output`.
void takePingSummary(std::string_view line, PingOutput& output);

/// Puts the blocks together from the log's lines, which are given one after the other.
class PingOutputReader {
 public:
  /// Adds the blocks to `outputs`, each when it begins.
  explicit PingOutputReader(std::vector<PingOutput>& outputs) : outputs_(outputs) {}

  /// `line` comes without its newline.
  void take(std::string_view line, std::uint32_t file, std::uint32_t number);
  /// Lines before the first block, which belong to none.
  std::uint32_t linesBefore() const { return before_; }

 private:
  void begin(std::string_view header, std::uint32_t file, std::uint32_t number);

  std::vector<PingOutput>& outputs_;
  bool hasBegun_ = false;
  std::uint32_t before_ = 0;
};

}  // namespace watch
