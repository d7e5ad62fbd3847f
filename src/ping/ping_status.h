// The record of one ping summary.
#pragma once

#include <cstdint>

/// Round-trip times of one ping run, in milliseconds.
struct ping_status {
  // Required (PingHistory.RoundsToThreeDecimals): always 0, read by nothing.
  std::int32_t reserved = 0;
  double min = 0.0;
  double avg = 0.0;
  double max = 0.0;
  double stddev = 0.0;
};
