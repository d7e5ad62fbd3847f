#include "commands.h"

#include "evidence/evidence.h"
#include "evidence/text.h"
#include "figures/period.h"
#include "figures/usual.h"
#include "guard/rewritten_line.h"
#include "journal/journal.h"
#include "report/browser.h"
#include "report/page.h"
#include "report/station.h"
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
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>
#include <stdexcept>
#include <unistd.h>

namespace watch {

namespace {

/// A log directory. Only in the user's own is the journal written.
struct Place {
  LogDirectory directory;
  bool isOwn;
};

/// A log directory, what was read there and the runs.
struct Reading {
  LogDirectory directory;
  Evidence evidence;
  std::vector<Run> runs;
};

Place userPlace() {
  if (const auto own = ownDirectory()) {
    return {*own, true};
  }
  throw UsageError("HOME is not set: say with --from DIR which log directory to read");
}

std::vector<Place> placesOf(const Selection& selection) {
  if (selection.from.empty()) {
    return {userPlace()};
  }
  std::vector<Place> places;
  for (const std::filesystem::path& path : selection.from) {
    places.push_back({LogDirectory(path), false});
  }
  return places;
}

Place placeOf(const Selection& selection) {
  if (selection.from.size() > 1) {
    throw UsageError("only summary and report read several log directories: give --from DIR once");
  }
  return placesOf(selection).front();
}

/// Names what could not be read, a few of many.
void printTroubles(const Troubles& troubles) {
  constexpr std::size_t kMost = 10;
  for (std::size_t i = 0; i < std::min(troubles.size(), kMost); ++i) {
    const Trouble& trouble = troubles[i];
    fmt::print(stderr, "connWatch: {}{}: {}\n", printable(trouble.file),
               trouble.line > 0 ? fmt::format(":{}", trouble.line) : "", trouble.what);
  }
  if (troubles.size() > kMost) {
    fmt::print(stderr, "connWatch: and {} more that could not be read\n", troubles.size() - kMost);
  }
}

/// Reads by `readIt`, and once more when the journal has got the latest run by that.
template <class Read>
Reading readAndKeep(const Place& place, EpochSeconds now, Read readIt) {
  Reading reading{place.directory, readIt(place.directory), {}};
  reading.runs = joinRuns(reading.evidence, now);
  if (place.isOwn && keepLatestReports(place.directory, reading.evidence, reading.runs)) {
    reading.evidence = readIt(place.directory);
    reading.runs = joinRuns(reading.evidence, now);
  }
  return reading;
}

Reading read(const Place& place, EpochSeconds now) {
  return readAndKeep(place, now, readEvidence);
}

/// The same without a run that is going on, of which nothing can be said yet.
Reading readEnded(const Place& place, EpochSeconds now) {
  Reading reading = read(place, now);
  std::erase_if(reading.runs, [](const Run& run) { return run.ongoing; });
  return reading;
}

/// Whether a run has to have left a line that is not there.
bool lacksLines(const Run& run) {
  if (run.orphan || run.ongoing) {
    return false;
  }
  const bool lacksTest =
      run.write.state == RateState::unknown || run.read.state == RateState::unknown;
  const bool lacksPing = run.ping.state == PingState::replied && run.pings.empty();
  return !run.finished || lacksTest || lacksPing;
}

/// Whether runs since then, one after the other, lack lines, as those of a file do that a wrong
/// clock has misnamed.
bool lacksFile(std::span<const Run> runs, EpochSeconds since) {
  constexpr std::size_t kFewest = 3;
  std::size_t lacking = 0;
  for (const Run& run : runs) {
    lacking = lacksLines(run) ? lacking + 1 : 0;
    if (lacking >= kFewest && run.time && *run.time >= since) {
      return true;
    }
  }
  return false;
}

/// Reads the files whose names are of the period, and all when one seems to have another name.
Reading readPeriod(const Place& place, const Period& period, EpochSeconds now) {
  if (!period.since) {
    return read(place, now);
  }
  Reading reading = readAndKeep(place, now, [&](const LogDirectory& directory) {
    return readEvidenceSince(directory, localTime(*period.since));
  });
  return lacksFile(reading.runs, *period.since) ? read(place, now) : reading;
}

int sayNoRuns(const LogDirectory& directory, const Period& period) {
  std::error_code none;
  const bool isThere = std::filesystem::is_directory(directory.path(), none);
  const bool isBounded = period.since || period.until;
  fmt::print(stderr, "connWatch: {} {}{}\n", isThere ? "no runs in" : "there is no directory",
             directory.path().string(), isThere && isBounded ? " in this time" : "");
  fmt::print(stderr, "  {}\n",
             isThere && isBounded
                 ? "All runs:  connWatch list, without --since and --until"
                 : "Start one:  connWatch run ADDRESS      Look for obstacles:  connWatch doctor\n"
                   "  Look elsewhere:  --from DIR");
  return kNothingToRead;
}

bool isAtThatTimeOfDay(const Run& run, const When& when) {
  if (!run.time || !when.isOfAnyDay) {
    return false;
  }
  const Calendar day = calendar(localTime(*run.time));
  Calendar wanted = calendar(*when.localBegin);
  wanted.year = day.year;
  wanted.month = day.month;
  wanted.day = day.day;
  const std::int64_t begin = fromCalendar(wanted).seconds;
  const std::int64_t length = when.localEnd->seconds - when.localBegin->seconds;
  const std::int64_t time = localTime(*run.time).seconds;
  return begin <= time && time < begin + length;
}

/// Returns the run that `wanted` names: a number counts from the end, a time of the day is the last
/// such one, a day and time are the first run then. Null when there is none.
const Run* find(std::span<const Run> runs, const std::string& wanted, EpochSeconds now) {
  if (const auto number = wholeNumber<std::size_t>(wanted)) {
    return *number >= 1 && *number <= runs.size() ? &runs[runs.size() - *number] : nullptr;
  }
  const auto when = parseWhen(wanted, now);
  if (!when) {
    throw UsageError(fmt::format(
        "\"{}\" names no run: give a time (05:01, \"20 Nov 05:01\", 2026-11-20T05:01), or a number "
        "from the end (1 is the last run)",
        wanted));
  }
  const auto found = std::ranges::find_if(
      runs, [&](const Run& run) { return run.time && when->holds(*run.time); });
  if (found != runs.end()) {
    return &*found;
  }
  const auto sameTime = std::ranges::find_if(
      runs.rbegin(), runs.rend(), [&](const Run& run) { return isAtThatTimeOfDay(run, *when); });
  return sameTime == runs.rend() ? nullptr : &*sameTime;
}

int sayNoSuchRun(std::span<const Run> runs, const std::string& wanted) {
  const auto last = lastTime(runs);
  fmt::print(stderr, "connWatch: of {}, none is \"{}\"{}\n  See them:  connWatch list\n",
             counted(runs.size(), "run", "runs"), wanted,
             last ? "; the last one was at " + isoLocal(*last) : "");
  return kNothingToRead;
}

/// The name of this machine, or what else tells the workstation of a log directory.
std::string nameOf(const Place& place) {
  std::array<char, 256> name{};
  return place.isOwn && gethostname(name.data(), name.size() - 1) == 0
             ? name.data()
             : place.directory.path().string();
}

/// The workstation of a log directory, or nothing where no run is in the period.
std::optional<Station> readStation(const Place& place, const Selection& selection,
                                   const ReportRequest& request, EpochSeconds now) {
  RewrittenLine progress;
  if (styleOf(STDERR_FILENO).canRewrite) {
    progress.write(fmt::format("Reading {} ...", place.directory.path().string()));
  }
  Reading reading = readEnded(place, now);
  progress.clear();
  printTroubles(reading.evidence.troubles);
  std::vector<Run> runs = runsIn(std::move(reading.runs), selection.period);
  if (runs.empty()) {
    sayNoRuns(place.directory, selection.period);
    return std::nullopt;
  }
  return lookAt({nameOf(place), place.directory.path().string(), std::move(reading.evidence.files),
                 std::move(runs)},
                request.contract);
}

int summarise(const Place& place, const Selection& selection, EpochSeconds now,
              const Style& style) {
  Reading reading = readEnded(place, now);
  printTroubles(reading.evidence.troubles);
  if (selection.from.size() > 1) {
    print(paint(style, Tone::strong, place.directory.path().string()) + "\n");
  }
  Period period = selection.period;
  std::vector<Run> runs = runsIn(std::move(reading.runs), period);
  if (runs.empty()) {
    return sayNoRuns(place.directory, period);
  }
  if (const auto last = lastTime(runs); last && !period.since) {
    period.since = *last - kUsualPeriod;
  }
  print(summaryView(runsIn(std::move(runs), period), style));
  return kDone;
}

}  // namespace

int list(const Selection& selection, EpochSeconds now) {
  Reading reading = readPeriod(placeOf(selection), selection.period, now);
  printTroubles(reading.evidence.troubles);
  const std::vector<Run> runs = runsIn(std::move(reading.runs), selection.period);
  if (runs.empty()) {
    return sayNoRuns(reading.directory, selection.period);
  }
  print(listView(runs, now, styleOfStandardOutput()));
  return kDone;
}

int show(const Selection& selection, const std::string& wanted, EpochSeconds now) {
  const Reading reading = read(placeOf(selection), now);
  printTroubles(reading.evidence.troubles);
  const std::vector<Run> runs = runsIn(reading.runs, selection.period);
  if (runs.empty()) {
    return sayNoRuns(reading.directory, selection.period);
  }
  const Run* const run = find(runs, wanted, now);
  if (run == nullptr) {
    return sayNoSuchRun(runs, wanted);
  }
  print(showView(*run, {reading.runs, reading.evidence.files, reading.directory, now},
                 styleOfStandardOutput()));
  return kDone;
}

int summary(const Selection& selection, EpochSeconds now) {
  const Style style = styleOfStandardOutput();
  const std::vector<Place> places = placesOf(selection);
  int status = kDone;
  for (const Place& place : places) {
    if (&place != &places.front()) {
      print("\n");
    }
    status = std::max(status, summarise(place, selection, now, style));
  }
  return status;
}

int check(const Selection& selection, const Limits& limits, EpochSeconds now) {
  const Reading reading = readEnded(placeOf(selection), now);
  printTroubles(reading.evidence.troubles);
  const std::vector<Run> runs = runsIn(reading.runs, selection.period);
  if (runs.empty()) {
    sayNoRuns(reading.directory, selection.period);
  }
  const Checked checked = checkRuns(runs, reading.runs, limits, now, styleOfStandardOutput());
  print(checked.text);
  return static_cast<int>(checked.verdict);
}

int exportRuns(const Selection& selection, const ExportRequest& request, EpochSeconds now) {
  if (request.format == "sqlite" && !request.output) {
    throw UsageError("a database goes to a file: say --output FILE");
  }
  Reading reading = readEnded(placeOf(selection), now);
  printTroubles(reading.evidence.troubles);
  const std::vector<Run> runs = runsIn(std::move(reading.runs), selection.period);
  if (runs.empty()) {
    return sayNoRuns(reading.directory, selection.period);
  }
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

int report(const Selection& selection, const ReportRequest& request, EpochSeconds now) {
  std::vector<Station> stations;
  int status = kDone;
  for (const Place& place : placesOf(selection)) {
    if (auto station = readStation(place, selection, request, now)) {
      stations.push_back(std::move(*station));
    } else {
      status = kNothingToRead;
    }
  }
  if (stations.empty()) {
    return status;
  }
  Output output(request.output);
  output.write(reportPage(std::move(stations), now));
  output.finish();
  print(std::filesystem::absolute(request.output).string() + "\n");
  if (request.isToOpen) {
    openInBrowser(request.output);
  }
  return status;
}

}  // namespace watch
