// The ten slowest tests, each with the line that keeps it.
#include "figures/worst_runs.h"
#include "report/sections.h"
#include "report/table.h"
#include "report/words.h"

namespace watch {

namespace {

constexpr std::size_t kTen = 10;
/// Of fewer tests, the slowest are not worth a list: each is shown.
constexpr std::size_t kFewest = 20;

/// Where the figure by which they are the slowest is kept.
const Source& sourceOf(const Run& run, const Metric& metric) {
  return &metric == &kRead                         ? run.reverse
         : &metric == &kWrite || run.pings.empty() ? run.forward
                                                   : run.pings.back();
}

void addRow(const Station& station, const Run& run, Table& table) {
  const Metric& metric = *station.reference->metric;
  const auto cell = [&](const Metric& of) {
    const std::string text = figure(of, of.of(run));
    return &of == &metric ? el("b", {}, text) : Html(text);
  };
  table.add({run.time ? momentIn(station, *run.time) : "time not known", cell(kRead), cell(kWrite),
             cell(kLatency), cell(kLoss),
             el("code", {}, place(sourceOf(run, metric), station.files))});
}

}  // namespace

Html slowestTests(const Station& station) {
  if (!station.reference || station.counts.all() < kFewest) {
    return {};
  }
  Table table({{"When", ""},
               {"Download", "r"},
               {"Upload", "r"},
               {"Latency", "r"},
               {"Loss %", "r"},
               {"Kept in", "wide"}});
  for (const Run* const run : worstRuns(station.runs, *station.reference->metric, kTen)) {
    addRow(station, *run, table);
  }
  return section(station, "The ten slowest tests",
                 {el("p", {{"class", "say"}},
                     "Rates in Mbit/s, latency in ms. The file and line are "
                     "those of the log directory."),
                  table.html("slowest", "The slowest tests")});
}

}  // namespace watch
