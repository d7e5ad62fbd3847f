#include "figures/outcome.h"

#include <string>

namespace watch {

namespace {

/// Whether the server has refused the test: something came back.
bool isRefusal(const Rate& rate) {
  return rate.state == RateState::noTest && (rate.reason.find("busy") != std::string::npos ||
                                             rate.reason.find("refused") != std::string::npos);
}

bool wasRefused(const Run& run) {
  return isRefusal(run.write) || isRefusal(run.read);
}

bool hadNoTest(const Run& run) {
  const auto isNone = [](const Rate& rate) {
    return rate.state == RateState::noTest || rate.state == RateState::off;
  };
  const bool isOff = run.write.state == RateState::off && run.read.state == RateState::off;
  return isNone(run.write) && isNone(run.read) && !isOff;
}

}  // namespace

bool hadNoConnection(const Run& run) {
  return run.runClass == Class::failed && !run.orphan && !wasRefused(run) &&
         (run.write.state == RateState::noTest || run.ping.state == PingState::noReply);
}

bool hadConnection(const Run& run) {
  return run.runClass != Class::failed || run.ping.received.value_or(0) > 0 || wasRefused(run);
}

Outcome outcomeOf(const Run& run) {
  if (run.runClass == Class::ok) {
    return Outcome::measured;
  }
  if (hadNoConnection(run)) {
    return Outcome::noConnection;
  }
  if (hadConnection(run) && hadNoTest(run) && run.finished) {
    return Outcome::noServer;
  }
  return run.runClass == Class::partial ? Outcome::partly : Outcome::nothing;
}

}  // namespace watch
