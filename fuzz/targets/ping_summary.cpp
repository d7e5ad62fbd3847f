// The output of `ping`.
#include "harness.h"
#include "ping/ping_run.h"

void readInput(const std::string& input) {
  writeFile(logFile("ping_latest.log"), input);
  endingOf(read_latest_ping_log_file_unix, {"stod", "basic_string::substr"});
  requireSoundPingHistory(1);
}
