#include "evidence/evidence.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

namespace watch {

namespace {

constexpr int kMostReadings = 5;
/// Before all times, and far enough from the limits to be subtracted.
constexpr std::int64_t kBeforeAll = std::numeric_limits<std::int64_t>::min() / 4;
/// How far before `since` the histories are read, so that the first run of interest has neighbours.
constexpr std::int64_t kMarginSeconds = std::int64_t{12} * 60 * 60;

/// How the lines of a history are read and put into order.
template <class Line>
struct Format {
  std::optional<Line> (*parse)(std::string_view);
  /// Where the last line begins that may have followed on a cut one, or npos.
  std::size_t (*findLast)(std::string_view);
  /// When a line was written, in seconds that compare with each other.
  std::optional<std::int64_t> (*time)(const Line&);
  std::int64_t (*timeOfStamp)(LocalTime);
};

std::int64_t localSeconds(LocalTime stamp) {
  return stamp.seconds;
}
std::int64_t epochSeconds(LocalTime stamp) {
  return moments(stamp).first;
}
std::optional<std::int64_t> pingTime(const PingLine& line) {
  return line.start.seconds;
}
std::optional<std::int64_t> testTime(const Iperf3Line& line) {
  return line.start;
}
std::optional<std::int64_t> resultTime(const ResultLine& line) {
  return line.date ? std::optional(line.date->seconds) : std::nullopt;
}

constexpr Format<PingLine> kPingFormat = {parsePingLine, lastPingLine, pingTime, localSeconds};
constexpr Format<Iperf3Line> kForwardFormat = {parseForwardLine, lastIperf3Line, testTime,
                                               epochSeconds};
constexpr Format<Iperf3Line> kReverseFormat = {parseReverseLine, lastIperf3Line, testTime,
                                               epochSeconds};
constexpr Format<ResultLine> kResultFormat = {parseResultLine, lastResultLine, resultTime,
                                              localSeconds};

/// The lines of one file of a history.
template <class Line>
struct Part {
  std::string name;
  std::string text;
  std::vector<Line> lines;
  std::optional<LocalTime> stamp;
  /// A line tells when it was written.
  bool isTimed = false;
  /// Where it stands among the others by the times of its lines, and the first and the last of these.
  std::int64_t time = 0;
  std::int64_t first = 0;
  std::int64_t last = 0;
  /// The clock was set back while it was filled.
  bool goesBack = false;
};

/// Finds a better place for each part whose times are no guide to it, since the clock was set back,
/// as it is at the end of summer time: where they go on from those before, and those behind go on
/// from them.
template <class Line>
class OrderMender {
 public:
  explicit OrderMender(std::vector<Part<Line>>& parts)
      : parts_(parts), longest_(kUsualPauses * usualPause()) {}

  void mend() {
    constexpr int kMostRounds = 10;
    int rounds = 0;
    while (moveAll() && ++rounds < kMostRounds) {
      // Each move can make room for another one.
    }
  }

 private:
  static constexpr std::int64_t kUsualPauses = 4;

  /// The median of the times from the end of a part to the start of the next.
  std::int64_t usualPause() const {
    std::vector<std::int64_t> pauses = {0};
    for (std::size_t i = 1; i < parts_.size(); ++i) {
      if (parts_[i].first > parts_[i - 1].last) {
        pauses.push_back(parts_[i].first - parts_[i - 1].last);
      }
    }
    const auto middle = pauses.begin() + static_cast<std::ptrdiff_t>(pauses.size() / 2);
    std::ranges::nth_element(pauses, middle);
    return *middle;
  }

  /// How long nothing was written between two. A long break is as any longer one, or as a clock
  /// that was set.
  std::int64_t pause(const Part<Line>* one, const Part<Line>* next) const {
    if (one == nullptr || next == nullptr) {
      return 0;
    }
    const std::int64_t seconds = next->first - one->last;
    return seconds >= 0 ? std::min(seconds, longest_) : longest_;
  }

  /// Moves each part that has a better place. Returns whether there was any.
  bool moveAll() {
    bool hasMoved = false;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      if (parts_[i].goesBack || (i > 0 && parts_[i].first < parts_[i - 1].last)) {
        const std::size_t place = betterPlace(i);
        move(i, place);
        hasMoved = hasMoved || place != i;
      }
    }
    return hasMoved;
  }

  const Part<Line>* at(std::size_t place) const {
    return place < parts_.size() ? &parts_[place] : nullptr;
  }

  /// By how much longer the pauses are with `part` between the two.
  std::int64_t cost(const Part<Line>* before, const Part<Line>& part,
                    const Part<Line>* behind) const {
    return pause(before, &part) + pause(&part, behind) - pause(before, behind);
  }

  /// Returns before which part the part `i` is best: the nearest such, or where it stands if no other
  /// place is better.
  std::size_t betterPlace(std::size_t i) const {
    const auto distance = [&](std::size_t place) { return place < i ? i - place : place - i; };
    std::size_t best = i;
    std::int64_t least = cost(at(i - 1), parts_[i], at(i + 1));
    for (std::size_t place = 0; place <= parts_.size(); ++place) {
      if (place == i || place == i + 1) {
        continue;
      }
      const std::int64_t here = cost(at(place - 1), parts_[i], at(place));
      if (here < least || (here == least && best != i && distance(place) < distance(best))) {
        least = here;
        best = place;
      }
    }
    return best;
  }

