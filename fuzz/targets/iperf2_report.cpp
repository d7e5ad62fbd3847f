// The iperf2 report.
#include "harness.h"
#include "iperf2/iperf2_run.h"
#include "run_state.h"

void readInput(const std::string& input) {
  writeFile(logFile("iperf2_latest.log"), input);
  read_latest_iperf2_log_file();
  require(outputResults.writeRateValid == (outputResults.dateTime[0] != '\0'), "a rate is stamped");
}
