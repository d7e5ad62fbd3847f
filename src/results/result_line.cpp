#include "results/result_line.h"

#include "history_files.h"
#include "log_files.h"
#include "rate_units.h"
#include "results/result_history.h"
#include "run_state.h"
#include "text_buffer.h"

#include <cstdio>
#include <string>

namespace {

constexpr char kConsoleLine[] =
    "Date = %s, Latency = %u ms, Write Transfer Rate = %llu %s, Read Transfer Rate = %llu %s\n";
// Required (ResultLine.ShowsWholeRatesInTheConfiguredUnit): a blank stands before the newline.
constexpr char kFileLine[] =
    "Date = %s, Latency = %s ms, Write Transfer Rate = %s %s, Read Transfer Rate = %s %s \n";

std::string measured(bool valid, unsigned long long number) {
  return valid ? std::to_string(number) : "n/a";
}

void printResult(const RateUnit& unit) {
  std::printf(kConsoleLine, outputResults.dateTime, outputResults.latencyMs,
              outputResults.writeRateBps / unit.bps, unit.name,
              outputResults.readRateBps / unit.bps, unit.name);
}

void formatResult(char (&line)[kLineCapacity], const RateUnit& unit) {
  const std::string latency = measured(outputResults.latencyValid, outputResults.latencyMs);
  const std::string writeRate =
      measured(outputResults.writeRateValid, outputResults.writeRateBps / unit.bps);
  const std::string readRate =
      measured(outputResults.readRateValid, outputResults.readRateBps / unit.bps);
  formatLineInto(line, kFileLine, outputResults.dateTime, latency.c_str(), writeRate.c_str(),
                 unit.name, readRate.c_str(), unit.name);
}

void clearResults() {
  outputResults.writeRateValid = false;
  outputResults.readRateValid = false;
  outputResults.latencyValid = false;
  outputResults.writeRateBps = 0;
  outputResults.readRateBps = 0;
  outputResults.latencyMs = 0;
  // Required (ResultLine.IsThereAndTheRecordClearedBeforeTheHistoryMoves): only the first character
  // goes, the rest of the stamp stays.
  outputResults.dateTime[0] = '\0';
}

}  // namespace

void logFormattedResults() {
  char line[kLineCapacity] = {};
  if (const RateUnit* const unit = rateUnit(ConfigurationParameters.outputFormat)) {
    printResult(*unit);
    formatResult(line, *unit);
  }
  char path[kPathCapacity];
  formatLogPath(path, kResultLatest);
  writeText(path, "w", line);
  formatLogPath(path, kResultHistory.live);
  writeText(path, "a", line);
  clearResults();
  write_results_log_history_file();
}
