#include "ping/ping_history.h"

#include "history_files.h"
#include "log_files.h"
#include "run_state.h"
#include "text_buffer.h"

#include <cstdio>

namespace {

constexpr char kTrace[] = "ping start time %s min %f avg %f max %f stddev %f\n";
constexpr char kHistoryLine[] = "%s,%.3lf,%.3lf,%.3lf,%.3lf\n";

}  // namespace

void write_ping_history_log_file(const ping_status& status) {
  if (ConfigurationParameters.debugPrintPing) {
    std::printf(kTrace, pingStartTimeStamp, status.min, status.avg, status.max, status.stddev);
  }
  char line[kLineCapacity];
  formatLineInto(line, kHistoryLine, pingStartTimeStamp, status.min, status.avg, status.max,
                 status.stddev);
  char path[kPathCapacity];
  formatLogPath(path, kPingHistory.live);
  if (writeText(path, "a", line)) {
    moveFullHistory(countLines(path), TEST_TYPE_PING, path);
  }
}
