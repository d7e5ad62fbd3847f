// The record of one line of an iperf2 CSV report.
#pragma once

#include "run_state.h"

#include <cstdint>

struct iperf2_status {
  char date[kTextWidth + 1] = {};  // as iperf2 prints it
  char clientIp[kTextWidth + 1] = {};
  char serverIp[kTextWidth + 1] = {};
  std::int32_t clientPort = 0;
  std::int32_t serverPort = 0;
  char testTime[kTextWidth + 1] = {};  // start and end in seconds, joined by a hyphen
  std::int32_t transferId = 0;
  unsigned long long length = 0;  // bytes
  unsigned long long bps = 0;     // bits per second
};

/// Scans the nine columns of a report at the start of `text` and returns whether all were there.
/// A text column of more than 32 characters is not one.
bool scanIperf2Report(const char* text, iperf2_status& status);