  void move(std::size_t from, std::size_t to) {
    const auto part = [&](std::size_t i) {
      return parts_.begin() + static_cast<std::ptrdiff_t>(i);
    };
    if (to < from) {
      std::rotate(part(to), part(from), part(from + 1));
    } else if (to > from) {
      std::rotate(part(from), part(from + 1), part(to));
    }
  }

  std::vector<Part<Line>>& parts_;
  const std::int64_t longest_;
};

template <class Line>
class HistoryReader {
 public:
  HistoryReader(const LogDirectory& directory, const Format<Line>& format, Evidence& evidence)
      : directory_(directory), format_(format), evidence_(evidence) {}

  Lines<Line> read(const History& history, const std::vector<Archived>& archived) {
    // The live file first: when it moves to the archive meanwhile, the archive has changed.
    std::optional<Part<Line>> live = readPart(history.live, std::nullopt);
    std::vector<Part<Line>> parts;
    parts.reserve(archived.size() + 1);
    for (const Archived& file : archived) {
      if (std::optional<Part<Line>> part = readPart(file.name, file.stamp)) {
        parts.push_back(std::move(*part));
      }
    }
    // Of two copies the second counts: that whose name tells more.
    std::ranges::stable_sort(parts, {}, [](const Part<Line>& part) {
      return std::pair(part.time, part.stamp.has_value());
    });
    OrderMender<Line>(parts).mend();
    if (live) {
      parts.push_back(std::move(*live));
    }
    return join(parts);
  }

 private:
  /// Leaves out what another file holds, too: a copy, or the part of one that is left of a move to
  /// another file system that was killed.
  Lines<Line> join(std::vector<Part<Line>>& parts) {
    Lines<Line> lines;
    const Part<Line>* last = nullptr;
    for (auto part = parts.begin(); part != parts.end(); ++part) {
      const auto next = part + 1;
      if (last != nullptr && isBegin(*part, *last)) {
        leaveOut(*part, *last);
      } else if (next != parts.end() && isBegin(*part, *next)) {
        leaveOut(*part, *next);
      } else {
        append(lines, *part);
        last = &*part;
      }
    }
    return lines;
  }

  /// Without a time, ten runs that failed look like any other ten.
  static bool isBegin(const Part<Line>& part, const Part<Line>& whole) {
    return part.isTimed && whole.text.starts_with(part.text);
  }

  void leaveOut(const Part<Line>& part, const Part<Line>& whole) {
    evidence_.troubles.push_back({part.name, 0, "all that it holds is in " + whole.name});
  }

  static void append(Lines<Line>& lines, Part<Line>& part) {
    lines.all.insert(lines.all.end(), std::make_move_iterator(part.lines.begin()),
                     std::make_move_iterator(part.lines.end()));
    if (part.stamp && !part.lines.empty()) {
      lines.filled.push_back({lines.all.size() - 1, *part.stamp});
    }
  }

  std::optional<Part<Line>> readPart(const std::string& name, std::optional<LocalTime> stamp) {
    std::optional<std::string> text = directory_.read(name, evidence_.troubles);
    if (!text) {
      return std::nullopt;
    }
    const auto file = static_cast<std::uint32_t>(evidence_.files.size());
    evidence_.files.push_back(name);
    Part<Line> part;
    part.name = name;
    part.text = std::move(*text);
    part.stamp = stamp;
    part.lines.reserve(kFullHistoryLines);
    eachLine(part.text, [&](std::string_view line, std::uint32_t number) {
      readLine(line, {file, number, number}, part.lines);
    });
    setTimes(part);
    return part;
  }

  /// A line that followed on a cut one, or on one without a newline, is read all the same.
  void readLine(std::string_view text, Source from, std::vector<Line>& lines) {
    const std::size_t linesBefore = lines.size();
    while (!text.empty()) {
      std::optional<Line> line = format_.parse(text);
      const std::size_t begin = line ? 0 : format_.findLast(text);
      if (!line && begin != std::string_view::npos) {
        line = format_.parse(text.substr(begin));
      }
      if (!line) {
        evidence_.troubles.push_back({evidence_.files[from.file], from.first,
                                      lines.size() == linesBefore
                                          ? "it is no line of this history"
                                          : "it begins with a line that was cut"});
        break;
      }
      line->from = from;
      lines.push_back(std::move(*line));
      text = text.substr(0, begin);
    }
    std::reverse(lines.begin() + static_cast<std::ptrdiff_t>(linesBefore), lines.end());
  }

