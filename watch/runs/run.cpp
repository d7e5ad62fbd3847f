#include "runs/run.h"

#include <cmath>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace watch {

namespace {

// In the order of the enumerations. Without a name, it cannot be told.
constexpr const char* kRateStates[] = {nullptr,   "full",  "cut", "nothing_moved",
                                       "no_test", "stale", "off"};
constexpr const char* kPingStates[] = {nullptr,    "replied",   "false_zero", "unread",
                                       "no_reply", "no_output", "stale",      "off"};
constexpr const char* kClasses[] = {"ok", "partial", "failed"};
constexpr const char* kTimeSources[] = {nullptr,   "journal", "ping",
                                        "forward", "reverse", "archive_stamp"};

template <class Names, class Value>
const char* nameIn(const Names& names, Value value) {
  return names[static_cast<std::size_t>(value)];
}

const char* shortReason(PingState state) {
  switch (state) {
    case PingState::noReply:
      return "no reply";
    case PingState::noOutput:
      return "no ping";
    case PingState::unread:
      return "ping not read by the tester";
    case PingState::falseZero:
      return "latency recorded as 0";
    case PingState::stale:
      return "ping of the run before";
    case PingState::unknown:
      return "ping unknown";
    case PingState::replied:
    case PingState::off:
      break;
  }
  return nullptr;
}

std::string shortReason(const char* test, const Rate& rate) {
  switch (rate.state) {
    case RateState::cut:
      return fmt::format("{} cut{}{}", test, rate.reason.empty() ? "" : ", ", rate.reason);
    case RateState::nothingMoved:
      return fmt::format("{} moved nothing", test);
    case RateState::noTest:
      return fmt::format("no {} test{}{}", test, rate.reason.empty() ? "" : ": ", rate.reason);
    case RateState::stale:
      return fmt::format("{} of the run before", test);
    case RateState::unknown:
      return fmt::format("{} line lost", test);
    case RateState::full:
    case RateState::off:
      break;
  }
  return "";
}

void addRates(const Run& run, std::vector<std::string>& parts) {
  if (run.write.state == RateState::noTest && run.read.state == RateState::noTest &&
      run.write.reason == run.read.reason) {
    parts.push_back(run.write.reason.empty() ? "no test" : "no test: " + run.write.reason);
    return;
  }
  for (const std::string& part : {shortReason("write", run.write), shortReason("read", run.read)}) {
    if (!part.empty()) {
      parts.push_back(part);
    }
  }
}

std::string endOf(const Run& run) {
  if (!run.ended.empty()) {
    return run.ended;
  }
  return run.forward.isThere() ? "ended in read test" : "ended in write test";
}

}  // namespace

const char* name(RateState state) {
  return nameIn(kRateStates, state);
}
const char* name(PingState state) {
  return nameIn(kPingStates, state);
}
const char* name(Class runClass) {
  return nameIn(kClasses, runClass);
}
const char* name(TimeSource source) {
  return nameIn(kTimeSources, source);
}

double Ping::loss() const {
  constexpr double kPercent = 100;
  return sent && received && *sent > 0 && *received <= *sent
             ? kPercent * (*sent - *received) / *sent
             : kNotMeasured;
}

bool Ping::isMeasured() const {
  return state == PingState::replied && !std::isnan(avg);
}

std::string reason(const Run& run) {
  if (run.orphan) {
    return "only the output of a ping";
  }
  std::vector<std::string> parts;
  if (const char* const ping = shortReason(run.ping.state); ping != nullptr) {
    parts.push_back(run.ping.reason.empty() ? ping : fmt::format("{}: {}", ping, run.ping.reason));
  }
  addRates(run, parts);
  if (!run.finished) {
    parts.push_back(endOf(run));
  }
  return run.runClass == Class::ok ? "" : fmt::format("{}", fmt::join(parts, ", "));
}

}  // namespace watch
