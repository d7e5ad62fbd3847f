#include "runs/states.h"

#include "runs/no_test.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numeric>

namespace watch {

namespace {

double secondsMeasured(const Iperf3Line& line) {
  constexpr double kBitsPerByte = 8;
  return line.bytes > 0 && line.bps > 0 ? kBitsPerByte * static_cast<double>(line.bytes) / line.bps
                                        : kNotMeasured;
}

bool tookItsTime(const Iperf3Line& line) {
  const double seconds = secondsMeasured(line);
  const double duration = line.duration.value_or(0);
  return seconds >= 0.9 * duration && seconds <= 1.1 * duration + 1 && duration > 0;
}

bool wasStopped(const RateFacts& facts) {
  return facts.report != nullptr && facts.report->wasStopped();
}

/// A rule: the first that applies gives the state.
template <class State, class Facts>
struct Rule {
  State state;
  bool (*applies)(const Facts&);
};

constexpr Rule<RateState, RateFacts> kRateRules[] = {
    {RateState::unknown, [](const RateFacts& f) { return f.line == nullptr && f.isLost; }},
    {RateState::off, [](const RateFacts& f) { return f.line == nullptr; }},
    {RateState::stale, [](const RateFacts& f) { return f.isRepeated; }},
    {RateState::noTest, [](const RateFacts& f) { return !f.line->connected(); }},
    {RateState::nothingMoved,
     [](const RateFacts& f) { return f.line->bytes == 0 && f.line->bps == 0; }},
    {RateState::cut, wasStopped},
    {RateState::full, [](const RateFacts& f) { return tookItsTime(*f.line); }},
    {RateState::cut, [](const RateFacts&) { return true; }},
};

bool replied(const PingFacts& f) {
  return f.output != nullptr && !f.output->replies.empty();
}

constexpr Rule<PingState, PingFacts> kPingRules[] = {
    {PingState::stale, [](const PingFacts& f) { return f.isRepeated; }},
    {PingState::replied, [](const PingFacts& f) { return replied(f) && f.output->summaryIsWhole; }},
    {PingState::falseZero,
     [](const PingFacts& f) { return replied(f) && f.line != nullptr && f.line->isZeros(); }},
    {PingState::unread, replied},
    {PingState::noReply, [](const PingFacts& f) { return f.output != nullptr; }},
    {PingState::replied,
     [](const PingFacts& f) { return f.line != nullptr && !f.line->isZeros(); }},
    {PingState::unknown, [](const PingFacts& f) { return f.line != nullptr || f.isOpen; }},
    {PingState::off, [](const PingFacts& f) { return f.isOff; }},
    {PingState::noOutput, [](const PingFacts&) { return true; }},
};

bool isGood(const Ping& ping) {
  return ping.state == PingState::replied || ping.state == PingState::off;
}
bool isGood(const Rate& rate) {
  return rate.state == RateState::full || rate.state == RateState::off;
}
bool tellsSomething(const Run& run) {
  return !std::isnan(run.ping.avg) || run.write.bps > 0 || run.read.bps > 0;
}

constexpr Rule<Class, Run> kClassRules[] = {
    {Class::failed, [](const Run& run) { return !tellsSomething(run); }},
    {Class::ok,
     [](const Run& run) {
       return run.finished && isGood(run.ping) && isGood(run.write) && isGood(run.read);
     }},
    {Class::partial, [](const Run&) { return true; }},
};

template <class State, class Facts, std::size_t Count>
State firstOf(const Rule<State, Facts> (&rules)[Count], const Facts& facts) {
  const Rule<State, Facts>* rule = rules;
  while (!rule->applies(facts)) {
    ++rule;
  }
  return rule->state;
}

/// An adapter knows better why than the report of the iperf3 that it has ended.
std::string complaintOf(const RateFacts& facts) {
  return std::string(facts.said.empty() && facts.report != nullptr ? facts.report->error
                                                                   : facts.said);
}

std::string reasonOf(const Rate& rate, const RateFacts& facts) {
  if (rate.isMeasured() || rate.state == RateState::off) {
    return "";
  }
  if (const std::string complaint = complaintOf(facts); !complaint.empty()) {
    return rate.state == RateState::noTest ? whyNoTest(complaint) : complaint;
  }
  if (facts.report != nullptr && facts.report->wasStopped()) {
    return fmt::format("{:.0f} s without a byte", facts.report->emptySeconds);
  }
  if (rate.state == RateState::cut && !std::isnan(rate.seconds) && rate.duration) {
    return fmt::format("{:.1f} of {} s", rate.seconds, *rate.duration);
  }
  return "";
}

/// ping's own summary, or what its replies tell.
void takeFigures(const PingOutput& output, Ping& ping) {
  if (output.summary) {
    ping.min = output.summary->min;
    ping.avg = output.summary->avg;
    ping.max = output.summary->max;
    ping.stddev = output.summary->stddev;
  } else if (const std::vector<double>& replies = output.replies; !replies.empty()) {
    const auto [least, most] = std::ranges::minmax(replies);
    ping.min = least;
    ping.avg =
        std::accumulate(replies.begin(), replies.end(), 0.0) / static_cast<double>(replies.size());
    ping.max = most;
  }
}

bool hasFigures(RateState state) {
  return state == RateState::full || state == RateState::cut || state == RateState::nothingMoved;
}

}  // namespace

Rate judge(const RateFacts& facts) {
  Rate rate;
  rate.state = firstOf(kRateRules, facts);
  if (facts.line != nullptr) {
    rate.duration = facts.line->duration;
  }
  if (facts.line != nullptr && hasFigures(rate.state)) {
    rate.bps = facts.line->bps;
    rate.bytes = facts.line->bytes;
    rate.seconds = secondsMeasured(*facts.line);
  }
  if (facts.report != nullptr) {
    rate.retransmits = facts.report->retransmits;
    rate.roundTrips = facts.report->roundTrips;
    rate.emptySeconds = facts.report->bytes ? facts.report->emptySeconds : kNotMeasured;
  }
  rate.reason = reasonOf(rate, facts);
  return rate;
}

Ping judge(const PingFacts& facts) {
  Ping ping;
  ping.state = firstOf(kPingRules, facts);
  ping.reason = ping.state == PingState::replied ? "" : facts.said;
  if (ping.state == PingState::stale) {
    return ping;
  }
  if (facts.output != nullptr) {
    ping.sent = facts.output->sent;
    ping.received = facts.output->received;
    takeFigures(*facts.output, ping);
  } else if (ping.state == PingState::replied) {
    ping.min = facts.line->min;
    ping.avg = facts.line->avg;
    ping.max = facts.line->max;
    ping.stddev = facts.line->stddev;
  }
  return ping;
}

Class classOf(const Run& run) {
  return firstOf(kClassRules, run);
}

}  // namespace watch
