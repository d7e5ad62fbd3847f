// Four tiles: what is usual and what one test in twenty is worse than, and the time without
// connection.
#include "figures/usual.h"
#include "report/chart.h"
#include "report/marks.h"
#include "report/sections.h"
#include "report/words.h"
#include "views/words.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace watch {

namespace {

constexpr std::size_t kBars = 40;

struct Tile {
  const char* colour;
  const char* title;
  Html figure;
  Html words;
  Html picture;
};

Html itemOf(const Tile& tile, const char* heading) {
  return el("li", {{"class", std::string("tile ") + tile.colour}},
            {el(heading, {}, {el("i", {{"class", "dot"}}), tile.title}),
             el("p", {{"class", "big"}}, tile.figure), el("p", {}, tile.words), tile.picture});
}

std::vector<double> valuesOf(const Station& station, const Metric& metric) {
  std::vector<double> values;
  for (const Run& run : station.runs) {
    if (const auto value = metric.of(run)) {
      values.push_back(*value);
    }
  }
  return values;
}

/// How many values are how high: the few ones are seen, too.
Html histogram(const std::vector<double>& values, double top) {
  std::array<std::size_t, kBars> counts{};
  for (const double value : values) {
    const auto bar = static_cast<std::size_t>(value / top * kBars);
    ++counts.at(std::min(bar, kBars - 1));
  }
  const auto most = static_cast<double>(*std::ranges::max_element(counts));
  constexpr double kStep = kWidth / kBars;
  Path bars;
  for (std::size_t i = 0; i < kBars; ++i) {
    if (counts.at(i) > 0) {
      const double height =
          std::max(kHeight * static_cast<double>(counts.at(i)) / most, kHeight / 25);
      bars.addBox(kStep * static_cast<double>(i), kHeight - height, kStep * 0.82, height);
    }
  }
  return bars.draw("bars");
}

Html ends(const Html& first, const Html& last) {
  return el("p", {{"class", "ends"}}, {el("span", {}, first), el("span", {}, last)});
}

/// The axis ends where all but the one value in a hundred are that is farthest off.
Html distribution(const Metric& metric, const std::vector<double>& values) {
  const double top = scaleFor(*quantile(values, 0.99) * 1.05).top;
  const auto beyond = static_cast<std::size_t>(
      std::ranges::count_if(values, [top](double value) { return value > top; }));
  const std::string end =
      fmt::format("{} {}{}", plain(top), metric.unit, beyond > 0 ? " and more" : "");
  const std::string label = fmt::format("How many of {} were how high, from 0 to {}",
                                        groupedCount(values.size(), "test", "tests"), end);
  return {draw({label, "histogram", {}, {}, false, histogram(values, top)}), ends("0", end)};
}

std::string usualWords(const Metric& metric, const Usual& usual) {
  if (usual.oneInTwenty) {
    return fmt::format("usual · 1 in 20 {} {}", metric.moreIsBetter ? "below" : "above",
                       figure(metric, usual.oneInTwenty));
  }
  return usual.count == 1 ? "in one test" : fmt::format("in the middle of {} tests", usual.count);
}

Tile metricTile(const Station& station, const Metric& metric) {
  const Usual values = usual(station.runs, metric);
  if (!values.middle) {
    return {colour(metric), title(metric), "n/a", "not measured", {}};
  }
  return {colour(metric),
          title(metric),
          {figure(metric, values.middle), el("small", {}, {" ", metric.unit})},
          usualWords(metric, values),
          distribution(metric, valuesOf(station, metric))};
}

std::string outageWords(const Station& station) {
  if (station.outages.empty()) {
    return station.counts.failed == 0 ? "in no test"
                                      : "not told by the tests that measured nothing";
  }
  const std::size_t count = station.outages.size();
  return count == 1 ? "in one outage"
                    : fmt::format("in {} outages · the longest about {}", count,
                                  span(station.longestOutage));
}

/// "3 h" as a figure with its unit.
Html bigLength(EpochSeconds seconds) {
  const std::string length = span(seconds);
  const std::size_t blank = length.find(' ');
  return {el("small", {}, "about "), length.substr(0, blank),
          el("small", {}, length.substr(blank))};
}

Tile connectionTile(const Station& station) {
  const Html length = station.outages.empty() ? Html(station.counts.failed == 0 ? "0" : "n/a")
                                              : bigLength(station.withoutConnection);
  return {"c-lost",
          "No connection",
          length,
          outageWords(station),
          {station.line.empty() ? Html() : bar(station.all),
           ends(groupedCount(station.counts.all(), "test", "tests"),
                station.missing > 0 ? grouped(station.missing) + " missing" : "")}};
}

}  // namespace

Html tiles(const Station& station) {
  Html items;
  for (const Tile& tile : {metricTile(station, kRead), metricTile(station, kWrite),
                           metricTile(station, kLatency), connectionTile(station)}) {
    items += itemOf(tile, station.heading);
  }
  return el("ul", {{"class", "tiles"}}, items);
}

}  // namespace watch
