#include "report/summary_table.h"

#include "report/marks.h"
#include "report/words.h"

namespace watch {

Table summaryTable(const char* name) {
  return Table({{name, ""},
                {"Tests by quality", "length"},
                {"Download", "r"},
                {"1 in 20 below", "r dim"},
                {"Upload", "r"},
                {"Latency", "r"},
                {"Tests", "r wide"},
                {"Missing", "r wide"},
                {"No connection", "r wide"}});
}

void addTo(Table& table, const Html& name, const Stretch& stretch) {
  table.add({name, bar(stretch), el("b", {}, figure(kRead, middle(stretch.read))),
             figure(kRead, oneInTwenty(kRead, stretch.read)), figure(kWrite, middle(stretch.write)),
             figure(kLatency, middle(stretch.latency)), grouped(stretch.runs()),
             countOrNone(stretch.of(Mark::noTest)), countOrNone(stretch.of(Mark::noConnection))});
}

}  // namespace watch
