// A line of iperf3_history_forward_csv.log or iperf3_history_reverse_csv.log: one test.
#pragma once

#include "evidence/source.h"
#include "local_time.h"

#include <optional>
#include <string>
#include <string_view>

namespace watch {

struct Iperf3Line {
  /// Nothing where the report did not tell.
  std::optional<EpochSeconds> start;
  std::string client;
  std::string server;
  std::uint16_t clientPort = 0;
  std::uint16_t serverPort = 0;
  /// How long the test was to take, in seconds.
  std::optional<std::uint32_t> duration;
  /// What was sent in a forward test, received in a reverse one.
  std::uint64_t bytes = 0;
  double bps = 0;
  Source from;

  /// The report named the server, as it does when a connection stood.
  bool connected() const { return !server.empty(); }
};

/// Returns what the whole of `line` says, or nothing.
std::optional<Iperf3Line> parseForwardLine(std::string_view line);
std::optional<Iperf3Line> parseReverseLine(std::string_view line);

/// Returns where in `line` the last line begins that may have followed on a cut one, or npos.
std::size_t lastIperf3Line(std::string_view line);

/// Returns whether both are of the same test: they began in the same second, with the same ports.
bool isSameTest(const Iperf3Line& one, const Iperf3Line& other);

}  // namespace watch
