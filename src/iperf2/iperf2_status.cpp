#include "iperf2/iperf2_status.h"

#include <cstdio>

namespace {

constexpr char kReportScan[] = "%32[^,],%32[^,],%d,%32[^,],%d,%d,%32[^,],%llu,%llu";

}  // namespace

bool scanIperf2Report(const char* text, iperf2_status& status) {
  return std::sscanf(text, kReportScan, status.date, status.clientIp, &status.clientPort,
                     status.serverIp, &status.serverPort, &status.transferId, status.testTime,
                     &status.length, &status.bps) == 9;
}
