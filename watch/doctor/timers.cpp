#include "doctor/timers.h"

#include "doctor/tool.h"

#include <cstdint>
#include <rapidjson/document.h>
#include <string_view>

namespace watch {

namespace {

constexpr std::string_view kUnitBegin = "connTester@";
constexpr std::string_view kUnitEnd = ".timer";
constexpr std::uint64_t kMicroseconds = 1'000'000;

/// Reads a moment in microseconds. One that is not there is null, 0, or the greatest number.
std::optional<EpochSeconds> momentAt(const rapidjson::Value& timer, const char* member) {
  const auto found = timer.FindMember(member);
  if (found == timer.MemberEnd() || !found->value.IsUint64()) {
    return std::nullopt;
  }
  const std::uint64_t microseconds = found->value.GetUint64();
  return microseconds == 0 || microseconds == UINT64_MAX
             ? std::nullopt
             : std::optional(static_cast<EpochSeconds>(microseconds / kMicroseconds));
}

void takeTimer(const rapidjson::Value& value, std::vector<Timer>& timers) {
  if (!value.IsObject() || !value.HasMember("unit") || !value["unit"].IsString()) {
    return;
  }
  const std::string unit = value["unit"].GetString();
  if (!unit.starts_with(kUnitBegin) || !unit.ends_with(kUnitEnd)) {
    return;
  }
  const std::string address =
      unit.substr(kUnitBegin.size(), unit.size() - kUnitBegin.size() - kUnitEnd.size());
  timers.push_back({unit, address, momentAt(value, "next"), momentAt(value, "last")});
}

}  // namespace

Timers findTimers(const std::string& searchPath) {
  constexpr std::chrono::seconds kLimit{5};
  const auto systemctl = findProgram("systemctl", searchPath);
  if (!systemctl) {
    return {{}, "there is no systemctl"};
  }
  const Answer answer = ask({*systemctl, "--user", "list-timers", "--output=json", "connTester@*"},
                            searchPath, kLimit);
  if (!answer.succeeded()) {
    return {{}, failure(answer)};
  }
  rapidjson::Document list;
  if (list.Parse(answer.text.data(), answer.text.size()).HasParseError() || !list.IsArray()) {
    return {{}, "systemctl gives no list of timers"};
  }
  Timers timers;
  for (const rapidjson::Value& value : list.GetArray()) {
    takeTimer(value, timers.all);
  }
  return timers;
}

}  // namespace watch
