#include "iperf2/iperf2_history.h"

#include "history_files.h"
#include "iperf2/iperf2_status.h"
#include "iperf_client.h"
#include "log_files.h"
#include "run_state.h"

#include <cstdio>
#include <fstream>
#include <string>

namespace {

constexpr char kHeading[] = "\n= IPERF2 history %d ====================================\n";

void printReport(unsigned number, const iperf2_status& status) {
  std::printf(kHeading, static_cast<int>(number));
  printConnection(status);
  // Required (Iperf2History.MovesAtTenReportsAfterTheyArePrinted): the blank before the newline
  // stands in the other line of the latest report's print.
  std::printf("length %llu \n", status.length);
  std::printf("Bps %llu\n", status.bps);
}

/// Prints the reports of the history, numbered, and returns how many it holds.
unsigned reportHistory(const char* path) {
  std::ifstream history(path);
  unsigned count = 0;
  for (std::string line; std::getline(history, line);) {
    iperf2_status status;
    if (!scanIperf2Report(line.c_str(), status)) {
      continue;
    }
    if (ConfigurationParameters.debugPrintHistory) {
      printReport(count, status);
    }
    ++count;
  }
  return count;
}

}  // namespace

void write_iperf2_history_log_files() {
  char path[kPathCapacity];
  formatLogPath(path, kIperf2History.live);
  moveFullHistory(reportHistory(path), TEST_TYPE_IPERF, path, 2);
}
