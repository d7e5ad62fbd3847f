#include "ping/ping_run.h"

#include "history_files.h"
#include "log_files.h"
#include "ping/latency.h"
#include "ping/ping_history.h"
#include "ping/ping_status.h"
#include "run_state.h"
#include "shell.h"
#include "text_buffer.h"
#include "time_services.h"

#include <cstdio>
#include <fstream>
#include <string>

namespace {

constexpr char kPublicResolver[] = "8.8.8.8";

constexpr char kStartTrace[] = "ping start time %s\n";
// Required (PingRun.PingsTheServerOrAPublicResolverThroughTee): the separator brings blanks of its
// own, so that two stand on each side of the bar.
constexpr char kPingCommand[] = "ping %s %d %s %s %s%s\n";
constexpr char kCountOption[] = "-c";
constexpr char kIntoTee[] = " | tee ";
constexpr char kCommandEcho[] = "ping cmd: %s\n";

// Required (PingSummary.IsReadAfterItsOutputIsAppendedToTheVerboseHistory): LOG_PATH ends in "/",
// so that the second path holds a doubled slash.
constexpr char kAppendCommand[] = "cat %s%s >> %s/%s\n";
constexpr char kPositionsTrace[] = "= found at: %zu, ms found at: %zu\n";
constexpr char kSummaryTrace[] = "ping min = %f avg = %f max = %f stddev = %f\n";

/// Characters that a number of the summary takes at most, without its terminator.
constexpr std::size_t kFieldWidth = 16;
constexpr char kSummaryScan[] = "%16[^/]/%16[^/]/%16[^/]/%16[^/]";

/// Returns the text between the "=" at `equals`, with the blank after it, and the first " ms" of
/// the line. Required (PingSummary.IsCutBetweenTheFirstEqualsSignAndTheFirstMs): without a " ms"
/// behind the "=", the difference wraps and the rest of the line is taken; a line that ends in "="
/// throws.
std::string summaryText(const std::string& line, std::size_t equals) {
  const std::size_t ms = line.find(" ms");
  if (ConfigurationParameters.debugPrintPing) {
    std::printf(kPositionsTrace, equals, ms);
  }
  return line.substr(equals + 2, ms - equals - 2);
}

/// Converts the four numbers of `text` into `status`. Fewer than four leave it as it is.
void takeSummary(const std::string& text, ping_status& status) {
  char min[kFieldWidth + 1] = {};
  char avg[kFieldWidth + 1] = {};
  char max[kFieldWidth + 1] = {};
  char stddev[kFieldWidth + 1] = {};
  if (std::sscanf(text.c_str(), kSummaryScan, min, avg, max, stddev) == 4) {
    status.min = std::stod(min);
    status.avg = std::stod(avg);
    status.max = std::stod(max);
    status.stddev = std::stod(stddev);
  }
}

void handleSummary(const std::string& line, std::size_t equals, ping_status& status) {
  takeSummary(summaryText(line, equals), status);
  if (ConfigurationParameters.debugPrintPing) {
    std::printf(kSummaryTrace, status.min, status.avg, status.max, status.stddev);
  }
  // Required (PingSummary.ThatIsNotFourNumbersCountsAsZero): a summary that was not understood
  // still counts as a measured latency.
  recordLatency(status.avg);
  write_ping_history_log_file(status);
}

}  // namespace

int exec_ping() {
  getDateTimeString(pingStartTimeStamp);
  if (ConfigurationParameters.debugPrintPing) {
    std::printf(kStartTrace, pingStartTimeStamp);
  }
  const char* const target = ConfigurationParameters.pingTestServer ? kPublicResolver : ipaddr;
  formatInto(cmd, kPingCommand, kCountOption, ConfigurationParameters.numPings, target, kIntoTee,
             LOG_PATH, kPingLatest);
  std::printf(kCommandEcho, cmd);
  return runCommand();
}

void read_latest_ping_log_file_unix() {
  formatInto(cmd, kAppendCommand, LOG_PATH, kPingLatest, LOG_PATH, kPingVerbose);
  runCommand();
  char path[kPathCapacity];
  formatLogPath(path, kPingLatest);
  std::ifstream latest(path);
  ping_status status;
  for (std::string line; std::getline(latest, line);) {
    const std::size_t equals = line.find('=');
    if (line.starts_with("round-trip") && equals != std::string::npos) {
      handleSummary(line, equals, status);
    }
  }
}
