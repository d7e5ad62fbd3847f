#include "evidence/evidence.h"

#include "evidence/file_order.h"
#include "evidence/journal_reader.h"
#include "evidence/run_lock.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace watch {

namespace {

constexpr int kMostReadings = 5;

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
  std::optional<LocalTime> stamp;
  std::vector<Line> lines;
};

template <class Line>
class HistoryReader {
 public:
  HistoryReader(const LogDirectory& directory, const Format<Line>& format, Evidence& evidence)
      : directory_(directory), format_(format), evidence_(evidence) {}

  Lines<Line> read(const History& history, const std::vector<Archived>& archived) {
    // The live file first: when it moves to the archive meanwhile, the archive has changed.
    std::optional<Part<Line>> live = readPart({history.live, std::nullopt});
    std::vector<Part<Line>> parts;
    parts.reserve(archived.size());
    for (const Archived& file : archived) {
      if (std::optional<Part<Line>> part = readPart(file)) {
        parts.push_back(std::move(*part));
      }
    }
    std::vector<Part<Line>*> written = inOrder(parts);
    if (live) {
      written.push_back(&*live);
    }
    return join(written);
  }

 private:
  std::vector<Part<Line>*> inOrder(std::vector<Part<Line>>& parts) const {
    std::vector<FileTimes> times;
    times.reserve(parts.size());
    for (const Part<Line>& part : parts) {
      times.push_back(timesOf(part));
    }
    std::vector<Part<Line>*> ordered;
    ordered.reserve(parts.size() + 1);
    for (const std::size_t place : orderOfWriting(times)) {
      ordered.push_back(&parts[place]);
    }
    return ordered;
  }

  FileTimes timesOf(const Part<Line>& part) const {
    std::vector<std::int64_t> times;
    times.reserve(part.lines.size());
    for (const Line& line : part.lines) {
      if (const auto time = format_.time(line)) {
        times.push_back(*time);
      }
    }
    return timesOfFile(std::move(times),
                       part.stamp ? std::optional(format_.timeOfStamp(*part.stamp)) : std::nullopt);
  }

  std::optional<std::int64_t> firstTime(const Part<Line>& part) const {
    for (const Line& line : part.lines) {
      if (const auto time = format_.time(line)) {
        return time;
      }
    }
    return std::nullopt;
  }

  /// Leaves out what another file holds, too: a copy, or the part of one that is left of a move to
  /// another file system that was killed.
  Lines<Line> join(const std::vector<Part<Line>*>& parts) {
    Lines<Line> lines;
    const Part<Line>* last = nullptr;
    for (std::size_t i = 0; i < parts.size(); ++i) {
      Part<Line>& part = *parts[i];
      if (last != nullptr && isBegin(part, *last)) {
        leaveOut(part, *last);
      } else if (i + 1 < parts.size() && isBegin(part, *parts[i + 1])) {
        leaveOut(part, *parts[i + 1]);
      } else {
        append(lines, part);
        last = &part;
      }
    }
    lines.lacksFiles = lacksFiles_;
    return lines;
  }

  /// Without a time, ten runs that failed look like any other ten.
  bool isBegin(const Part<Line>& part, const Part<Line>& whole) const {
    const auto first = firstTime(part);
    if (!first || first != firstTime(whole)) {
      return false;
    }
    Troubles saidBefore;
    const std::string text = directory_.read(part.name, saidBefore).value_or("");
    return directory_.read(whole.name, saidBefore).value_or("").starts_with(text);
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

  std::optional<Part<Line>> readPart(const Archived& from) {
    const std::size_t troublesBefore = evidence_.troubles.size();
    const std::optional<std::string> text = directory_.read(from.name, evidence_.troubles);
    lacksFiles_ = lacksFiles_ || evidence_.troubles.size() > troublesBefore;
    if (!text) {
      return std::nullopt;
    }
    const auto file = static_cast<std::uint32_t>(evidence_.files.size());
    evidence_.files.push_back(from.name);
    Part<Line> part{from.name, from.stamp, {}};
    part.lines.reserve(kFullHistoryLines);
    eachLine(*text, [&](std::string_view line, std::uint32_t number) {
      readLine(line, {file, number, number}, part.lines);
    });
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

  const LogDirectory& directory_;
  const Format<Line>& format_;
  Evidence& evidence_;
  bool lacksFiles_ = false;
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
  std::optional<std::size_t> count;
  if (since) {
    count = evidence.pings.all.size() + evidence.results.all.size();
    readLastOutputs(directory, *count, evidence);
  } else {
    readOutputs(directory, evidence);
  }
  evidence.journal = readJournal(directory, count, evidence.files, evidence.troubles);
  evidence.forwardReport = readReport(directory, kForwardFiles.report, evidence.troubles);
  evidence.reverseReport = readReport(directory, kReverseFiles.report, evidence.troubles);
  return evidence;
}

Evidence readUntilStable(const LogDirectory& directory, std::optional<LocalTime> since) {
  const auto begin = std::filesystem::file_time_type::clock::now();
  // Before its lines: one that ends meanwhile may have more of them.
  const auto endedRun = beginOfEndedRun(directory);
  Troubles troubles;
  Listing listing = directory.list(since, troubles);
  for (int reading = 1;; ++reading) {
    Evidence evidence = readOnce(directory, listing, since);
    evidence.endedRun = endedRun;
    evidence.troubles.insert(evidence.troubles.end(), troubles.begin(), troubles.end());
    if (directory.archiveRestsSince(begin)) {
      return evidence;
    }
    troubles.clear();
    Listing now = directory.list(since, troubles);
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
  return readUntilStable(directory, since);
}

}  // namespace watch
