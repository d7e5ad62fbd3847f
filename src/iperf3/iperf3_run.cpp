#include "iperf3/iperf3_run.h"

#include "history_files.h"
#include "iperf3/iperf3_json.h"
#include "iperf3/iperf3_status.h"
#include "iperf_client.h"
#include "log_files.h"
#include "run_state.h"
#include "text_buffer.h"
#include "time_services.h"

#include <cstdio>
#include <fstream>

namespace {

constexpr char kClient[] = "/usr/local/bin/Qelmora/iperf3";
constexpr char kStartTrace[] = "iperf3 start time %s direction %s\n";
// Required (Iperf3Run.RunsTheClientAndAppendsAfterTheWait): the option brings a blank of its own,
// so that three stand before the ">" of a forward run and two before the "-R" of a reverse one.
constexpr char kCommand[] = "%s -c %s -t %d %s %s > %s%s\n";
constexpr char kJsonOption[] = "-J ";

constexpr char kReportTrace[] = " read latest file is %s\n";
constexpr char kSummaryHeading[] = "\n= IPERF3 summary  ====================================\n";

constexpr char kCsvLine[] = "%.32s,%.32s,%d,%.32s,%d,%d,%.32s,%llu,%.0f,%llu,%.0f\n";

/// Characters of the CSV line at most, its newline and terminator included.
constexpr std::size_t kCsvCapacity = 1024;

void runClient(bool reverse) {
  getDateTimeString(iperfStartTimeStamp);
  if (ConfigurationParameters.debugConfFile) {
    std::printf(kStartTrace, iperfStartTimeStamp,
                reverse ? "server to client" : "client to server");
  }
  iperf3_prog = kClient;
  formatInto(cmd, kCommand, iperf3_prog.c_str(), ipaddr, ConfigurationParameters.iperfTestTime,
             kJsonOption, reverse ? "-R" : "", LOG_PATH, directionFiles(reverse).report);
  runIperfClient();
}

iperf3_status readLatestReport(bool reverse) {
  char path[kPathCapacity];
  formatLogPath(path, directionFiles(reverse).report);
  formatInto(filepath, "%s", path);
  std::printf(kReportTrace, path);
  iperf3_status status;
  iperf3JsonToCsvUnix(path, status);
  if (ConfigurationParameters.debugConfFile) {
    std::fputs(kSummaryHeading, stdout);
    printIperf3Status(status);
  }
  return status;
}

void writeLatestCsv(bool reverse, const iperf3_status& status) {
  char path[kPathCapacity];
  formatLogPath(path, directionFiles(reverse).latestCsv);
  formatInto(filepath, "%s", path);
  char line[kCsvCapacity];
  formatLineInto(line, kCsvLine, status.date, status.clientIp, status.clientPort, status.serverIp,
                 status.serverPort, status.transferId, status.testTime, status.lengthSent,
                 status.bpsSent, status.lengthRcvd, status.bpsRcvd);
  std::ofstream(path) << line;
}

}  // namespace

void exec_iperf3(bool reverse) {
  runClient(reverse);
  writeLatestCsv(reverse, readLatestReport(reverse));
  read_latest_iperf_log_file(3, reverse);
}
