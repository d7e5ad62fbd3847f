#include "runs/journal.h"

#include "runs/times.h"

#include <algorithm>
#include <cstdlib>

namespace watch {

namespace {

std::optional<RunKey> keyOf(const Iperf3Line& line) {
  return keyOfTest(line.start, line.clientPort, line.serverPort);
}

std::optional<ResultLine> resultOf(const JournalLine& line) {
  return parseResultLine(line.result);
}

std::optional<RunKey> keyOf(const std::optional<ResultLine>& line) {
  return line && line->date ? std::optional(RunKey(line->date->seconds, 0)) : std::nullopt;
}

}  // namespace

JournalKeys::JournalKeys(const std::vector<JournalLine>& journal) {
  for (std::size_t i = 0; i < journal.size(); ++i) {
    const RunKeys keys = keysOf(journal[i]);
    add(pings_, keys.ping, i);
    add(forward_, keys.write, i);
    add(reverse_, keys.read, i);
    add(results_, keyOf(resultOf(journal[i])), i);
  }
}

void JournalKeys::add(PlaceByKey& places, const std::optional<RunKey>& key, std::size_t place) {
  if (key && !places.try_emplace(*key, place).second) {
    places[*key] = kAlone;
  }
}

std::size_t JournalKeys::find(const PlaceByKey& places, const std::optional<RunKey>& key) {
  const auto found = key ? places.find(*key) : places.end();
  return found == places.end() ? kAlone : found->second;
}

std::size_t JournalKeys::ofPing(LocalTime start) const {
  return find(pings_, RunKey(start.seconds, 0));
}
std::size_t JournalKeys::ofForward(const Iperf3Line& line) const {
  return find(forward_, keyOf(line));
}
std::size_t JournalKeys::ofReverse(const Iperf3Line& line) const {
  return find(reverse_, keyOf(line));
}
std::size_t JournalKeys::ofResult(const ResultLine& line) const {
  return find(results_, keyOf(std::optional(line)));
}

namespace {

/// Lines of the journal beside runs that have none, both in their order.
class JournalPlacer {
 public:
  JournalPlacer(const Evidence& evidence, std::vector<RunLines>& runs)
      : evidence_(evidence), runs_(runs), times_(timesOfRuns(evidence, runs)) {
    findOpenRuns();
    findOpenLines();
  }

  void place() {
    if (lines_.empty()) {
      return;
    }
    const std::vector<Row<2>> rows =
        align(Costs<2>{{open_.size(), lines_.size()},
                       [&](Members members, const Places<2>& at) { return costOf(members, at); },
                       [](const Places<2>& from, const Places<2>& end) {
                         const auto runs = static_cast<int>(end[0] - from[0]);
                         const auto lines = static_cast<int>(end[1] - from[1]);
                         return kAloneCost * std::abs(runs - lines);
                       },
                       [](const Places<2>&) { return std::nullopt; }});
    deal(rows);
  }

 private:
  static constexpr Members kBoth = 3;
  static constexpr int kAloneCost = 10;

  /// A line that leads to no run, and the first run that did not begin before it.
  struct OpenLine {
    std::size_t line;
    std::size_t before;
  };
  /// A run without a line, whose place alone is known: before that run with a time.
  struct OpenRun {
    std::size_t run;
    std::size_t before;
  };

  void findOpenRuns() {
    std::size_t before = runs_.size();
    for (std::size_t i = runs_.size(); i-- > 0;) {
      if (isTimed(i)) {
        before = i;
      } else if (runs_[i].journal == kAlone) {
        open_.push_back({i, before});
      }
    }
    std::ranges::reverse(open_);
  }

  bool isTimed(std::size_t run) const {
    return times_[run].start && times_[run].source != TimeSource::archiveStamp;
  }

  void findOpenLines() {
    std::vector<bool> isPlaced(evidence_.journal.size());
    for (const RunLines& run : runs_) {
      if (run.journal != kAlone) {
        isPlaced[run.journal] = true;
      }
    }
    std::size_t before = 0;
    for (std::size_t line = 0; line < isPlaced.size(); ++line) {
      const auto& start = evidence_.journal[line].start;
      if (isPlaced[line] || !start) {
        continue;
      }
      // A run that left nothing else was short: one of the same second came behind it.
      while (before < runs_.size() && (!isTimed(before) || *times_[before].start < *start)) {
        ++before;
      }
      lines_.push_back({line, before});
    }
  }

  int costOf(Members members, const Places<2>& at) const {
    if (members != kBoth) {
      return kAloneCost;
    }
    return open_[at[0]].before == lines_[at[1]].before &&
                   tellsSame(runs_[open_[at[0]].run], evidence_.journal[lines_[at[1]].line])
               ? 0
               : kImpossible;
  }

  bool tellsSame(const RunLines& run, const JournalLine& line) const {
    const auto told = resultOf(line);
    if (run.result == kAlone || !told) {
      return run.result == kAlone && !told;
    }
    const ResultLine& result = evidence_.results.all[run.result];
    return result.date == told->date && result.write == told->write && result.read == told->read;
  }

  void deal(const std::vector<Row<2>>& rows) {
    std::vector<std::pair<std::size_t, RunLines>> alone;
    std::size_t next = runs_.size();
    // Backwards, so that a line without a run finds the run behind it.
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
      const auto [open, place] = row->places;
      next = open == kAlone ? next : open_[open].run;
      if (place != kAlone) {
        const OpenLine& line = lines_[place];
        RunLines& run = open == kAlone
                            ? alone.emplace_back(std::min(next, line.before), RunLines()).second
                            : runs_[next];
        run.journal = line.line;
        run.journalDoubtful = row->doubtful != 0;
      }
    }
    insert(alone);
  }

  /// Each before the run at its place. `alone` is in backward order.
  void insert(const std::vector<std::pair<std::size_t, RunLines>>& alone) {
    std::vector<RunLines> all;
    all.reserve(runs_.size() + alone.size());
    auto next = alone.rbegin();
    for (std::size_t i = 0; i <= runs_.size(); ++i) {
      for (; next != alone.rend() && next->first == i; ++next) {
        all.push_back(next->second);
      }
      if (i < runs_.size()) {
        all.push_back(runs_[i]);
      }
    }
    runs_ = std::move(all);
  }

  const Evidence& evidence_;
  std::vector<RunLines>& runs_;
  std::vector<RunTime> times_;
  std::vector<OpenRun> open_;
  std::vector<OpenLine> lines_;
};

}  // namespace

void placeJournal(const Evidence& evidence, std::vector<RunLines>& runs) {
  if (!evidence.journal.empty()) {
    JournalPlacer(evidence, runs).place();
  }
}

}  // namespace watch
