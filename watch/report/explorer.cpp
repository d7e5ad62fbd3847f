#include "report/explorer.h"

#include "report/marks.h"
#include "report/resources.h"
#include "report/words.h"
#include "views/words.h"

#include <optional>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <string>

namespace watch {

namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

/// When the clock's distance from UTC changes: from that second on, so many seconds.
void writeOffsets(const Station& station, Writer& json) {
  json.Key("offsets");
  json.StartArray();
  std::optional<std::int32_t> before;
  for (const Placed& placed : station.line) {
    if (const std::int32_t offset = utcOffset(placed.at); offset != before) {
      json.StartArray();
      json.Int64(placed.at);
      json.Int(offset);
      json.EndArray();
      before = offset;
    }
  }
  json.EndArray();
}

/// The first time, and from each to the next.
void writeTimes(const Station& station, Writer& json) {
  json.Key("times");
  json.StartArray();
  EpochSeconds before = 0;
  for (const Placed& placed : station.line) {
    if (placed.run != nullptr) {
      json.Int64(placed.at - before);
      before = placed.at;
    }
  }
  json.EndArray();
}

/// As many digits as the page shows, without a zero behind the point.
std::string digitsOf(const Metric& metric, double value) {
  const std::string digits = metric.moreIsBetter ? megabits(value) : milliseconds(value);
  return digits.ends_with(".0") ? digits.substr(0, digits.size() - 2) : digits;
}

void writeFigures(const Station& station, const Metric& metric, const char* key, Writer& json) {
  json.Key(key);
  json.StartArray();
  for (const Placed& placed : station.line) {
    const auto value = placed.run == nullptr ? std::nullopt : metric.of(*placed.run);
    if (value) {
      const std::string text = digitsOf(metric, *value);
      json.RawValue(text.data(), text.size(), rapidjson::kNumberType);
    } else if (placed.run != nullptr) {
      json.Null();
    }
  }
  json.EndArray();
}

/// The place, the colour and what was not well, of the runs that are not.
void writeTroubles(const Station& station, Writer& json) {
  json.Key("troubles");
  json.StartArray();
  int place = 0;
  for (const Placed& placed : station.line) {
    if (placed.run == nullptr) {
      continue;
    }
    if (const std::string words = reason(*placed.run); !words.empty()) {
      json.StartArray();
      json.Int(place);
      json.String(placed.mark >= Mark::partly ? colour(placed.mark) : colour(Mark::partly));
      json.String(foreign(words).c_str());
      json.EndArray();
    }
    ++place;
  }
  json.EndArray();
}

void writePromised(const char* key, std::optional<double> rate, Writer& json) {
  json.Key(key);
  rate ? json.Double(*rate) : json.Null();
}

}  // namespace

bool hasExplorer() {
  return !kLibrary.empty();
}

std::string explorerData(const Station& station) {
  rapidjson::StringBuffer text;
  Writer json(text);
  json.StartObject();
  json.Key("rhythm");
  json.Int64(station.rhythm.seconds);
  writeOffsets(station, json);
  writeTimes(station, json);
  writeFigures(station, kRead, "read", json);
  writeFigures(station, kWrite, "write", json);
  writeFigures(station, kLatency, "latency", json);
  writeTroubles(station, json);
  writePromised("promisedRead", station.contract.read, json);
  writePromised("promisedWrite", station.contract.write, json);
  json.EndObject();
  return text.GetString();
}

Html explorer(const Station& station) {
  if (!hasExplorer() || !station.reference) {
    return {};
  }
  return el("div", {{"class", "explorer"}, {"hidden", "hidden"}}, jsonData(explorerData(station)));
}

}  // namespace watch
