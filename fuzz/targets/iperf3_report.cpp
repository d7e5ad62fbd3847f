// The iperf3 report, read by both variants and by the runs of both directions.
#include "harness.h"
#include "iperf3/iperf3_json.h"
#include "iperf3/iperf3_run.h"
#include "run_state.h"
#include "support/iperf3_record.h"

#include <algorithm>

namespace {

bool isSameRate(const Results& a, const Results& b) {
  return a.writeRateValid == b.writeRateValid && a.writeRateBps == b.writeRateBps &&
         a.readRateValid == b.readRateValid && a.readRateBps == b.readRateBps;
}

void requireOneCsvLine(bool reverse) {
  if (endingOf([reverse] { exec_iperf3(reverse); }, {"stoi", "stoll"}).empty()) {
    const std::string csv = readFile(
        logFile(reverse ? "iperf3_latest_reverse_csv.log" : "iperf3_latest_forward_csv.log"));
    require(std::count(csv.begin(), csv.end(), '\n') == 1 && csv.back() == '\n',
            "a run leaves one line");
  }
}

}  // namespace

void readInput(const std::string& input) {
  const std::string path = logFile("iperf3_latest.log");
  writeFile(path, input);
  iperf3_status status;
  const std::string ending =
      endingOf([&] { iperf3JsonToCsvUnix(path.c_str(), status); }, {"stoi", "stoll"});
  const Results results = outputResults;
  require(!(results.writeRateValid && results.readRateValid), "a report has one direction");

  outputResults = {};
  iperf3_status windows;
  require(endingOf([&] { iperf3JsonToCsv(path.c_str(), windows); }, {"stoi", "stoll"}) == ending,
          "both variants end alike");
  require(recordText(status) == recordText(windows) && isSameRate(results, outputResults),
          "both variants find the same");

  writeFile(logFile("iperf3_latest-R.log"), input);
  requireOneCsvLine(false);
  requireOneCsvLine(true);
}
