#include "report/words.h"

#include "evidence/text.h"
#include "views/words.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace watch {

namespace {

constexpr const char* kNotMeasuredWord = "n/a";
constexpr double kPercent = 100;

/// Puts commas between each three digits before the point.
std::string withCommas(std::string digits) {
  const std::size_t end = std::min(digits.find('.'), digits.size());
  for (std::size_t place = end; place > 3;) {
    place -= 3;
    digits.insert(place, 1, ',');
  }
  return digits;
}

}  // namespace

std::string grouped(std::size_t count) {
  return withCommas(fmt::format("{}", count));
}

std::string countOrNone(std::size_t count) {
  return count == 0 ? "–" : grouped(count);
}

std::string groupedCount(std::size_t count, const char* one, const char* many) {
  return grouped(count) + " " + (count == 1 ? one : many);
}

std::string figure(const Metric& metric, std::optional<double> value) {
  if (!value) {
    return kNotMeasuredWord;
  }
  return withCommas(metric.moreIsBetter ? megabits(value) : milliseconds(value));
}

std::string plain(double value) {
  return withCommas(fmt::format("{:.12g}", value));
}

std::string figureWithUnit(const Metric& metric, std::optional<double> value) {
  return value ? fmt::format("{} {}", figure(metric, value), metric.unit) : kNotMeasuredWord;
}

std::string share(std::size_t part, std::size_t whole) {
  if (whole == 0) {
    return kNotMeasuredWord;
  }
  const double percent = kPercent * static_cast<double>(part) / static_cast<double>(whole);
  const double tenths = std::clamp(std::round(percent * 10) / 10, 0.1, 99.9);
  if (part == 0 || part == whole) {
    return part == 0 ? "0 %" : "100 %";
  }
  return tenths < 10 || tenths > 99 ? fmt::format("{:.1f} %", tenths)
                                    : fmt::format("{:.0f} %", percent);
}

const char* title(const Metric& metric) {
  return &metric == &kRead ? "Download" : &metric == &kWrite ? "Upload" : "Latency";
}

const char* colour(const Metric& metric) {
  return &metric == &kRead ? "c-read" : &metric == &kWrite ? "c-write" : "c-latency";
}

std::optional<double> middle(const std::optional<Spread>& spread) {
  return spread ? std::optional(spread->middle) : std::nullopt;
}

std::optional<double> oneInTwenty(const Metric& metric, const std::optional<Spread>& spread) {
  constexpr std::size_t kTwenty = 20;
  return !spread || spread->count < kTwenty
             ? std::nullopt
             : std::optional(metric.moreIsBetter ? spread->low : spread->high);
}

std::string fullDate(std::int64_t day) {
  return dates(noonOf(day), noonOf(day));
}

std::string shortDay(std::int64_t day) {
  const std::string date = fullDate(day);
  return date.substr(0, date.find(' ') + 4);
}

std::string dateIn(const Station& station, std::int64_t day) {
  return dayAndMonth(noonOf(day), noonOf(station.lastDay()));
}

std::string dayIn(const Station& station, std::int64_t day) {
  return weekdayAndDay(noonOf(day), noonOf(station.lastDay()));
}

std::string momentIn(const Station& station, EpochSeconds moment) {
  return weekdayAndDay(moment, noonOf(station.lastDay())) + ", " + clockTime(moment);
}

std::string monthIn(const Station& station, std::int64_t month) {
  Calendar first;
  first.year = static_cast<int>(month / 12);
  first.month = static_cast<unsigned>(month % 12) + 1;
  const std::string date = dateIn(station, dayNumber(fromCalendar(first)));
  return date.substr(date.find(' ') + 1);
}

std::string rhythmInWords(const Rhythm& rhythm) {
  const EpochSeconds minutes = (rhythm.seconds + kMinuteSeconds / 2) / kMinuteSeconds;
  if (minutes == 0) {
    return "";
  }
  const EpochSeconds hours = (minutes + 30) / 60;
  if (std::abs(minutes - hours * 60) > 2 || hours == 0) {
    return minutes == 1 ? "every minute" : fmt::format("every {} minutes", minutes);
  }
  return hours == 1    ? "every hour"
         : hours == 24 ? "every day"
                       : fmt::format("every {} hours", hours);
}

std::string lengthInWords(const OutageBounds& bounds) {
  const std::string least = span(bounds.atLeast());
  if (!bounds.atMost()) {
    return bounds.atLeast() == 0 ? "not known" : least + " or more";
  }
  const std::string most = span(*bounds.atMost());
  if (bounds.atLeast() == 0) {
    return "up to " + most;
  }
  return least == most ? least : least + " to " + most;
}

std::string foreign(std::string_view text) {
  constexpr std::size_t kMost = 160;
  return text.size() <= kMost ? printable(text)
                              : fmt::format("{}… (cut, {} characters)",
                                            printable(text.substr(0, kMost)), grouped(text.size()));
}

std::string place(const Source& source, const std::vector<std::string>& files) {
  return source.isThere() && source.file < files.size()
             ? fmt::format("{}:{}", foreign(files[source.file]), source.first)
             : kNotMeasuredWord;
}

}  // namespace watch
