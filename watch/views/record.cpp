#include "views/record.h"

#include <cmath>

namespace watch {

namespace {

/// Writes members of which there may be nothing to say.
class Members {
 public:
  explicit Members(RecordSink& sink) : sink_(sink) {}

  void text(const char* key, const char* value) {
    value == nullptr ? sink_.nothing(key) : sink_.text(key, value);
  }
  void text(const char* key, const std::string& value) {
    value.empty() ? sink_.nothing(key) : sink_.text(key, value);
  }
  void number(const char* key, double value) {
    std::isfinite(value) ? sink_.number(key, rounded(value)) : sink_.nothing(key);
  }
  void roundTrips(const char* key, const std::optional<LoadedRoundTrips>& times) {
    times ? sink_.numbers(key, {rounded(times->least), rounded(times->mean), rounded(times->most)})
          : sink_.nothing(key);
  }
  void whole(const char* key, double value) {
    std::isfinite(value) ? sink_.whole(key, std::llround(value)) : sink_.nothing(key);
  }
  template <class Number>
  void whole(const char* key, const std::optional<Number>& value) {
    value ? sink_.whole(key, static_cast<std::int64_t>(*value)) : sink_.nothing(key);
  }
  void source(const char* key, const Source& from) {
    sink_.sources(key, {&from, from.isThere() ? 1U : 0U});
  }

 private:
  /// To thousandths, which is what the tools print.
  static double rounded(double value) {
    constexpr double kThousandths = 1000;
    return std::round(value * kThousandths) / kThousandths;
  }

  RecordSink& sink_;
};

void writePing(const Ping& ping, RecordSink& sink) {
  Members members(sink);
  sink.begin("ping");
  members.text("state", name(ping.state));
  members.number("min_ms", ping.min);
  members.number("avg_ms", ping.avg);
  members.number("max_ms", ping.max);
  members.number("stddev_ms", ping.stddev);
  members.whole("sent", ping.sent);
  members.whole("received", ping.received);
  members.number("loss_percent", ping.loss());
  sink.end();
}

void writeRate(const char* group, const Rate& rate, RecordSink& sink) {
  Members members(sink);
  sink.begin(group);
  members.text("state", name(rate.state));
  members.whole("bps", rate.bps);
  members.whole("bytes", rate.bytes);
  members.number("seconds", rate.seconds);
  members.whole("duration", rate.duration);
  members.whole("retransmits", rate.retransmits);
  members.roundTrips("rtt_ms", rate.roundTrips);
  members.text("reason", rate.reason);
  sink.end();
}

void writeFrom(const Run& run, RecordSink& sink) {
  Members members(sink);
  sink.begin("from");
  members.source("result", run.result);
  sink.sources("ping", run.pings);
  sink.sources("verbose", run.outputs);
  members.source("forward", run.forward);
  members.source("reverse", run.reverse);
  members.source("journal", run.journal);
  sink.end();
}

}  // namespace

void writeRecord(const Run& run, RecordSink& sink) {
  Members members(sink);
  members.text("time", run.time ? isoUtc(*run.time) : "");
  members.text("local", run.time ? isoLocal(*run.time) : "");
  members.text("time_source", name(run.timeSource));
  sink.boolean("fold_unresolved", run.foldUnresolved);
  members.text("class", name(run.runClass));
  sink.boolean("finished", run.finished);
  members.text("reason", reason(run));
  members.text("server", run.server);
  sink.boolean("orphan", run.orphan);
  members.text("unsure", run.unsure);
  writePing(run.ping, sink);
  writeRate("write", run.write, sink);
  writeRate("read", run.read, sink);
  writeFrom(run, sink);
}

}  // namespace watch
