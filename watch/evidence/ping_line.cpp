#include "evidence/ping_line.h"

#include "evidence/text.h"

namespace watch {

std::optional<PingLine> parsePingLine(std::string_view line) {
  std::string_view columns[5];
  if (!splitColumns(line, columns)) {
    return std::nullopt;
  }
  const auto start = parseStamp(columns[0]);
  const auto min = wholeNumber<double>(columns[1]);
  const auto avg = wholeNumber<double>(columns[2]);
  const auto max = wholeNumber<double>(columns[3]);
  const auto stddev = wholeNumber<double>(columns[4]);
  if (!start || !min || !avg || !max || !stddev) {
    return std::nullopt;
  }
  return PingLine{*start, *min, *avg, *max, *stddev, {}};
}

std::size_t lastPingLine(std::string_view line) {
  constexpr std::size_t kStampLength = 15;
  const std::size_t comma = commaBefore(line, 4);
  return comma == std::string_view::npos || comma < kStampLength ? std::string_view::npos
                                                                 : comma - kStampLength;
}

}  // namespace watch