  /// Without a time of a line, all are what the name tells; without that, the first of all.
  void setTimes(Part<Line>& part) const {
    std::vector<std::int64_t> times;
    times.reserve(part.lines.size() + 1);
    for (const Line& line : part.lines) {
      if (const auto time = format_.time(line)) {
        times.push_back(*time);
      }
    }
    part.isTimed = !times.empty();
    if (!part.isTimed) {
      times.push_back(part.stamp ? format_.timeOfStamp(*part.stamp) : kBeforeAll);
    }
    part.first = times.front();
    // The last line may have no time, but its run has named the file.
    part.last = part.stamp ? format_.timeOfStamp(*part.stamp) : times.back();
    constexpr std::int64_t kLongestRun = 300;
    part.goesBack = !std::ranges::is_sorted(times) || part.last + kLongestRun < times.back();
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::ranges::nth_element(times, middle);
    // Far apart, the latest is right: a clock without its battery starts in the past.
    constexpr std::int64_t kFarApart = 90 * 24 * 60 * 60;
    const auto [earliest, latest] = std::ranges::minmax(times);
    part.time = latest - earliest > kFarApart ? latest : *middle;
  }

  const LogDirectory& directory_;
  const Format<Line>& format_;
  Evidence& evidence_;
};

void readHistories(const LogDirectory& directory, const Listing& listing, Evidence& evidence) {
  evidence.results =
      HistoryReader(directory, kResultFormat, evidence).read(kHistories[0], listing.of[0]);
  evidence.reverse =
      HistoryReader(directory, kReverseFormat, evidence).read(kHistories[1], listing.of[1]);
  evidence.forward =
      HistoryReader(directory, kForwardFormat, evidence).read(kHistories[2], listing.of[2]);
  evidence.pings =
      HistoryReader(directory, kPingFormat, evidence).read(kHistories[3], listing.of[3]);
}

/// Says that the log of outputs was there, as the last of the files up to now.
void keepOutputs(Evidence& evidence) {
  evidence.keepsOutputs = true;
  evidence.files.emplace_back(kPingVerbose);
}

void readOutputs(const LogDirectory& directory, Evidence& evidence) {
  PingOutputReader reader(evidence.outputs);
  const auto file = static_cast<std::uint32_t>(evidence.files.size());
  if (directory.readLines(
          kPingVerbose, evidence.troubles,
          [&](std::string_view line, std::uint32_t number) { reader.take(line, file, number); })) {
    keepOutputs(evidence);
    if (reader.linesBefore() > 0) {
      evidence.troubles.push_back(
          {kPingVerbose, 1, "the output that it belongs to has no beginning"});
    }
  }
}

/// Reads at least `count` outputs from the end of their log, if there are so many.
void readLastOutputs(const LogDirectory& directory, std::size_t count, Evidence& evidence) {
  constexpr std::size_t kUsualBytes = 1024;
  const auto file = static_cast<std::uint32_t>(evidence.files.size());
  for (std::size_t bytes = (count + 1) * kUsualBytes;; bytes *= 4) {
    bool isWhole = false;
    const auto text = directory.readEnd(kPingVerbose, bytes, isWhole, evidence.troubles);
    if (!text) {
      return;
    }
    evidence.outputs.clear();
    PingOutputReader reader(evidence.outputs);
    eachLine(*text, [&](std::string_view line, std::uint32_t) { reader.take(line, file, 0); });
    if (isWhole || evidence.outputs.size() >= count) {
      keepOutputs(evidence);
      return;
    }
  }
}

std::optional<Iperf3Report> readReport(const LogDirectory& directory, const char* name,
                                       Troubles& troubles) {
  const auto text = directory.read(name, troubles);
  std::optional<Iperf3Report> report = text ? parseIperf3Report(*text) : std::nullopt;
  if (text && !text->empty() && !report) {
    troubles.push_back({name, 0, "it is no whole report"});
  }
  return report;
}

Evidence readOnce(const LogDirectory& directory, const Listing& listing,
                  std::optional<LocalTime> since) {
  Evidence evidence;
  readHistories(directory, listing, evidence);
  if (since) {
    readLastOutputs(directory, evidence.pings.all.size() + evidence.results.all.size(), evidence);
  } else {
    readOutputs(directory, evidence);
  }
  evidence.forwardReport = readReport(directory, kForwardFiles.report, evidence.troubles);
  evidence.reverseReport = readReport(directory, kReverseFiles.report, evidence.troubles);
  return evidence;
}

Evidence readUntilStable(const LogDirectory& directory, std::optional<LocalTime> since) {
  Troubles troubles;
  Listing listing = directory.list(since, troubles);
  for (int reading = 1;; ++reading) {
    Evidence evidence = readOnce(directory, listing, since);
    troubles.clear();
    Listing now = directory.list(since, troubles);
    evidence.troubles.insert(evidence.troubles.end(), troubles.begin(), troubles.end());
    if (now == listing) {
      return evidence;
    }
    if (reading == kMostReadings) {
      evidence.troubles.push_back({"archive/", 0, "it changed all the time while it was read"});
      return evidence;
    }
    listing = std::move(now);
  }
}

}  // namespace

Evidence readEvidence(const LogDirectory& directory) {
  return readUntilStable(directory, std::nullopt);
}

Evidence readEvidenceSince(const LogDirectory& directory, LocalTime since) {
  return readUntilStable(directory, LocalTime{since.seconds - kMarginSeconds});
}

}  // namespace watch
