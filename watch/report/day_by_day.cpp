// The course of the figures: by day, with the band in which nine of ten tests are, or, of few runs,
// by test. Beneath, what kept tests from measuring; and all of it as a table.
#include "report/explorer.h"
#include "report/marks.h"
#include "report/sections.h"
#include "report/table.h"
#include "report/time_axis.h"
#include "report/words.h"
#include "views/words.h"

#include <algorithm>
#include <fmt/format.h>

namespace watch {

namespace {

constexpr const Metric* kMetrics[] = {&kRead, &kWrite, &kLatency};

/// So many runs are drawn one by one.
constexpr std::size_t kMostTests = 800;

bool isByTest(const Station& station) {
  return station.line.size() <= kMostTests;
}

bool isDrawn(const Station& station, std::int64_t day) {
  return day >= station.firstDrawnDay();
}

Series seriesOfDays(const Station& station, const TimeAxis& axis, const Metric& metric) {
  Series series(static_cast<std::size_t>(axis.days));
  for (const Stretch& day : station.days) {
    const auto& spread = day.spreadOf(metric);
    if (spread && isDrawn(station, day.key)) {
      series.at(static_cast<std::size_t>(day.key - axis.firstDay)) = Point{
          axis.x(static_cast<double>(day.key) + 0.5), spread->low, spread->middle, spread->high};
    }
  }
  return series;
}

Series seriesOfTests(const Station& station, const TimeAxis& axis, const Metric& metric) {
  Series series;
  for (const Placed& placed : station.line) {
    const auto value = placed.run == nullptr ? std::nullopt : metric.of(*placed.run);
    if (isDrawn(station, placed.day)) {
      series.push_back(value ? std::optional(Point{axis.xOf(placed.at), *value, *value, *value})
                             : std::nullopt);
    }
  }
  return series;
}

std::optional<double> promised(const Station& station, const Metric& metric) {
  return &metric == &kRead    ? station.contract.read
         : &metric == &kWrite ? station.contract.write
                              : std::nullopt;
}

Scale scaleOf(const Series& series, std::optional<double> least) {
  double most = least.value_or(0);
  for (const std::optional<Point>& point : series) {
    most = std::max(most, point ? point->high : 0);
  }
  return scaleFor(most * 1.02);
}

/// What the picture shows, in a sentence.
std::string inWords(const Metric& metric, const Series& series, bool isByTest) {
  std::optional<Point> least;
  std::optional<Point> most;
  for (const std::optional<Point>& point : series) {
    if (point) {
      least = !least || point->middle < least->middle ? point : least;
      most = !most || point->middle > most->middle ? point : most;
    }
  }
  return fmt::format("{} {} between {} and {}. Each figure is in the table below.", title(metric),
                     isByTest ? "of each test:" : "by day: the middle value is",
                     figure(metric, least->middle), figureWithUnit(metric, most->middle));
}

Html promisedLine(std::optional<double> rate, const Scale& scale) {
  return rate ? Path().moveTo(0, scale.y(*rate)).lineTo(kWidth, scale.y(*rate)).draw("promised")
              : Html();
}

Html chartTitle(const Metric& metric, std::optional<double> rate) {
  Html words = {el("i", {{"class", "dot"}}), title(metric), el("small", {}, metric.unit)};
  if (rate) {
    words += el("small", {{"class", "promise"}}, "contract " + plain(*rate));
  }
  return el("figcaption", {}, words);
}

Html metricChart(const Station& station, const TimeAxis& axis, const Metric& metric) {
  const bool byTest = isByTest(station);
  const Series series =
      byTest ? seriesOfTests(station, axis, metric) : seriesOfDays(station, axis, metric);
  if (std::ranges::none_of(series, [](const auto& point) { return point.has_value(); })) {
    return {};
  }
  const std::optional<double> rate = promised(station, metric);
  const Scale scale = scaleOf(series, rate);
  const Html band = byTest ? Html() : drawBand(series, scale, &Point::low, &Point::high, "band");
  return el("figure", {{"class", std::string("plot ") + colour(metric)}},
            {chartTitle(metric, rate),
             draw({inWords(metric, series, byTest),
                   "course",
                   scale,
                   axis.ticks(),
                   false,
                   {promisedLine(rate, scale), band, drawLine(series, scale)}})});
}

/// How wide a mark is drawn: as long as it lasts, and so that it can be seen.
constexpr double kLeastWidth = 28;

void addDay(const Stretch& day, double x, double width, MarkedBoxes& boxes) {
  for (const Mark mark : {Mark::noTest, Mark::noServer, Mark::noConnection}) {
    if (day.of(mark) > 0) {
      boxes.add(mark, x, 0, width, kHeight);
    }
  }
}

void addDayMarks(const Station& station, const TimeAxis& axis, MarkedBoxes& boxes) {
  const double width = std::max(kWidth / static_cast<double>(axis.days), kLeastWidth);
  for (const Stretch& day : station.days) {
    if (isDrawn(station, day.key)) {
      addDay(day, axis.x(static_cast<double>(day.key)), width, boxes);
    }
  }
}

void addTestMarks(const Station& station, const TimeAxis& axis, MarkedBoxes& boxes) {
  const double run = axis.x(static_cast<double>(axis.firstDay) +
                            static_cast<double>(station.rhythm.seconds) / kDaySeconds);
  for (const Placed& placed : station.line) {
    if (placed.mark >= Mark::partly && isDrawn(station, placed.day)) {
      boxes.add(placed.mark, axis.xOf(placed.at), 0, std::max(run, kLeastWidth), kHeight);
    }
  }
}

Html markStrip(const Station& station, const TimeAxis& axis) {
  MarkedBoxes boxes;
  isByTest(station) ? addTestMarks(station, axis, boxes) : addDayMarks(station, axis, boxes);
  return el("div", {{"class", "plot"}},
            draw({"When there was no connection, no test server or no test: see the table below.",
                  "strip",
                  {},
                  axis.ticks(),
                  true,
                  boxes.draw()}));
}

std::string withRange(const Metric& metric, const std::optional<Spread>& spread) {
  return spread ? fmt::format("{} ({}–{})", figure(metric, spread->middle),
                              figure(metric, spread->low), figure(metric, spread->high))
                : "n/a";
}

Table daysTable(const Station& station) {
  Table table({{"Day", ""},
               {"Tests", ""},
               {"Download", ""},
               {"Upload", ""},
               {"Latency", ""},
               {"No connection", ""},
               {"Missing", ""}});
  for (const Stretch& day : station.days) {
    if (isDrawn(station, day.key)) {
      table.add({dayIn(station, day.key), grouped(day.runs()), withRange(kRead, day.read),
                 withRange(kWrite, day.write), withRange(kLatency, day.latency),
                 countOrNone(day.of(Mark::noConnection)), countOrNone(day.of(Mark::noTest))});
    }
  }
  return table;
}

Table testsTable(const Station& station) {
  Table table({{"When", ""},
               {"Download", ""},
               {"Upload", ""},
               {"Latency", ""},
               {"Loss %", ""},
               {"What was not well", ""}});
  for (const Placed& placed : station.line) {
    if (placed.run == nullptr || !isDrawn(station, placed.day)) {
      continue;
    }
    const Run& run = *placed.run;
    table.add({(run.time ? "" : "about ") + momentIn(station, placed.at),
               figure(kRead, kRead.of(run)), figure(kWrite, kWrite.of(run)),
               figure(kLatency, kLatency.of(run)), figure(kLoss, kLoss.of(run)),
               foreign(reason(run))});
  }
  return table;
}

/// What the pictures show, in figures; open where it is short.
Html inFigures(const Station& station) {
  constexpr std::size_t kFew = 12;
  const bool byTest = isByTest(station);
  const char* const title = byTest ? "Each test in figures" : "Each day in figures";
  return el("details", {{"open", station.line.size() <= kFew ? "open" : ""}},
            {el("summary", {}, title),
             el("div",
                {{"class", "scroll"}, {"tabindex", "0"}, {"role", "region"}, {"aria-label", title}},
                (byTest ? testsTable(station) : daysTable(station))
                    .html(byTest ? "figures tests" : "figures", title))});
}

}  // namespace

Html dayByDay(const Station& station) {
  const TimeAxis axis{station.firstDrawnDay(), station.drawnDays()};
  Html charts;
  for (const Metric* const metric : kMetrics) {
    charts += metricChart(station, axis, *metric);
  }
  const bool byTest = isByTest(station);
  return section(
      station, byTest ? "Test by test" : "Day by day",
      {el("p", {{"class", "say"}},
          byTest ? "Each point is a test. Where nothing was measured there is no line."
                 : "The line is the day’s middle value, the band holds nine of ten tests. Where "
                   "nothing was measured there is no line."),
       explorer(station), el("div", {{"class", "courses"}}, {charts, markStrip(station, axis)}),
       inFigures(station)});
}

}  // namespace watch
