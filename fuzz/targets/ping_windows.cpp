// The output of the Windows `ping`, read by both parsers.
#include "ping/ping_windows.h"

#include "harness.h"
#include "run_state.h"

void readInput(const std::string& input) {
  writeFile(logFile("\\ping_latest.log"), input);
  writeFile("/tmp/ping_latest.log", input);
  const std::string ending = endingOf(read_latest_ping_log_file_win, {"stoi"});
  const Results results = outputResults;
  requireSoundPingHistory(0);

  outputResults = {};
  require(endingOf(read_latest_ping_log_file_wintest, {"stoi"}) == ending,
          "both parsers end alike");
  require(outputResults.latencyValid == results.latencyValid &&
              outputResults.latencyMs == results.latencyMs,
          "both parsers find the same latency");
}
