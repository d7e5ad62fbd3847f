#include "watch/support/made_runs.h"

using watch::Class;
using watch::EpochSeconds;
using watch::PingState;
using watch::RateState;
using watch::Run;
using watch::TimeSource;

Run okRun(EpochSeconds time) {
  Run run;
  run.time = time;
  run.timeSource = TimeSource::ping;
  run.runClass = Class::ok;
  run.finished = true;
  run.ping = {PingState::replied, 12.1, 13, 15.2, 0.8, 10, 10};
  run.write = {RateState::full, 41'034'752, 51'300'000, 10.0, 10, ""};
  run.read = {RateState::full, 244'012'345, 305'100'000, 10.003, 10, ""};
  run.client = "192.168.1.20";
  run.server = "192.0.2.10";
  run.result = {0, 4, 4};
  run.pings = {{1, 10, 10}};
  run.outputs = {{2, 1, 6}};
  run.forward = {3, 5, 5};
  run.reverse = {4, 6, 6};
  return run;
}

Run cutRun(EpochSeconds time) {
  Run run = okRun(time);
  run.runClass = Class::partial;
  run.read = {RateState::cut, 61'200'000, 23'700'000, 3.1, 10, "3.1 of 10 s"};
  return run;
}

Run failedRun(std::optional<EpochSeconds> time) {
  Run run;
  run.time = time;
  run.timeSource = time ? TimeSource::archiveStamp : TimeSource::none;
  run.finished = true;
  run.ping.state = PingState::noReply;
  run.ping.sent = 10;
  run.ping.received = 0;
  run.write.state = RateState::noTest;
  run.read.state = RateState::noTest;
  run.result = {0, 5, 5};
  return run;
}

Run endedRun(EpochSeconds time) {
  Run run = okRun(time);
  run.runClass = Class::partial;
  run.finished = false;
  run.read = {};
  run.read.state = RateState::off;
  run.result = {};
  run.reverse = {};
  return run;
}

Run unsureRun(EpochSeconds time) {
  Run run = okRun(time);
  run.timeSource = TimeSource::forward;
  run.runClass = Class::partial;
  run.unsure = "no output of a ping: switched off, or there was no ping";
  run.pingUnsure = true;
  run.ping = {};
  run.ping.state = PingState::noOutput;
  run.pings.clear();
  run.outputs.clear();
  return run;
}

Run runOfUnsureRates(EpochSeconds time) {
  Run run = okRun(time);
  run.unsure = "its iperf3 lines could be those of a run beside it";
  run.ratesUnsure = true;
  return run;
}

Run orphan() {
  Run run;
  run.orphan = true;
  run.runClass = Class::partial;
  run.unsure = "of one of two runs";
  run.ping = {PingState::unread, 12, 12.5, 13, watch::kNotMeasured, 10, 7};
  run.write.state = RateState::off;
  run.read.state = RateState::off;
  run.outputs = {{2, 1, 6}};
  return run;
}
