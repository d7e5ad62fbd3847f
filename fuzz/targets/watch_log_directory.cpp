// A whole log directory, joined to runs. Form feeds part the input: the five histories, the two
// latest reports, and archived files of each history in turn.
#include "evidence/evidence.h"
#include "promise.h"
#include "runs/join.h"
#include "support/files.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <map>
#include <utility>

namespace {

constexpr char kDirectory[] = "/tmp/fuzz/";
constexpr char kSeparator = '\f';

std::string nameOf(std::size_t part) {
  const char* const live[] = {kPingHistory.live,
                              kForwardFiles.history.live,
                              kReverseFiles.history.live,
                              kResultHistory.live,
                              kPingVerbose,
                              kForwardFiles.report,
                              kReverseFiles.report};
  if (part < std::size(live)) {
    return live[part];
  }
  const char* const archived[] = {kPingHistory.archived, kForwardFiles.history.archived,
                                  kReverseFiles.history.archived, kResultHistory.archived};
  const std::size_t place = part - std::size(live);
  return fmt::format("archive/{}_20261025T02{:02}00.log", archived[place % std::size(archived)],
                     place / std::size(archived) % 60);
}

void writeParts(const std::string& input) {
  std::filesystem::remove_all(kDirectory);
  std::filesystem::create_directories(std::string(kDirectory) + "archive");
  std::size_t begin = 0;
  for (std::size_t part = 0; begin <= input.size(); ++part) {
    const std::size_t end = std::min(input.find(kSeparator, begin), input.size());
    if (end > begin) {
      writeFile(kDirectory + nameOf(part), input.substr(begin, end - begin));
    }
    begin = end + 1;
  }
}

/// How often each line of each file was read.
class LineCounts {
 public:
  void add(const watch::Source& source, int times) {
    for (std::uint32_t line = source.first; source.isThere() && line <= source.last; ++line) {
      counts_[{source.file, line}] += times;
    }
  }
  template <class Things>
  void addAll(const Things& things, int times) {
    for (const auto& thing : things) {
      if constexpr (requires { thing.from; }) {
        add(thing.from, times);
      } else {
        add(thing, times);
      }
    }
  }
  void requireNone() const {
    for (const auto& [line, count] : counts_) {
      require(count >= 0, "no line is in two runs");
      require(count <= 0, "each line is in a run");
    }
  }

 private:
  std::map<std::pair<std::uint32_t, std::uint32_t>, int> counts_;
};

}  // namespace

void readInput(const std::string& input) {
  writeParts(input);
  const watch::Evidence evidence = watch::readEvidence(watch::LogDirectory(kDirectory));
  LineCounts lines;
  lines.addAll(evidence.pings.all, 1);
  lines.addAll(evidence.forward.all, 1);
  lines.addAll(evidence.reverse.all, 1);
  lines.addAll(evidence.results.all, 1);
  lines.addAll(evidence.outputs, 1);
  for (const watch::Run& run : watch::joinRuns(evidence)) {
    lines.add(run.result, -1);
    lines.add(run.forward, -1);
    lines.add(run.reverse, -1);
    lines.addAll(run.pings, -1);
    lines.addAll(run.outputs, -1);
  }
  lines.requireNone();
}
