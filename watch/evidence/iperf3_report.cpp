#include "evidence/iperf3_report.h"

#include "evidence/json.h"

namespace watch {

namespace {

double secondsWithoutAByte(const Json& intervals) {
  double seconds = 0;
  for (const Json& interval : intervals.elements()) {
    const Json sum = interval["sum"];
    if (sum["bytes"].number() == 0.0) {
      seconds += sum["seconds"].number().value_or(0);
    }
  }
  return seconds;
}

/// A receiver knows none, and reports none or zeros. The report has microseconds.
std::optional<LoadedRoundTrips> roundTripsOf(const Json& sender) {
  constexpr double kMicroseconds = 1000;
  const auto least = sender["min_rtt"].number();
  const auto mean = sender["mean_rtt"].number();
  const auto most = sender["max_rtt"].number();
  if (!least || !mean || !most || *most <= 0) {
    return std::nullopt;
  }
  return LoadedRoundTrips{*least / kMicroseconds, *mean / kMicroseconds, *most / kMicroseconds};
}

/// Of the end that it has not heard of, iperf3 reports 0.
std::optional<double> rateOf(const Json& sum) {
  const auto bps = sum["bits_per_second"].number();
  return bps > 0.0 ? bps : std::nullopt;
}

/// "iperf 3.12" has the release behind its blank.
std::string releaseOf(const std::string& version) {
  return version.substr(version.find(' ') + 1);
}

}  // namespace

bool Iperf3Report::wasStopped() const {
  constexpr double kOddEnd = 0.5;
  return !error.empty() || emptySeconds > kOddEnd;
}

std::optional<Iperf3Report> parseIperf3Report(std::string_view text) {
  rapidjson::Document document;
  const Json json = parseObject(text, document);
  if (!json.isThere()) {
    return std::nullopt;
  }
  const Json start = json["start"];
  const Json connection = start["connected"].first();
  const Json sent = json["end"]["sum_sent"];
  const Json received = json["end"]["sum_received"];
  const bool isReverse = start["test_start"]["reverse"].integer() == 1;
  Iperf3Report report;
  report.release = releaseOf(start["version"].text());
  report.start = start["timestamp"]["timesecs"].integer();
  report.clientPort = connection["local_port"].count<std::uint16_t>().value_or(0);
  report.serverPort = connection["remote_port"].count<std::uint16_t>().value_or(0);
  report.bytes = (isReverse ? received : sent)["bytes"].count<std::uint64_t>();
  report.seconds = (isReverse ? received : sent)["seconds"].number();
  report.sentBps = rateOf(sent);
  report.receivedBps = rateOf(received);
  report.retransmits = sent["retransmits"].count<std::uint64_t>();
  report.roundTrips = roundTripsOf(json["end"]["streams"].first()["sender"]);
  report.emptySeconds = secondsWithoutAByte(json["intervals"]);
  report.error = json["error"].text();
  return report;
}

}  // namespace watch
