// What was tested, and what was not: all runs by what has come of them.
#include "figures/outcome.h"
#include "report/marks.h"
#include "report/sections.h"
#include "report/table.h"
#include "report/words.h"

#include <fmt/format.h>

namespace watch {

namespace {

struct Kind {
  Outcome outcome;
  Mark mark;
  const char* name;
};
constexpr Kind kKinds[] = {
    {Outcome::measured, Mark::good, "measured in full"},
    {Outcome::partly, Mark::partly, "measured in part: a test failed, was cut short or broken off"},
    {Outcome::noServer, Mark::noServer, "the connection was there, the test server busy or off"},
    {Outcome::noConnection, Mark::noConnection, "no connection"},
    {Outcome::nothing, Mark::partly, "nothing measured, and nothing tells why"}};

std::size_t countOf(const Station& station, Outcome outcome) {
  std::size_t count = 0;
  for (const Run& run : station.runs) {
    count += !run.orphan && outcomeOf(run) == outcome ? 1 : 0;
  }
  return count;
}

Html named(Mark mark, const char* name) {
  return {el("i", {{"class", std::string("key ") + colour(mark)}}), name};
}

std::size_t withoutTime(const Station& station) {
  std::size_t count = 0;
  for (const Run& run : station.runs) {
    count += !run.orphan && !run.time ? 1 : 0;
  }
  return count;
}

/// Sentences about what the files leave open.
std::string doubts(const Station& station) {
  std::string words;
  if (const std::size_t count = withoutTime(station); count > 0) {
    words += fmt::format(
        "Of {}, no line tells when it was; the rhythm of the others tells its "
        "place. ",
        groupedCount(count, "test", "tests"));
  }
  if (station.counts.unsure > 0) {
    words += fmt::format("Of {}, the files leave something open: connWatch show says what. ",
                         groupedCount(station.counts.unsure, "test", "tests"));
  }
  if (station.counts.orphans > 0) {
    words += fmt::format("{} of a ping belong to no known test. ",
                         groupedCount(station.counts.orphans, "output", "outputs"));
  }
  return words;
}

}  // namespace

Html whatWasTested(const Station& station) {
  Table table({{"What has come of them", ""}, {"Tests", "r"}});
  for (const Kind& kind : kKinds) {
    if (const std::size_t count = countOf(station, kind.outcome); count > 0) {
      table.add({named(kind.mark, kind.name), grouped(count)});
    }
  }
  table.add({"tests in all", el("b", {}, grouped(station.counts.all()))});
  if (station.missing > 0) {
    table.add({named(Mark::noTest,
                     "missing: switched off, asleep, or ended before anything was "
                     "kept"),
               grouped(station.missing)});
  }
  const std::string open = doubts(station);
  return section(station, "What was tested, and what not",
                 {table.html("tested", "Tests by what has come of them"),
                  open.empty() ? Html() : el("p", {{"class", "say"}}, open)});
}

}  // namespace watch
