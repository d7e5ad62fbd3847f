#include "iperf2/iperf2_run.h"

#include "history_files.h"
#include "iperf2/iperf2_status.h"
#include "iperf_client.h"
#include "log_files.h"
#include "run_state.h"
#include "shell.h"
#include "text_buffer.h"
#include "time_services.h"

#include <cstdio>
#include <fstream>
#include <string>

namespace {

constexpr char kClient[] = "/usr/bin/iperf";
constexpr char kStartTrace[] = "iperf2 start time %s\n";
constexpr char kCommand[] = "%s -c %s -y C -t %d > %s%s\n";

constexpr char kAppendCommand[] = "cat %s%s >> %s%s\n";
constexpr char kHeading[] = "\n= IPERF2 latest ====================================\n";

void printLatest(const iperf2_status& status) {
  std::fputs(kHeading, stdout);
  printConnection(status);
  // Required (Iperf2Latest.IsPrintedWhenAskedFor): the blank before the newline stands in the other
  // line of the history's print.
  std::printf("length %llu\n", status.length);
  std::printf("Bps %llu \n", status.bps);
}

/// Returns the file's text as far as a scan sees it, up to a null character; empty without a file.
std::string readText(const char* path) {
  std::ifstream file(path);
  std::string text;
  std::getline(file, text, '\0');
  return text;
}

}  // namespace

void exec_iperf2() {
  getDateTimeString(iperfStartTimeStamp);
  if (ConfigurationParameters.debugConfFile) {
    std::printf(kStartTrace, iperfStartTimeStamp);
  }
  iperf2_prog = kClient;
  formatInto(cmd, kCommand, iperf2_prog.c_str(), ipaddr, ConfigurationParameters.iperfTestTime,
             LOG_PATH, kIperf2Latest);
  runIperfClient();
  // Required (Iperf2Run.LeavesItsReportUnreadAndAnEmptyHistory): nothing writes the file that this
  // appends; an empty history is what it leaves.
  read_latest_iperf_log_file(2, false);
}

void read_latest_iperf2_log_file() {
  formatInto(cmd, kAppendCommand, LOG_PATH, kIperf2Latest, LOG_PATH, kIperf2History.live);
  runCommand();
  char path[kPathCapacity];
  formatLogPath(path, kIperf2Latest);
  iperf2_status status;
  if (!scanIperf2Report(readText(path).c_str(), status)) {
    return;
  }
  if (ConfigurationParameters.debugPrintLast) {
    printLatest(status);
  }
  outputResults.writeRateValid = true;
  outputResults.writeRateBps = status.bps;
  getDateTimeString(outputResults.dateTime);
}
