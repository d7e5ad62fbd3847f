// What a test, a ping and a run came to: the states and classes, by one table of rules each.
#pragma once

#include "evidence/evidence.h"
#include "runs/run.h"

#include <string_view>

namespace watch {

/// What is known of one direction of a run. What is not there is null.
struct RateFacts {
  const Iperf3Line* line = nullptr;
  /// The report of the same test.
  const Iperf3Report* report = nullptr;
  /// What iperf3, or its adapter, has complained of then.
  std::string_view said{};
  /// The line is that of the test before once more.
  bool isRepeated = false;
  /// The result shows a rate, so that there was a line, or its file can't be read.
  bool isLost = false;
};

/// What is known of the ping of a run: its last line, and its last output.
struct PingFacts {
  const PingLine* line = nullptr;
  const PingOutput* output = nullptr;
  bool isRepeated = false;
  /// There may be an output, but which one is not known.
  bool isOpen = false;
  /// Pings are switched off, or no run has left any trace of one.
  bool isOff = false;
  /// What ping, or its adapter, has complained of then.
  std::string_view said{};
};

Rate judge(const RateFacts& facts);
Ping judge(const PingFacts& facts);
Class classOf(const Run& run);

}  // namespace watch
