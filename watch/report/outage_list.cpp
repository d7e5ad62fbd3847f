// When there was no connection: what is known of each outage.
#include "report/chart.h"
#include "report/marks.h"
#include "report/sections.h"
#include "report/table.h"
#include "report/words.h"
#include "views/words.h"

#include <algorithm>
#include <vector>

namespace watch {

namespace {

/// So many stand on the page, the longest.
constexpr std::size_t kMost = 40;

EpochSeconds lengthOf(const OutageBounds& outage) {
  return outage.atMost().value_or(outage.atLeast());
}

/// What is certain is dark, what is possible is light.
Html lengthBar(const OutageBounds& outage, EpochSeconds longest) {
  const auto width = [longest](EpochSeconds seconds) {
    return kWidth * static_cast<double>(seconds) / static_cast<double>(longest);
  };
  const Html drawing = {Path().addBox(0, 0, width(lengthOf(outage)), kHeight).draw("perhaps"),
                        Path().addBox(0, 0, width(outage.atLeast()), kHeight).draw("lost")};
  return draw({"", "bar", {}, {}, false, drawing});
}

std::string momentOrNone(const Station& station, std::optional<EpochSeconds> moment,
                         const char* none) {
  return moment ? momentIn(station, *moment) : none;
}

/// The outages that are shown, in the order of time.
std::vector<OutageBounds> shown(const Station& station) {
  std::vector<OutageBounds> outages = station.outages;
  if (outages.size() > kMost) {
    std::ranges::stable_sort(outages, std::ranges::greater(), lengthOf);
    outages.resize(kMost);
    std::ranges::stable_sort(outages, {}, &OutageBounds::firstBad);
  }
  return outages;
}

Html outageTable(const Station& station) {
  Table table({{"Last good test", ""},
               {"Next good test", ""},
               {"Without connection", ""},
               {"Length", "length wide"},
               {"Failed tests", "r"},
               {"What the tools said", "wide"}});
  const std::vector<OutageBounds> outages = shown(station);
  EpochSeconds longest = 1;
  for (const OutageBounds& outage : outages) {
    longest = std::max(longest, lengthOf(outage));
  }
  for (const OutageBounds& outage : outages) {
    table.add({momentOrNone(station, outage.lastGood, "none before"),
               momentOrNone(station, outage.nextGood, "none since"), lengthInWords(outage),
               lengthBar(outage, longest), grouped(outage.runs), foreign(outage.reason)});
  }
  return table.html("outages", "Outages");
}

Html none(const Station& station) {
  return el("p", {{"class", "say"}},
            station.counts.failed == 0
                ? "In each test, something came through."
                : "No test shows an outage. Those that measured nothing do not tell why.");
}

}  // namespace

Html outageList(const Station& station) {
  if (station.outages.empty()) {
    return section(station, "Without connection", none(station));
  }
  const Html cut = station.outages.size() > kMost
                       ? Html{" These are the longest ", grouped(kMost), " of ",
                              grouped(station.outages.size()), "."}
                       : Html();
  return section(station, "Without connection",
                 {el("p", {{"class", "say"}},
                     {"Neither ping nor a test got through. How long that was is only known "
                      "between the tests: "
                      "at least from the first failed one to the last (dark), at most from the "
                      "last good one to "
                      "the next (light). A test server that is busy or switched off is no outage.",
                      cut}),
                  outageTable(station)});
}

}  // namespace watch
