// The iperf3 histories of both directions: every line counts.
#include "iperf3/iperf3_history.h"

#include "harness.h"
#include "history_files.h"
#include "log_files.h"
#include "run_state.h"

namespace {

void readHistory(bool reverse, const std::string& path, const std::string& input) {
  startRun();
  writeFile(path, input);
  write_iperf3_history_log_files(reverse);
  const std::size_t moves = countLines(path.c_str()) < kFullHistoryLines ? 0 : 1;
  require(commandCount == moves, "ten lines are moved");
}

}  // namespace

void readInput(const std::string& input) {
  readHistory(false, logFile("iperf3_history_forward_csv.log"), input);
  readHistory(true, logFile("iperf3_history_reverse_csv.log"), input);
}
