#include "evidence/ping_line.h"

#include "evidence/text.h"

namespace watch {

namespace {

/// Returns a number that has its three decimals, or that is none ("nan", "inf"): one with fewer was
/// cut.
std::optional<double> thousandths(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789";
  const std::size_t point = text.find_last_not_of(kDigits);
  const bool isWhole = (point != std::string_view::npos && point > 0 && text[point] == '.' &&
                        text.size() - point == sizeof(".123") - 1) ||
                       text.find_first_of(kDigits) == std::string_view::npos;
  return isWhole ? wholeNumber<double>(text) : std::nullopt;
}

}  // namespace

std::optional<PingLine> parsePingLine(std::string_view line) {
  std::string_view columns[5];
  if (!splitColumns(line, columns)) {
    return std::nullopt;
  }
  const auto start = parseStamp(columns[0]);
  const auto min = thousandths(columns[1]);
  const auto avg = thousandths(columns[2]);
  const auto max = thousandths(columns[3]);
  const auto stddev = thousandths(columns[4]);
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
