#include "iperf3/iperf3_history.h"

#include "history_files.h"
#include "iperf3/iperf3_status.h"
#include "iperf_client.h"
#include "log_files.h"
#include "run_state.h"
#include "text_buffer.h"

#include <cstdio>
#include <fstream>
#include <string>

namespace {

constexpr char kPathTrace[] = "iperf history file path is %s\n";
constexpr char kCountTrace[] = "history file line count %d\n";
constexpr char kHeading[] = "\n= IPERF3 history %d ====================================\n";

// Required (Iperf3History.ScansItsNineColumns): only one of the two holds a blank before its last
// conversion; both take the same lines.
constexpr char kForwardScan[] = "%32[^,],%32[^,],%d,%32[^,],%d,%d,%32[^,],%llu, %lf";
constexpr char kReverseScan[] = "%32[^,],%32[^,],%d,%32[^,],%d,%d,%32[^,],%llu,%lf";

/// Scans the first nine columns of `line` and returns whether all were there.
bool scanLine(const std::string& line, bool reverse, iperf3_status& status) {
  // The scan ends each text in a terminator, for which a full field of the record has no room.
  char date[kTextWidth + 1] = {};
  char clientIp[kTextWidth + 1] = {};
  char serverIp[kTextWidth + 1] = {};
  char testTime[kTextWidth + 1] = {};
  const int columns =
      std::sscanf(line.c_str(), reverse ? kReverseScan : kForwardScan, date, clientIp,
                  &status.clientPort, serverIp, &status.serverPort, &status.transferId, testTime,
                  &status.lengthSent, &status.bpsSent);
  copyInto(status.date, date);
  copyInto(status.clientIp, clientIp);
  copyInto(status.serverIp, serverIp);
  copyInto(status.testTime, testTime);
  return columns == 9;
}

void printLine(unsigned number, bool reverse, const iperf3_status& status) {
  std::printf(kHeading, static_cast<int>(number));
  printConnection(status);
  // Required (Iperf3History.CountsEveryLineAndShowsThoseThatAreReports): a reverse line shows the
  // received numbers, which the scan never fills.
  std::printf("length %llu \n", reverse ? status.lengthRcvd : status.lengthSent);
  std::printf("Bps %.0f\n", reverse ? status.bpsRcvd : status.bpsSent);
}

/// Prints the lines of the history that are reports, numbered by line, and returns how many lines
/// of any kind it holds.
unsigned reportLines(const char* path, bool reverse) {
  std::ifstream history(path);
  unsigned count = 0;
  for (std::string line; std::getline(history, line); ++count) {
    iperf3_status status;
    if (scanLine(line, reverse, status) && ConfigurationParameters.debugPrintHistory) {
      printLine(count, reverse, status);
    }
  }
  return count;
}

}  // namespace

void write_iperf3_history_log_files(bool reverse) {
  char path[kPathCapacity];
  formatLogPath(path, directionFiles(reverse).history.live);
  if (!reverse) {
    std::printf(kPathTrace, path);
  }
  const unsigned count = reportLines(path, reverse);
  if (!reverse) {
    std::printf(kCountTrace, static_cast<int>(count));
  }
  moveFullHistory(count, TEST_TYPE_IPERF, path, 3, reverse);
}
