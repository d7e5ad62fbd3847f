#include "evidence/evidence.h"

#include "evidence/file_order.h"
#include "evidence/journal_reader.h"
#include "evidence/run_lock.h"

#include <algorithm>
#include <future>
#include <span>
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

/// A file of a history. Its lines have these places among all that were read.
struct Part {
  const Archived* file;
  std::size_t first;
  std::size_t end;
};

/// Reads a history. Several can do so beside each other.
template <class Line>
class HistoryReader {
 public:
  /// Adds the names of the files to `names`. Takes the live file at once, before the archived ones
  /// are read: when it moves there meanwhile, the archive has changed.
  HistoryReader(const LogDirectory& directory, const Format<Line>& format, const History& history,
                const std::vector<Archived>& archived, std::vector<std::string>& names)
      : files_(directory),
        format_(format),
        live_{history.live, std::nullopt},
        archived_(archived),
        firstName_(static_cast<std::uint32_t>(names.size())),
        liveText_(directory.read(live_.name, troubles_)),
        lacksFiles_(!troubles_.empty()) {
    for (const Archived& file : archived) {
      names.push_back(file.name);
    }
    if (liveText_) {
      names.push_back(live_.name);
    }
  }

  /// Returns the lines of all files in the order in which they were written.
  Lines<Line> read() {
    lines_.reserve((archived_.size() + 1) * kFullHistoryLines);
    std::vector<Part> parts;
    parts.reserve(archived_.size() + 1);
    std::uint32_t name = firstName_;
    for (const Archived& file : archived_) {
      if (const auto text = files_.read(file, troubles_)) {
        parts.push_back(readPart(file, *text, name));
      } else {
        lacksFiles_ = true;
      }
      ++name;
    }
    parts = inOrder(parts);
    if (liveText_) {
      parts.push_back(readPart(live_, *liveText_, name));
    }
    return join(withoutCopies(parts));
  }

  const Troubles& troubles() const { return troubles_; }

 private:
  std::span<Line> linesOf(const Part& part) {
    return std::span(lines_).subspan(part.first, part.end - part.first);
  }

  std::vector<Part> inOrder(const std::vector<Part>& parts) {
    std::vector<FileTimes> times;
    times.reserve(parts.size());
    for (const Part& part : parts) {
      times.push_back(timesOf(part));
    }
    std::vector<Part> ordered;
    ordered.reserve(parts.size() + 1);
    for (const std::size_t place : orderOfWriting(times)) {
      ordered.push_back(parts[place]);
    }
    return ordered;
  }

  FileTimes timesOf(const Part& part) {
    std::vector<std::int64_t> times;
    times.reserve(part.end - part.first);
    for (const Line& line : linesOf(part)) {
      if (const auto time = format_.time(line)) {
        times.push_back(*time);
      }
    }
    const std::optional<LocalTime> stamp = part.file->stamp;
    return timesOfFile(std::move(times),
                       stamp ? std::optional(format_.timeOfStamp(*stamp)) : std::nullopt);
  }

  std::optional<std::int64_t> firstTime(const Part& part) {
    for (const Line& line : linesOf(part)) {
      if (const auto time = format_.time(line)) {
        return time;
      }
    }
    return std::nullopt;
  }

