// The verdict: how the line was, in one sentence or a few.
#include "figures/days_in_a_row.h"
#include "figures/usual.h"
#include "report/sections.h"
#include "report/words.h"

#include <fmt/format.h>

namespace watch {

namespace {

/// Below this share of what is usual, days and hours are told of.
constexpr double kSlow = 0.85;
constexpr double kHalf = 0.5;

Html bold(const std::string& text) {
  return el("b", {}, text);
}

std::string name(const Metric& metric) {
  return title(metric);
}

Html connection(const Station& station) {
  const std::size_t lost = station.all.of(Mark::noConnection);
  const std::size_t runs = station.counts.all();
  if (runs == 1) {
    return lost == 0 ? "The connection was there in the one test that was made. "
                     : "There was no connection in the one test that was made. ";
  }
  return {"The connection was there in ", bold(share(runs - lost, runs)), " of the ",
          groupedCount(runs, "test", "tests"), ". "};
}

Html besideContract(const Station& station) {
  const Reached reach = reached(station.days);
  const std::string& metric = name(*station.reference->metric);
  Html said = {metric, " reached 90 % of the contract in ", bold(share(reach.inFull, reach.runs)),
               " of the tests that measured it"};
  if (reach.belowHalf > 0) {
    said += Html{" and stayed below half of it in ", bold(share(reach.belowHalf, reach.runs))};
  }
  return {said, ". "};
}

Html usualFigures(const Station& station) {
  const Metric& metric = *station.reference->metric;
  const Usual values = usual(station.runs, metric);
  const char* const beyond = metric.moreIsBetter ? "below" : "above";
  Html said = {name(metric), values.count == 1 ? " was " : " is usually ",
               bold(figureWithUnit(metric, values.middle))};
  if (values.oneInTwenty) {
    said += Html{", and ", beyond, " ", bold(figureWithUnit(metric, values.oneInTwenty)),
                 " in one test of twenty"};
  }
  return {said, ". "};
}

/// Whether the middle of the day is worse than that share of the usual.
std::optional<bool> isBelow(const Stretch& day, const Reference& usual, double share) {
  const auto& spread = day.spreadOf(*usual.metric);
  return spread ? std::optional(usual.share(spread->middle) < share) : std::nullopt;
}

Html badDays(const Station& station) {
  const Metric& metric = *station.reference->metric;
  const Reference usual{&metric, *watch::usual(station.runs, metric).middle, false};
  const auto row = longestRow(station.days, [&usual](const Stretch& day) {
    return isBelow(day, usual, kHalf + kHalf / 2);
  });
  if (!row || row->count < 2) {
    return {};
  }
  return {"The longest bad time was from ", bold(dateIn(station, row->first)), " to ",
          bold(dateIn(station, row->last)), ", day by day below three quarters of the usual. "};
}

Html slowHours(const Station& station) {
  const Metric& metric = *station.reference->metric;
  const Stretch* worst = nullptr;
  std::vector<double> middles;
  for (const Stretch& hour : station.hours) {
    const auto& spread = hour.spreadOf(metric);
    if (!spread || spread->count < 3) {
      continue;
    }
    middles.push_back(spread->middle);
    if (worst == nullptr || metric.isWorse(spread->middle, worst->spreadOf(metric)->middle)) {
      worst = &hour;
    }
  }
  if (middles.size() < 6) {
    return {};
  }
  const Reference others{&metric, *median(middles), false};
  const double figure = worst->spreadOf(metric)->middle;
  if (others.share(figure) >= kSlow) {
    return {};
  }
  return {fmt::format("It is worst around {:02}:00, with ", worst->key),
          bold(figureWithUnit(metric, figure)), " where ", figureWithUnit(metric, others.value),
          " is usual. "};
}

Html sentences(const Station& station) {
  if (station.counts.all() == 0) {
    return "There is no run of which anything can be said.";
  }
  if (!station.reference) {
    return {connection(station), "Nothing was measured."};
  }
  return {connection(station),
          station.reference->isOfContract ? besideContract(station) : usualFigures(station),
          badDays(station), slowHours(station)};
}

}  // namespace

Html verdict(const Station& station) {
  return el("p", {{"class", "lead"}}, sentences(station));
}

}  // namespace watch
