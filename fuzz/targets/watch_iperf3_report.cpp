// A report of iperf3, as connWatch reads it.
#include "evidence/iperf3_report.h"
#include "promise.h"

#include <algorithm>
#include <cmath>

void readInput(const std::string& input) {
  const auto report = watch::parseIperf3Report(input);
  if (!report) {
    return;
  }
  // Bytes of a byte order mark are left out one by one.
  constexpr char kBlanks[] = " \t\r\n\xef\xbb\xbf";
  require(input.find_first_of('{') == input.find_first_not_of(kBlanks) &&
              input.find_last_of('}') == input.find_last_not_of(kBlanks),
          "a report is one whole object");
  require(std::ranges::all_of(report->error, [](char c) { return c >= ' ' && c <= '~'; }),
          "an error can be printed");
  require(!std::isnan(report->emptySeconds), "all seconds have a sum");
}
