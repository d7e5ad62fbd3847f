// Several workstations side by side.
#include "report/sections.h"
#include "report/summary_table.h"

namespace watch {

Html comparison(std::span<const Station> stations) {
  Table table = summaryTable("Workstation");
  for (const Station& station : stations) {
    addTo(table, station.name, station.all);
  }
  return el("section", {},
            {el("h2", {}, "Side by side"),
             el("p", {{"class", "say"}},
                "Usual rates in Mbit/s, latency in ms. The colours hold each workstation to its "
                "own contract or usual figure."),
             table.html("months", "Workstations")});
}

}  // namespace watch
