// A report of iperf3: iperf3_latest.log, iperf3_latest-R.log.
#pragma once

#include "local_time.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace watch {

/// Round-trip times that the sender has seen while it sent, in milliseconds.
struct LoadedRoundTrips {
  double least;
  double mean;
  double most;
};

/// What is not there was not told.
struct Iperf3Report {
  /// "3.12"
  std::string release;
  /// Nothing where no test began.
  std::optional<EpochSeconds> start;
  std::uint16_t clientPort = 0;
  std::uint16_t serverPort = 0;
  /// What was sent (forward) or received (reverse), and in how many seconds.
  std::optional<std::uint64_t> bytes;
  std::optional<double> seconds;
  /// Bits per second.
  std::optional<double> sentBps;
  std::optional<double> receivedBps;
  std::optional<std::uint64_t> retransmits;
  std::optional<LoadedRoundTrips> roundTrips;
  /// How long all intervals took in which no byte was sent (forward) or received (reverse).
  double emptySeconds = 0;
  /// What stopped it, in iperf3's words. Empty when nothing did.
  std::string error;

  /// iperf3 says itself that the test did not go through: it broke off, or stood still for more
  /// than the odd end of its last interval.
  bool wasStopped() const;
};

/// Reads a report. Returns nothing for a text that is no whole JSON object.
std::optional<Iperf3Report> parseIperf3Report(std::string_view text);

}  // namespace watch