  /// Leaves out what another file holds, too: a copy, or the part of one that is left of a move to
  /// another file system that was killed.
  std::vector<Part> withoutCopies(const std::vector<Part>& parts) {
    std::vector<Part> kept;
    kept.reserve(parts.size());
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (!kept.empty() && isBegin(parts[i], kept.back())) {
        leaveOut(parts[i], kept.back());
      } else if (i + 1 < parts.size() && isBegin(parts[i], parts[i + 1])) {
        leaveOut(parts[i], parts[i + 1]);
      } else {
        kept.push_back(parts[i]);
      }
    }
    return kept;
  }

  /// Without a time, ten runs that failed look like any other ten.
  bool isBegin(const Part& part, const Part& whole) {
    const auto first = firstTime(part);
    if (!first || first != firstTime(whole)) {
      return false;
    }
    Troubles saidBefore;
    const std::string text(files_.read(*part.file, saidBefore).value_or(""));
    return files_.read(*whole.file, saidBefore).value_or("").starts_with(text);
  }

  void leaveOut(const Part& part, const Part& whole) {
    troubles_.push_back({part.file->name, 0, "all that it holds is in " + whole.file->name});
  }

  Lines<Line> join(const std::vector<Part>& parts) {
    Lines<Line> lines;
    std::size_t count = 0;
    bool areAsRead = true;
    for (const Part& part : parts) {
      areAsRead = areAsRead && part.first == count;
      count += part.end - part.first;
      if (part.file->stamp && part.first != part.end) {
        lines.filled.push_back({count - 1, *part.file->stamp});
      }
    }
    lines.lacksFiles = lacksFiles_;
    lines.all = areAsRead && count == lines_.size() ? std::move(lines_) : copies(parts);
    return lines;
  }

  std::vector<Line> copies(const std::vector<Part>& parts) {
    std::vector<Line> lines;
    lines.reserve(lines_.size());
    for (const Part& part : parts) {
      lines.insert(lines.end(), linesOf(part).begin(), linesOf(part).end());
    }
    return lines;
  }

  Part readPart(const Archived& file, std::string_view text, std::uint32_t name) {
    Part part = {&file, lines_.size(), 0};
    eachLine(text, [&](std::string_view line, std::uint32_t number) {
      readLine(line, {name, number, number}, file.name);
    });
    part.end = lines_.size();
    return part;
  }

  /// A line that followed on a cut one, or on one without a newline, is read all the same.
  void readLine(std::string_view text, Source from, const std::string& name) {
    const std::size_t linesBefore = lines_.size();
    while (!text.empty()) {
      std::optional<Line> line = format_.parse(text);
      const std::size_t begin = line ? 0 : format_.findLast(text);
      if (!line && begin != std::string_view::npos) {
        line = format_.parse(text.substr(begin));
      }
      if (!line) {
        troubles_.push_back({name, from.first,
                             lines_.size() == linesBefore ? "it is no line of this history"
                                                          : "it begins with a line that was cut"});
        break;
      }
      line->from = from;
      lines_.push_back(std::move(*line));
      text = text.substr(0, begin);
    }
    std::reverse(lines_.begin() + static_cast<std::ptrdiff_t>(linesBefore), lines_.end());
  }

  FileReader files_;
  const Format<Line>& format_;
  const Archived live_;
  const std::vector<Archived>& archived_;
  /// The place of the first archived file among the names of all.
  const std::uint32_t firstName_;
  Troubles troubles_;
  std::optional<std::string> liveText_;
  bool lacksFiles_;
  std::vector<Line> lines_;
};

/// Says that the log of outputs was there, as the last of the files up to now.
void keepOutputs(Evidence& evidence) {
  evidence.keepsOutputs = true;
  evidence.files.emplace_back(kPingVerbose);
}

Troubles readOutputs(const LogDirectory& directory, Evidence& evidence) {
  Troubles troubles;
  PingOutputReader reader(evidence.outputs);
  const auto file = static_cast<std::uint32_t>(evidence.files.size());
  if (directory.readLines(kPingVerbose, troubles, [&](std::string_view line, std::uint32_t number) {
        reader.take(line, file, number);
      })) {
    keepOutputs(evidence);
    if (reader.linesBefore() > 0) {
      troubles.push_back({kPingVerbose, 1, "the output that it belongs to has no beginning"});
    }
  }
  return troubles;
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

void add(const Troubles& troubles, Evidence& evidence) {
  evidence.troubles.insert(evidence.troubles.end(), troubles.begin(), troubles.end());
}

/// Reads the histories and the log of outputs, beside each other when it is all of them: for a few
/// files, threads would take longer.
void readLogs(const LogDirectory& directory, const Listing& listing, std::optional<LocalTime> since,
              Evidence& evidence) {
  const auto readerOf = [&](std::size_t kind, const auto& format) {
    return HistoryReader(directory, format, kHistories[kind], listing.of[kind], evidence.files);
  };
  HistoryReader results = readerOf(0, kResultFormat);
  HistoryReader reverse = readerOf(1, kReverseFormat);
  HistoryReader forward = readerOf(2, kForwardFormat);
  HistoryReader pings = readerOf(3, kPingFormat);
  const auto how = since ? std::launch::deferred : std::launch::async | std::launch::deferred;
  auto resultLines = std::async(how, [&] { return results.read(); });
  auto reverseLines = std::async(how, [&] { return reverse.read(); });
  auto forwardLines = std::async(how, [&] { return forward.read(); });
  auto pingLines = std::async(how, [&] { return pings.read(); });
  const Troubles ofOutputs = since ? Troubles() : readOutputs(directory, evidence);
  evidence.results = resultLines.get();
  evidence.reverse = reverseLines.get();
  evidence.forward = forwardLines.get();
  evidence.pings = pingLines.get();
  for (const Troubles& troubles :
       {results.troubles(), reverse.troubles(), forward.troubles(), pings.troubles(), ofOutputs}) {
    add(troubles, evidence);
  }
}

Evidence readOnce(const LogDirectory& directory, const Listing& listing,
                  std::optional<LocalTime> since) {
  Evidence evidence;
  readLogs(directory, listing, since, evidence);
  std::optional<std::size_t> count;
  if (since) {
    count = evidence.pings.all.size() + evidence.results.all.size();
    readLastOutputs(directory, *count, evidence);
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
    add(troubles, evidence);
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
