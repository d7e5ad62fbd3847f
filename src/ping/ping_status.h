// The record of one ping summary.
#pragma once

#include <cstdint>

/// Round-trip times of one ping run, in milliseconds.
struct ping_status {
  std::int32_t reserved = 0;  // Required: always 0, read by nothing
  double min = 0.0;
  double avg = 0.0;
  double max = 0.0;
  double stddev = 0.0;
};
