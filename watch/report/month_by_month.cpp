// Each month in a line.
#include "report/sections.h"
#include "report/summary_table.h"
#include "report/words.h"

#include <algorithm>

namespace watch {

Html monthByMonth(const Station& station) {
  constexpr std::size_t kMost = 48;
  if (station.months.size() < 2) {
    return {};
  }
  Table table = summaryTable("Month");
  const std::size_t first = station.months.size() - std::min(station.months.size(), kMost);
  for (const Stretch& month : std::span(station.months).subspan(first)) {
    addTo(table, monthIn(station, month.key), month);
  }
  return section(station, "Month by month",
                 {el("p", {{"class", "say"}},
                     {"Usual rates in Mbit/s, latency in ms; the colours are those of the hours.",
                      first > 0 ? " Only the last months are shown." : ""}),
                  table.html("months", "Months")});
}

}  // namespace watch
