#include "journal/latest_reports.h"

#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace watch {

namespace {

std::string textOf(const LogDirectory& directory, const char* name) {
  Troubles ignored;
  return directory.read(name, ignored).value_or("");
}

std::optional<JournalTest> testOf(const std::string& text) {
  const auto report = parseIperf3Report(text);
  return report ? std::optional(JournalTest{*report, ""}) : std::nullopt;
}

std::optional<JournalPing> pingOf(const std::string& text) {
  JournalPing ping;
  std::vector<PingOutput> outputs;
  PingOutputReader reader(outputs);
  eachLine(text, [&](std::string_view line, std::uint32_t number) {
    reader.take(line, kNoFile, number);
    if (isPingSummary(line)) {
      ping.summary = line;
    }
  });
  if (outputs.empty()) {
    return std::nullopt;
  }
  ping.output = std::move(outputs.back());
  return ping;
}

/// Returns the last line of `text`.
std::string lastLineOf(const std::string& text) {
  std::string last;
  eachLine(text, [&](std::string_view line, std::uint32_t) { last = line; });
  return last;
}

}  // namespace

LatestTimes timesOfLatest(const LogDirectory& directory) {
  LatestTimes times;
  for (std::size_t i = 0; i < times.size(); ++i) {
    std::error_code missing;
    const auto time = std::filesystem::last_write_time(directory.path() / kLatestFiles[i], missing);
    times[i] = missing ? std::nullopt : std::optional(time);
  }
  return times;
}

JournalLine readLatestReports(const LogDirectory& directory, const LatestOfRun& isOfRun) {
  std::array<std::string, std::size(kLatestFiles)> texts;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    texts[i] = isOfRun[i] ? textOf(directory, kLatestFiles[i]) : "";
  }
  const auto& [ping, forward, reverse, result] = texts;
  JournalLine line;
  line.ping = pingOf(ping);
  line.write = testOf(forward);
  line.read = testOf(reverse);
  line.result = lastLineOf(result);
  return line;
}

}  // namespace watch
