#include "watch/support/log_lines.h"

#include "runs/join.h"

#include <fmt/format.h>

namespace {

using namespace watch;

enum File : std::uint32_t { kPings, kOutputs, kForward, kReverse, kResults, kJournal };

template <class Line>
void add(Lines<Line>& lines, File file, Line line) {
  const auto number = static_cast<std::uint32_t>(lines.all.size() + 1);
  line.from = {file, number, number};
  lines.all.push_back(std::move(line));
}

Iperf3Line test(EpochSeconds start, double bps) {
  constexpr double kBitsPerByte = 8;
  Iperf3Line line;
  line.start = start;
  line.client = "192.0.2.20";
  line.server = "192.0.2.10";
  line.clientPort = static_cast<std::uint16_t>(start);
  line.serverPort = 5201;
  line.duration = 10;
  line.bytes = static_cast<std::uint64_t>(bps * *line.duration / kBitsPerByte);
  line.bps = bps;
  return line;
}

std::optional<std::uint64_t> shown(double bps, std::uint64_t unitBps) {
  return bps < 0 ? std::nullopt : std::optional(static_cast<std::uint64_t>(bps) / unitBps);
}

void addPlaces(const char* kind, const std::vector<Source>& sources, std::string& text) {
  for (const Source& from : sources) {
    for (std::uint32_t line = from.first; line <= from.last && from.isThere(); ++line) {
      text += fmt::format("{}{} {}", text.empty() ? "" : ", ", kind, line);
    }
  }
}

}  // namespace

LogLines::LogLines() {
  evidence.files = {"ping_history.log", "ping_history_verbose.log",
                    "iperf3_history_forward_csv.log", "iperf3_history_reverse_csv.log",
                    "connection_test_results_history.log"};
}

LogLines& LogLines::ping(EpochSeconds at, double avg) {
  return pingLine(at, avg).output(avg);
}

LogLines& LogLines::pingLine(EpochSeconds at, double avg) {
  PingLine line;
  line.start = localTime(at);
  line.min = line.avg = line.max = avg;
  line.stddev = 0;
  add(evidence.pings, kPings, line);
  return *this;
}

LogLines& LogLines::output(double avg) {
  constexpr std::uint32_t kPackets = 10;
  PingOutput output;
  output.target = "192.0.2.10";
  output.sent = output.received = kPackets;
  output.summary = PingSummary{avg, avg, avg, 0};
  output.summaryIsRead = output.summaryIsWhole = true;
  output.replies.assign(kPackets, avg);
  const auto number = static_cast<std::uint32_t>(evidence.outputs.size() + 1);
  output.from = {kOutputs, number, number};
  evidence.outputs.push_back(output);
  evidence.keepsOutputs = true;
  return *this;
}

LogLines& LogLines::silentOutput() {
  output(0);
  PingOutput& output = evidence.outputs.back();
  output.summary.reset();
  output.summaryIsRead = output.summaryIsWhole = false;
  output.received = 0;
  output.replies.clear();
  return *this;
}

LogLines& LogLines::forward(EpochSeconds at, double bps) {
  add(evidence.forward, kForward, test(at + 9, bps));
  return *this;
}

LogLines& LogLines::reverse(EpochSeconds at, double bps) {
  add(evidence.reverse, kReverse, test(at + 30, bps));
  return *this;
}

LogLines& LogLines::failedForward() {
  add(evidence.forward, kForward, Iperf3Line());
  return *this;
}

LogLines& LogLines::failedReverse() {
  add(evidence.reverse, kReverse, Iperf3Line());
  return *this;
}

LogLines& LogLines::result(EpochSeconds at, double avg, double write, double read) {
  resultWithoutPing(write, read);
  ResultLine& line = evidence.results.all.back();
  line.date = localTime(at + 9);
  line.latencyMs = static_cast<std::uint32_t>(avg);
  return *this;
}

LogLines& LogLines::resultWithoutPing(double write, double read) {
  ResultLine line;
  line.write = shown(write, unitBps_);
  line.read = shown(read, unitBps_);
  line.unitBps = unitBps_;
  add(evidence.results, kResults, line);
  return *this;
}

LogLines& LogLines::run(EpochSeconds at, double avg, double write, double read) {
  return ping(at, avg).forward(at, write).reverse(at, read).result(at, avg, write, read);
}

JournalLine& LogLines::journal(EpochSeconds at) {
  const auto number = static_cast<std::uint32_t>(evidence.journal.size() + 1);
  JournalLine& line = evidence.journal.emplace_back();
  line.start = at;
  line.end = at + 51;
  line.ended = "finished";
  line.address = "192.0.2.10";
  line.settings = Configuration{};
  line.from = {kJournal, number, number};
  return line;
}

LogLines& LogLines::unit(std::uint64_t bps) {
  unitBps_ = bps;
  return *this;
}

std::vector<std::string> joined(const Evidence& evidence) {
  std::vector<std::string> texts;
  for (const Run& run : joinRuns(evidence)) {
    std::string text;
    addPlaces("ping", run.pings, text);
    addPlaces("output", run.outputs, text);
    addPlaces("forward", {run.forward}, text);
    addPlaces("reverse", {run.reverse}, text);
    addPlaces("result", {run.result}, text);
    addPlaces("journal", {run.journal}, text);
    texts.push_back(run.unsure.empty() ? text : text + " [" + run.unsure + "]");
  }
  return texts;
}
