#include "ping/ping_windows.h"

#include "log_files.h"
#include "ping/latency.h"
#include "ping/ping_history.h"
#include "ping/ping_status.h"
#include "run_state.h"
#include "text_buffer.h"

#include <cstdio>
#include <fstream>
#include <string>

namespace {

// Required (WindowsPing.IsReadFromARealOutputInItsOwnFileOnly): LOG_PATH ends in a separator
// already.
constexpr char kLatestPath[] = "%s\\%s";
constexpr char kTrialPath[] = "/tmp/ping_latest.log";

constexpr char kLineTrace[] = "line %d line=%s\n";
// Required (WindowsPing.TracesEachLineAndEachPassWhenAskedTo): the same for every line.
constexpr int kLineTraceNumber = 564;
constexpr char kSummaryTrace[] = "ping min = %f avg = %f max = %f\n";

/// A line shorter than the word that marks a summary.
constexpr std::size_t kShortestLine = 7;

bool isSummary(const std::string& line) {
  return line.size() >= kShortestLine && line.find("Minimum") != std::string::npos;
}

/// Cuts `line` down to what follows its first "=" and the character after, and converts the time
/// that stands there before "ms" into `timeMs`. A line without a "=" leaves both as they are.
void takeTime(std::string& line, double& timeMs, bool trace) {
  if (trace) {
    std::printf("ms found at: %zu\n", line.find("ms"));
  }
  const std::size_t equals = line.find('=');
  if (equals == std::string::npos) {
    return;
  }
  line.erase(0, equals + 2);
  const std::string time = line.substr(0, line.find("ms"));
  if (trace) {
    // Required (WindowsPing.TracesEachLineAndEachPassWhenAskedTo): the line is printed twice.
    std::printf("line:%s\nline:%s\ntime:%s\n", line.c_str(), line.c_str(), time.c_str());
  }
  timeMs = std::stoi(time);
}

/// Reads the times of the summary `line` in the order in which Windows prints them, and records the
/// latency.
void takeSummary(std::string line, ping_status& status, bool trace) {
  takeTime(line, status.min, trace);
  takeTime(line, status.max, trace);
  takeTime(line, status.avg, trace);
  if (ConfigurationParameters.debugPrintPing) {
    std::printf(kSummaryTrace, status.min, status.avg, status.max);
  }
  recordLatency(status.avg);
}

}  // namespace

void read_latest_ping_log_file_win() {
  const bool trace = ConfigurationParameters.debugPrintPing;
  char path[kPathCapacity];
  formatInto(path, kLatestPath, LOG_PATH, kPingLatest);
  std::ifstream latest(path);
  ping_status status;
  for (std::string line; std::getline(latest, line);) {
    if (trace) {
      std::printf(kLineTrace, kLineTraceNumber, line.c_str());
    }
    if (isSummary(line)) {
      takeSummary(line, status, trace);
      write_ping_history_log_file(status);
    }
  }
}

void read_latest_ping_log_file_wintest() {
  std::ifstream latest(kTrialPath);
  ping_status status;
  for (std::string line; std::getline(latest, line);) {
    if (isSummary(line)) {
      takeSummary(line, status, false);
    }
  }
}
