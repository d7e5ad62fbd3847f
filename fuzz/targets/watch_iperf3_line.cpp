// The lines of both histories of iperf3, one by one.
#include "evidence/iperf3_line.h"
#include "evidence/log_directory.h"
#include "promise.h"

#include <fmt/format.h>

namespace {

std::string print(const watch::Iperf3Line& line, bool reverse) {
  const auto number = [](const auto& value) { return value ? fmt::format("{}", *value) : ""; };
  return fmt::format("{},{},{},{},{},0,{},{}{},{:.0f}{}", number(line.start), line.client,
                     line.clientPort, line.server, line.serverPort, number(line.duration),
                     reverse ? "0,0," : "", line.bytes, line.bps, reverse ? "" : ",0,0");
}

/// The start of a line that can be found behind another one has ten digits.
bool canBeFound(std::string_view text, const watch::Iperf3Line& line) {
  return text == ",,0,,0,0,,0,0,0,0" ||
         (line.start && *line.start >= 1'000'000'000 && text.find_first_of(",\r") == 10);
}

void readLine(std::string_view text, bool reverse, const std::string& before) {
  const auto parse = reverse ? watch::parseReverseLine : watch::parseForwardLine;
  if (const auto line = parse(text)) {
    const auto again = parse(print(*line, reverse));
    require(again && print(*again, reverse) == print(*line, reverse),
            "a line printed again says the same");
    const std::string joined = before + std::string(text);
    require(before.empty() || !canBeFound(text, *line) ||
                watch::lastIperf3Line(joined) == before.size(),
            "a line is found behind any other text");
  }
}

}  // namespace

void readInput(const std::string& input) {
  std::string before;
  watch::eachLine(input, [&](std::string_view text, std::uint32_t) {
    readLine(text, false, before);
    readLine(text, true, before);
    before = text;
  });
}
