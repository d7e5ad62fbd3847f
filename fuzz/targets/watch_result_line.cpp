// The lines of connection_test_results_history.log, one by one.
#include "evidence/log_directory.h"
#include "evidence/result_line.h"
#include "promise.h"
#include "rate_units.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

std::string print(const watch::ResultLine& line) {
  const auto number = [](const auto& value) { return value ? fmt::format("{}", *value) : "n/a"; };
  const char* const unit = std::ranges::find(kRateUnits, line.unitBps, &RateUnit::bps)->name;
  std::string date;
  if (line.date) {
    const watch::Calendar c = watch::calendar(*line.date);
    date = fmt::format("{:04}{:02}{:02}T{:02}{:02}{:02}", c.year, c.month, c.day, c.hour, c.minute,
                       c.second);
  }
  return fmt::format(
      "Date = {}, Latency = {} ms, Write Transfer Rate = {} {}, Read Transfer Rate = {} {} ", date,
      number(line.latencyMs), number(line.write), unit, number(line.read), unit);
}

}  // namespace

void readInput(const std::string& input) {
  std::string before;
  watch::eachLine(input, [&](std::string_view text, std::uint32_t) {
    if (const auto line = watch::parseResultLine(text)) {
      const auto again = watch::parseResultLine(print(*line));
      require(again && print(*again) == print(*line), "a line printed again says the same");
      const std::string joined = before + std::string(text);
      require(before.empty() || watch::lastResultLine(joined) == before.size(),
              "a line is found behind any other text");
    }
    before = text;
  });
}
