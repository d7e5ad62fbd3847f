#include "evidence/result_line.h"

#include "evidence/text.h"
#include "rate_units.h"

#include <algorithm>

namespace watch {

namespace {

constexpr std::string_view kDate = "Date = ";

/// Takes `prefix` off the front of `text`, and what follows up to `end`, which it takes off, too.
std::optional<std::string_view> take(std::string_view& text, std::string_view prefix,
                                     std::string_view end) {
  const std::size_t place =
      text.starts_with(prefix) ? text.find(end, prefix.size()) : std::string_view::npos;
  if (place == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view value = text.substr(prefix.size(), place - prefix.size());
  text.remove_prefix(place + end.size());
  return value;
}

/// Reads a number or "n/a" into `number`. Returns false for anything else.
template <class Number>
bool readMeasured(std::string_view text, std::optional<Number>& number) {
  number = wholeNumber<Number>(text);
  return number || text == "n/a";
}

}  // namespace

std::optional<ResultLine> parseResultLine(std::string_view line) {
  const auto date = take(line, kDate, ",");
  const auto latency = take(line, " Latency = ", " ms,");
  const auto write = take(line, " Write Transfer Rate = ", " ");
  const auto unit = take(line, "", ",");
  const auto read = take(line, " Read Transfer Rate = ", " ");
  const auto sameUnit = take(line, "", " ");
  if (!date || !latency || !write || !unit || !read || unit != sameUnit || !line.empty()) {
    return std::nullopt;
  }
  const RateUnit* const known = std::ranges::find(kRateUnits, *unit, &RateUnit::name);
  ResultLine result;
  result.date = parseStamp(*date);
  if (known == std::end(kRateUnits) || (!result.date && !date->empty()) ||
      !readMeasured(*latency, result.latencyMs) || !readMeasured(*write, result.write) ||
      !readMeasured(*read, result.read)) {
    return std::nullopt;
  }
  result.unitBps = known->bps;
  return result;
}

std::size_t lastResultLine(std::string_view line) {
  const std::size_t place = line.rfind(kDate);
  return place == 0 ? std::string_view::npos : place;
}

}  // namespace watch
