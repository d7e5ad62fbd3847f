#include "commands.h"

#include "evidence/evidence.h"
#include "evidence/text.h"
#include "figures/period.h"
#include "figures/usual.h"
#include "runs/join.h"
#include "views/export.h"
#include "views/list.h"
#include "views/output.h"
#include "views/show.h"
#include "views/style.h"
#include "views/summary.h"
#include "views/words.h"
#include "when.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>
#include <stdexcept>

namespace watch {

namespace {

constexpr char kLogDirectory[] = "Library/Logs/Qelmora";

/// A log directory, what was read there and the runs.
struct Reading {
  LogDirectory directory;
  Evidence evidence;
  std::vector<Run> runs;
};

LogDirectory ownDirectory() {
  const char* const home = std::getenv("HOME");
  if (home == nullptr || *home == '\0') {
    throw std::runtime_error("HOME is not set: say with --from which log directory to read");
  }
  return LogDirectory(std::filesystem::path(home) / kLogDirectory);
}

LogDirectory directoryOf(const Selection& selection) {
  return selection.from.empty() ? ownDirectory() : LogDirectory(selection.from.front());
}

/// Names what could not be read, a few of many.
void printTroubles(const Troubles& troubles) {
  constexpr std::size_t kMost = 10;
  for (std::size_t i = 0; i < std::min(troubles.size(), kMost); ++i) {
    const Trouble& trouble = troubles[i];
    fmt::print(stderr, "connWatch: {}{}: {}\n", trouble.file,
               trouble.line > 0 ? fmt::format(":{}", trouble.line) : "", trouble.what);
  }
  if (troubles.size() > kMost) {
    fmt::print(stderr, "connWatch: and {} more that could not be read\n", troubles.size() - kMost);
  }
}

Reading read(LogDirectory directory) {
  Reading reading{std::move(directory), {}, {}};
  reading.evidence = readEvidence(reading.directory);
  reading.runs = joinRuns(reading.evidence);
  return reading;
}

/// Whether nothing of the run is open, so that files that were not read could say no more.
bool isSettled(const Run& run) {
  return run.finished && run.time && run.unsure.empty();
}

/// Reads what a period since then needs, and all when that leaves a question open.
Reading readSince(const LogDirectory& directory, EpochSeconds since) {
  Reading reading{directory, readEvidenceSince(directory, localTime(since)), {}};
  reading.runs = joinRuns(reading.evidence);
  return std::ranges::all_of(runsIn(reading.runs, {since, std::nullopt}), isSettled)
             ? reading
             : read(directory);
}

int sayNoRuns(const Reading& reading, const Selection& selection) {
  printTroubles(reading.evidence.troubles);
  const bool isBounded = selection.since || selection.until;
  fmt::print(stderr, "connWatch: no runs in {}{}\n", reading.directory.path().string(),
             isBounded && !reading.runs.empty() ? " in this time" : "");
  if (reading.runs.empty()) {
    fmt::print(stderr, "  Start one:  connTester ADDRESS      Look elsewhere:  --from DIR\n");
  }
  return kNothingToRead;
}

void print(const std::string& text) {
  Output output(std::nullopt);
  output.write(text);
  output.finish();
}

bool isAt(const Run& run, const When& when) {
  return run.time && *run.time >= when.begin && *run.time < when.end;
}

/// Returns the run that `wanted` names: a number counts from the end, a time of the day is the last
/// such one, a day and time are the first run then. Null when there is none.
const Run* find(std::span<const Run> runs, const std::string& wanted, EpochSeconds now) {
  if (const auto number = wholeNumber<std::size_t>(wanted)) {
    return *number >= 1 && *number <= runs.size() ? &runs[runs.size() - *number] : nullptr;
  }
  const auto when = parseWhen(wanted, now);
  if (!when) {
    throw std::runtime_error(fmt::format(
        "\"{}\" names no run: give a time (05:01, \"20 Nov 05:01\", 2026-11-20T05:01), or a number "
        "from the end (1 is the last run)",
        wanted));
  }
  const auto found = std::ranges::find_if(runs, [&](const Run& run) { return isAt(run, *when); });
  if (found != runs.end()) {
    return &*found;
  }
  const auto sameTime = std::ranges::find_if(runs.rbegin(), runs.rend(), [&](const Run& run) {
    return run.time && clockTime(*run.time) == wanted;
  });
  return sameTime == runs.rend() ? nullptr : &*sameTime;
}

int summarise(const LogDirectory& directory, const Selection& selection, const Style& style) {
  const Reading reading = read(directory);
  Period period{selection.since, selection.until};
  const auto last = std::ranges::find_if(runsIn(reading.runs, period).rbegin(),
                                         runsIn(reading.runs, period).rend(),
                                         [](const Run& run) { return run.time.has_value(); });
  if (last == runsIn(reading.runs, period).rend()) {
    return sayNoRuns(reading, selection);
  }
  period.since = period.since.value_or(*last->time - kUsualPeriod);
  printTroubles(reading.evidence.troubles);
  if (selection.from.size() > 1) {
    print(paint(style, Tone::strong, directory.path().string()) + "\n");
  }
  print(summaryView(runsIn(reading.runs, period), style));
  return kDone;
}

}  // namespace

int list(const Selection& selection, EpochSeconds now) {
  const LogDirectory directory = directoryOf(selection);
  const Reading reading =
      selection.since ? readSince(directory, *selection.since) : read(directory);
  const std::span<const Run> runs = runsIn(reading.runs, {selection.since, selection.until});
  if (runs.empty()) {
    return sayNoRuns(reading, selection);
  }
  printTroubles(reading.evidence.troubles);
  print(listView(runs, now, styleOfStandardOutput()));
  return kDone;
}

int show(const Selection& selection, const std::string& wanted, EpochSeconds now) {
  const Reading reading = read(directoryOf(selection));
  const std::span<const Run> runs = runsIn(reading.runs, {selection.since, selection.until});
  if (runs.empty()) {
    return sayNoRuns(reading, selection);
  }
  const Run* const run = find(runs, wanted, now);
  if (run == nullptr) {
    throw std::runtime_error(fmt::format(
        "no run at {}: connWatch list shows them; the last one was {}", wanted,
        runs.back().time ? isoLocal(*runs.back().time) : "at a time that is not known"));
  }
  printTroubles(reading.evidence.troubles);
  print(showView(*run, {reading.runs, reading.evidence.files, reading.directory, now},
                 styleOfStandardOutput()));
  return kDone;
}

int summary(const Selection& selection) {
  const Style style = styleOfStandardOutput();
  if (selection.from.empty()) {
    return summarise(ownDirectory(), selection, style);
  }
  int status = kDone;
  for (const std::filesystem::path& path : selection.from) {
    if (&path != &selection.from.front()) {
      print("\n");
    }
    status = std::max(status, summarise(LogDirectory(path), selection, style));
  }
  return status;
}

int check(const Selection& selection, const Limits& limits, EpochSeconds now) {
  const Reading reading = read(directoryOf(selection));
  printTroubles(reading.evidence.troubles);
  const Checked checked = checkRuns(runsIn(reading.runs, {selection.since, selection.until}),
                                    limits, now, styleOfStandardOutput());
  print(checked.text);
  return static_cast<int>(checked.verdict);
}

int exportRuns(const Selection& selection, const ExportRequest& request) {
  if (request.format == "sqlite" && !request.output) {
    throw std::runtime_error("a database goes to a file: say --output FILE");
  }
  const Reading reading = read(directoryOf(selection));
  const std::span<const Run> runs = runsIn(reading.runs, {selection.since, selection.until});
  if (runs.empty()) {
    return sayNoRuns(reading, selection);
  }
  printTroubles(reading.evidence.troubles);
  Output output(request.output);
  if (request.format == "csv") {
    exportCsv(runs, reading.evidence.files, output);
  } else if (request.format == "jsonl") {
    exportJsonl(runs, reading.evidence.files, output);
  } else {
    exportSqlite(runs, reading.evidence.files, output);
  }
  output.finish();
  return kDone;
}

}  // namespace watch
