// The record of one iperf3 run in one direction.
#pragma once

#include "run_state.h"

#include <cstdint>

/// Required (Iperf3Run.WritesTextsOf32CharactersWhole): a text that fills its field has no
/// terminator.
struct iperf3_status {
  char date[kTextWidth] = {};  // test start, seconds since the epoch
  char clientIp[kTextWidth] = {};
  char serverIp[kTextWidth] = {};
  std::int32_t clientPort = 0;
  std::int32_t serverPort = 0;
  char testTime[kTextWidth] = {};  // seconds
  char reverse[kTextWidth] = {};   // "0" client to server, "1" server to client
  // Required (Iperf3Json.GivesTheRecordOfEachRecording): never filled.
  std::int32_t transferId = 0;
  unsigned long long lengthSent = 0;  // bytes
  double bpsSent = 0.0;               // bits per second, in single precision
  unsigned long long lengthRcvd = 0;  // bytes
  double bpsRcvd = 0.0;               // bits per second, in single precision
};

/// Prints all fields, one a line.
void printIperf3Status(const iperf3_status& status);
