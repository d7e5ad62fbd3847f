// A usual day: the figures by hour of the day, and by hour of the week.
#include "report/chart.h"
#include "report/marks.h"
#include "report/sections.h"
#include "report/time_axis.h"
#include "report/words.h"

#include <algorithm>
#include <fmt/format.h>

namespace watch {

namespace {

constexpr std::size_t kHours = 24;
/// With fewer, no day is usual, and no week.
constexpr std::int64_t kFewestDays = 3;
constexpr std::int64_t kFewestDaysOfWeeks = 14;

Series seriesOf(const Station& station, const Metric& metric, double Spread::*low,
                double Spread::*high) {
  Series series(kHours);
  for (const Stretch& hour : station.hours) {
    const auto& spread = hour.spreadOf(metric);
    if (spread) {
      const double x = kWidth * (static_cast<double>(hour.key) + 0.5) / kHours;
      series.at(static_cast<std::size_t>(hour.key)) =
          Point{x, (*spread).*low, spread->middle, (*spread).*high};
    }
  }
  return series;
}

std::string inWords(const Station& station, const Metric& metric) {
  std::string words =
      fmt::format("{} by hour of the day, the middle in {}:", title(metric), metric.unit);
  for (const Stretch& hour : station.hours) {
    words += fmt::format(" {:02}:00 {}", hour.key, figure(metric, middle(hour.spreadOf(metric))));
  }
  return words;
}

Html hourChart(const Station& station, const Metric& metric) {
  const Series nine = seriesOf(station, metric, &Spread::low, &Spread::high);
  const Series half = seriesOf(station, metric, &Spread::lowerQuarter, &Spread::upperQuarter);
  double most = 0;
  for (const std::optional<Point>& point : nine) {
    most = std::max(most, point ? point->high : 0);
  }
  if (most == 0) {
    return {};
  }
  const Scale scale = scaleFor(most * 1.02);
  return el("figure", {{"class", std::string("plot ") + colour(metric)}},
            {el("figcaption", {},
                {el("i", {{"class", "dot"}}), title(metric), el("small", {}, metric.unit)}),
             draw({inWords(station, metric),
                   "course",
                   scale,
                   hourTicks(),
                   true,
                   {drawBand(nine, scale, &Point::low, &Point::high, "band"),
                    drawBand(half, scale, &Point::low, &Point::high, "band half"),
                    drawLine(nine, scale)}})});
}

Html weekdayLabels() {
  constexpr const char* kDays[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
  Html labels;
  for (std::size_t day = 0; day < std::size(kDays); ++day) {
    labels += rowLabel((static_cast<double>(day) + 0.5) / std::size(kDays), kDays[day]);
  }
  return labels;
}

/// A box for each hour of the week, by its middle figure.
Html week(const Station& station) {
  if (!station.reference || station.dayCount() < kFewestDaysOfWeeks) {
    return {};
  }
  constexpr double kBoxWidth = kWidth / 24;
  constexpr double kBoxHeight = kHeight / 7;
  MarkedBoxes boxes;
  for (const Stretch& hour : station.hoursOfWeek) {
    const auto& spread = hour.spreadOf(*station.reference->metric);
    if (spread) {
      boxes.add(markOf(spread->middle, *station.reference),
                kBoxWidth * static_cast<double>(hour.key % 24) + 12,
                kBoxHeight * static_cast<double>(hour.key / 24) + 9, kBoxWidth - 24,
                kBoxHeight - 18);
    }
  }
  return el("div", {{"class", "plot"}},
            draw({"The middle of each hour of the week, in the colours from above.",
                  "week",
                  {},
                  hourTicks(),
                  true,
                  boxes.draw(),
                  weekdayLabels()}));
}

}  // namespace

Html usualDay(const Station& station) {
  if (!station.reference || station.dayCount() < kFewestDays) {
    return {};
  }
  return section(
      station, "A usual day",
      {el("p", {{"class", "say"}},
          "Dark band: half of all tests at that hour. Light band: nine of ten."),
       el("div", {{"class", "two"}}, {hourChart(station, kRead), hourChart(station, kLatency)}),
       week(station)});
}

}  // namespace watch
