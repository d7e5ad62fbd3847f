#include "evidence/journal_line.h"

#include "evidence/json.h"

#include <cmath>
#include <fmt/format.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <type_traits>
#include <utility>

namespace watch {

namespace {

constexpr int kFormat = 1;

// The settings of a run that its figures depend on: the keys of the configuration file.
constexpr std::pair<const char*, std::int32_t Configuration::*> kNumbers[] = {
    {"numPings", &Configuration::numPings},
    {"iperfTestTime", &Configuration::iperfTestTime},
    {"outputFormat", &Configuration::outputFormat}};
constexpr std::pair<const char*, bool Configuration::*> kSwitches[] = {
    {"pingTestServer", &Configuration::pingTestServer},
    {"doPingTests", &Configuration::doPingTests},
    {"doIperf2Tests", &Configuration::doIperf2Tests},
    {"doIperf3Tests", &Configuration::doIperf3Tests}};

/// Writes members. What is not known is left out.
class JournalWriter {
 public:
  std::string write(const JournalLine& line) && {
    json_.StartObject();
    member("format", kFormat);
    moment("start", line.start);
    moment("end", line.end);
    member("ended", line.ended);
    member("address", line.address);
    group("settings", line.settings, [&] { writeSettings(*line.settings); });
    group("ping", line.ping, [&] { writePing(*line.ping); });
    group("write", line.write, [&] { writeTest(*line.write); });
    group("read", line.read, [&] { writeTest(*line.read); });
    member("result", line.result);
    json_.EndObject();
    buffer_.Put('\n');
    return {buffer_.GetString(), buffer_.GetSize()};
  }

 private:
  void writeSettings(const Configuration& settings) {
    for (const auto& [key, number] : kNumbers) {
      member(key, settings.*number);
    }
    for (const auto& [key, isOn] : kSwitches) {
      json_.Key(key);
      json_.Bool(settings.*isOn);
    }
  }

  void writePing(const JournalPing& ping) {
    if (ping.start) {
      member("start", formatStamp(*ping.start));
    }
    member("target", ping.output.target);
    member("sent", ping.output.sent);
    member("received", ping.output.received);
    if (!ping.output.target.empty()) {
      numbers("times_ms", ping.output.replies);
    }
    member("summary", ping.summary);
    member("said", ping.said);
  }

  void writeTest(const JournalTest& test) {
    const Iperf3Report& report = test.report;
    member("release", report.release);
    member("start", report.start);
    if (report.clientPort != 0) {
      member("client_port", report.clientPort);
      member("server_port", report.serverPort);
    }
    member("bytes", report.bytes);
    member("seconds", report.seconds);
    member("sent_bps", report.sentBps);
    member("received_bps", report.receivedBps);
    member("retransmits", report.retransmits);
    if (const auto& times = report.roundTrips) {
      numbers("rtt_ms", {times->least, times->mean, times->most});
    }
    if (report.bytes) {
      number("empty_seconds", report.emptySeconds);
    }
    member("error", report.error);
    member("said", test.said);
  }

  template <class Group, class Write>
  void group(const char* key, const std::optional<Group>& group, Write write) {
    if (group) {
      json_.Key(key);
      json_.StartObject();
      write();
      json_.EndObject();
    }
  }

  void moment(const char* key, const std::optional<EpochSeconds>& moment) {
    if (moment) {
      member(key, isoLocal(*moment));
    }
  }
  void member(const char* key, const std::string& text) {
    if (!text.empty()) {
      json_.Key(key);
      json_.String(text.c_str(), static_cast<rapidjson::SizeType>(text.size()));
    }
  }
  template <class Number>
  void member(const char* key, Number value) {
    if constexpr (std::is_floating_point_v<Number>) {
      number(key, value);
    } else if constexpr (std::is_unsigned_v<Number>) {
      json_.Key(key);
      json_.Uint64(value);
    } else {
      json_.Key(key);
      json_.Int64(value);
    }
  }
  template <class Number>
  void member(const char* key, const std::optional<Number>& value) {
    if (value) {
      member(key, *value);
    }
  }
  void number(const char* key, double value) {
    if (std::isfinite(value)) {
      json_.Key(key);
      thousandths(value);
    }
  }
  void numbers(const char* key, const std::vector<double>& values) {
    json_.Key(key);
    json_.StartArray();
    for (const double value : values) {
      thousandths(value);
    }
    json_.EndArray();
  }
  /// The tools print no more.
  void thousandths(double value) {
    constexpr double kThousandths = 1000;
    const double rounded = std::round(value * kThousandths) / kThousandths;
    json_.Double(std::isfinite(rounded) ? rounded : value);
  }

