// The lines of ping_history.log, one by one.
#include "evidence/log_directory.h"
#include "evidence/ping_line.h"
#include "promise.h"

#include <fmt/format.h>

namespace {

std::string print(const watch::PingLine& line) {
  const watch::Calendar c = watch::calendar(line.start);
  return fmt::format("{:04}{:02}{:02}T{:02}{:02}{:02},{:.3f},{:.3f},{:.3f},{:.3f}", c.year, c.month,
                     c.day, c.hour, c.minute, c.second, line.min, line.avg, line.max, line.stddev);
}

}  // namespace

void readInput(const std::string& input) {
  std::string before;
  watch::eachLine(input, [&](std::string_view text, std::uint32_t) {
    if (const auto line = watch::parsePingLine(text)) {
      const auto again = watch::parsePingLine(print(*line));
      require(again && print(*again) == print(*line), "a line printed again says the same");
      const std::string joined = before + std::string(text);
      require(before.empty() || watch::lastPingLine(joined) == before.size(),
              "a line is found behind any other text");
    }
    before = text;
  });
}
