// A page to hand on: what was promised, what was measured, how, and what is left out.
#include "report/sections.h"
#include "report/words.h"
#include "views/words.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace watch {

namespace {

/// Rows of what and how much.
class Facts {
 public:
  void add(const std::string& name, const Html& value) {
    rows_ += el("tr", {}, {el("th", {{"scope", "row"}}, name), el("td", {}, value)});
  }
  Html html() const {
    return el("table", {{"class", "facts"}},
              {el("caption", {}, "Figures for the provider"), el("tbody", {}, rows_)});
  }

 private:
  Html rows_;
};

std::string promises(const Contract& contract) {
  std::string words;
  for (const auto& [name, rate] :
       {std::pair{"download", contract.read}, std::pair{"upload", contract.write}}) {
    if (rate) {
      words += fmt::format("{}{} {} Mbit/s", words.empty() ? "" : ", ", name, plain(*rate));
    }
  }
  return words.empty() ? "not given to this report" : words;
}

void addReached(const Station& station, const Metric& metric, const Reached& reach, Facts& facts) {
  const std::string name = title(metric);
  facts.add(name + " tests measured in full", groupedCount(reach.runs, "test", "tests") + " on " +
                                                  groupedCount(reach.days, "day", "days"));
  facts.add("… with at least 90 % of the contract",
            fmt::format("{} ({})", grouped(reach.inFull), share(reach.inFull, reach.runs)));
  facts.add("… below half of the contract",
            fmt::format("{} ({})", grouped(reach.belowHalf), share(reach.belowHalf, reach.runs)));
  std::string days = grouped(reach.daysWithout);
  if (reach.longest && reach.longest->count > 1) {
    days += fmt::format(", the most in a row from {} to {}", dateIn(station, reach.longest->first),
                        dateIn(station, reach.longest->last));
  }
  facts.add("Days on which no test reached 90 %", days);
}

void addUsual(const Station& station, const Metric& metric, Facts& facts) {
  const std::optional<Spread>& all = station.all.spreadOf(metric);
  if (!all) {
    return;
  }
  std::string words = fmt::format("{} in the middle of {}", figureWithUnit(metric, all->middle),
                                  groupedCount(all->count, "test", "tests"));
  if (oneInTwenty(metric, all)) {
    words += fmt::format("; nine of ten between {} and {}", figure(metric, all->low),
                         figureWithUnit(metric, all->high));
  }
  facts.add(title(metric), words);
}

void addRate(const Station& station, const Metric& metric, std::optional<double> promised,
             Facts& facts) {
  addUsual(station, metric, facts);
  if (promised) {
    const std::vector<Placed> line = timeline(station.runs, Reference{&metric, *promised, true});
    addReached(station, metric, reached(stretches(line, dayKey)), facts);
  }
}

std::string leftOut(const Station& station) {
  std::map<Outcome, std::size_t> outcomes;
  for (const Run& run : station.runs) {
    outcomes[outcomeOf(run)] += run.orphan ? 0 : 1;
  }
  const std::pair<std::size_t, const char*> kinds[] = {
      {outcomes[Outcome::noServer], "with the test server busy or off"},
      {outcomes[Outcome::partly], "measured in part"},
      {outcomes[Outcome::nothing], "that measured nothing, and do not tell why"},
      {station.missing, "missing"}};
  std::string words;
  for (const auto& [count, kind] : kinds) {
    if (count > 0) {
      words += fmt::format("{}{} {}", words.empty() ? "" : "; ",
                           groupedCount(count, "test", "tests"), kind);
    }
  }
  return words.empty() ? "nothing" : words;
}

/// The value that most runs have.
template <class Value>
std::optional<Value> usualOf(const std::map<Value, std::size_t>& counts) {
  const auto most = std::ranges::max_element(
      counts, [](const auto& one, const auto& other) { return one.second < other.second; });
  return most == counts.end() ? std::nullopt : std::optional(most->first);
}

std::string severalOf(const std::vector<std::string>& names) {
  constexpr std::size_t kMost = 3;
  std::string words;
  for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i) {
    words += (i == 0 ? "" : ", ") + foreign(names[i]);
  }
  return names.size() > kMost ? fmt::format("{} and {} others", words, names.size() - kMost)
                              : words;
}

std::string howMeasured(const Station& station) {
  std::map<std::uint32_t, std::size_t> pings;
  std::map<std::uint32_t, std::size_t> durations;
  for (const Run& run : station.runs) {
    if (run.ping.sent) {
      ++pings[*run.ping.sent];
    }
    if (run.write.duration) {
      ++durations[*run.write.duration];
    }
  }
  std::string words;
  if (const auto sent = usualOf(pings)) {
    words += fmt::format("ping, {}; ", groupedCount(*sent, "request", "requests"));
  }
  if (const auto seconds = usualOf(durations)) {
    words += fmt::format("iperf3, one TCP connection, {} each way; ",
                         groupedCount(*seconds, "second", "seconds"));
  }
  const std::vector<std::string> servers = serversOf(station.runs);
  if (!servers.empty()) {
    words += "to " + severalOf(servers) + ". ";
  }
  return words +
         "It includes this workstation and its own network. A regulator may accept only its "
         "own tool as formal proof.";
}

std::string outageCount(const Station& station) {
  if (station.outages.empty()) {
    return station.counts.failed == 0 ? "none" : "none that the tests tell of";
  }
  std::size_t runs = 0;
  for (const OutageBounds& outage : station.outages) {
    runs += outage.runs;
  }
  return fmt::format("{} in {}, listed above", groupedCount(runs, "test", "tests"),
                     groupedCount(station.outages.size(), "outage", "outages"));
}

}  // namespace

Html forTheProvider(const Station& station) {
  Facts facts;
  facts.add("Contract", promises(station.contract));
  facts.add("Time", dates(noonOf(station.firstDay()), noonOf(station.lastDay())));
  addRate(station, kRead, station.contract.read, facts);
  addRate(station, kWrite, station.contract.write, facts);
  addUsual(station, kLatency, facts);
  facts.add("Without connection", outageCount(station));
  facts.add("Left out of the figures", leftOut(station));
  facts.add("How it was measured", howMeasured(station));
  facts.add("Kept records", groupedCount(station.counts.all(), "test", "tests") +
                                ", with the lines of ping and iperf3 that they rest on");
  return el("section", {{"class", "sheet"}},
            {el(station.heading, {}, "For the provider"),
             el("p", {{"class", "say"}},
                "One page to print. Every figure is counted from the kept output of ping and "
                "iperf3."),
             facts.html()});
}

}  // namespace watch