  rapidjson::StringBuffer buffer_;
  rapidjson::Writer<rapidjson::StringBuffer> json_{buffer_};
};

/// No run was before the epoch. Offsets of those times have seconds, too, which the text has not.
std::optional<EpochSeconds> momentOf(const Json& json) {
  const auto moment = parseIsoLocal(json.text());
  return moment && *moment >= 0 ? moment : std::nullopt;
}

Configuration readSettings(const Json& json) {
  Configuration settings;
  for (const auto& [key, number] : kNumbers) {
    settings.*number = json[key].count<std::int32_t>().value_or(0);
  }
  for (const auto& [key, isOn] : kSwitches) {
    settings.*isOn = json[key].isTrue();
  }
  return settings;
}

/// Returns nothing for a number that no tool prints, and whose thousandths a double has not.
std::optional<double> numberOf(const Json& json) {
  constexpr double kTooGreat = 1e12;
  const auto number = json.number();
  return number && std::abs(*number) < kTooGreat ? number : std::nullopt;
}

std::vector<double> numbersOf(const Json& json) {
  std::vector<double> numbers;
  for (const Json& element : json.elements()) {
    if (const auto number = numberOf(element)) {
      numbers.push_back(*number);
    }
  }
  return numbers;
}

JournalPing readPing(const Json& json) {
  JournalPing ping;
  ping.start = parseStamp(json["start"].text());
  ping.output.target = json["target"].text();
  ping.output.sent = json["sent"].count<std::uint32_t>();
  ping.output.received = json["received"].count<std::uint32_t>();
  ping.output.replies = numbersOf(json["times_ms"]);
  ping.summary = json["summary"].text();
  if (isPingSummary(ping.summary)) {
    takePingSummary(ping.summary, ping.output);
  }
  ping.said = json["said"].text();
  return ping;
}

JournalTest readTest(const Json& json) {
  JournalTest test;
  Iperf3Report& report = test.report;
  report.release = json["release"].text();
  report.start = json["start"].integer();
  report.clientPort = json["client_port"].count<std::uint16_t>().value_or(0);
  report.serverPort = json["server_port"].count<std::uint16_t>().value_or(0);
  report.bytes = json["bytes"].count<std::uint64_t>();
  report.seconds = numberOf(json["seconds"]);
  report.sentBps = numberOf(json["sent_bps"]);
  report.receivedBps = numberOf(json["received_bps"]);
  report.retransmits = json["retransmits"].count<std::uint64_t>();
  if (const std::vector<double> times = numbersOf(json["rtt_ms"]); times.size() == 3) {
    report.roundTrips = LoadedRoundTrips{times[0], times[1], times[2]};
  }
  report.emptySeconds = numberOf(json["empty_seconds"]).value_or(0);
  report.error = json["error"].text();
  test.said = json["said"].text();
  return test;
}

std::optional<RunKey> keyOf(const std::optional<JournalTest>& test) {
  return test ? keyOfTest(test->report.start, test->report.clientPort, test->report.serverPort)
              : std::nullopt;
}

/// Returns what `read` makes of `json`, if that is there.
template <class Read>
auto readGroup(const Json& json, Read read) {
  return json.isThere() ? std::optional(read(json)) : std::nullopt;
}

}  // namespace

std::optional<RunKey> keyOfTest(std::optional<EpochSeconds> start, std::uint16_t clientPort,
                                std::uint16_t serverPort) {
  constexpr std::uint32_t kPorts = 1U << 16U;
  return start ? std::optional(RunKey(*start, clientPort * kPorts + serverPort)) : std::nullopt;
}

RunKeys keysOf(const JournalLine& line) {
  RunKeys keys;
  if (line.start) {
    keys.start = RunKey(*line.start, 0);
  }
  if (line.ping && line.ping->start) {
    keys.ping = RunKey(line.ping->start->seconds, 0);
  }
  keys.write = keyOf(line.write);
  keys.read = keyOf(line.read);
  return keys;
}

bool isSameRun(const JournalLine& one, const JournalLine& other) {
  const RunKeys keys = keysOf(one);
  const RunKeys others = keysOf(other);
  bool hasCommon = false;
  for (const auto key : {&RunKeys::start, &RunKeys::ping, &RunKeys::write, &RunKeys::read}) {
    if (keys.*key && others.*key && keys.*key != others.*key) {
      return false;
    }
    hasCommon = hasCommon || (keys.*key && others.*key);
  }
  return hasCommon;
}

std::string journalText(const JournalLine& line) {
  return JournalWriter().write(line);
}

std::optional<JournalLine> parseJournalLine(std::string_view text) {
  rapidjson::Document document;
  const Json json = parseObject(text, document);
  if (json["format"].integer() != kFormat) {
    return std::nullopt;
  }
  JournalLine line;
  line.start = momentOf(json["start"]);
  line.end = momentOf(json["end"]);
  line.ended = json["ended"].text();
  line.address = json["address"].text();
  line.settings = readGroup(json["settings"], readSettings);
  line.ping = readGroup(json["ping"], readPing);
  line.write = readGroup(json["write"], readTest);
  line.read = readGroup(json["read"], readTest);
  line.result = json["result"].text();
  return line;
}

}  // namespace watch
