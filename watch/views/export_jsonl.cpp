#include "views/export_jsonl.h"

#include <cmath>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace watch {

namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

class RunWriter {
 public:
  RunWriter(Writer& json, const std::vector<std::string>& files) : json_(json), files_(files) {}

  void write(const Run& run) {
    json_.StartObject();
    text("time", run.time ? isoUtc(*run.time) : "");
    text("local", run.time ? isoLocal(*run.time) : "");
    text("time_source", name(run.timeSource));
    boolean("fold_unresolved", run.foldUnresolved);
    text("class", name(run.runClass));
    boolean("finished", run.finished);
    text("reason", reason(run));
    text("server", run.server);
    boolean("orphan", run.orphan);
    text("unsure", run.unsure);
    writePing(run.ping);
    writeRate("write", run.write);
    writeRate("read", run.read);
    writeSources(run);
    json_.EndObject();
  }

 private:
  void writePing(const Ping& ping) {
    json_.Key("ping");
    json_.StartObject();
    text("state", name(ping.state));
    number("min_ms", ping.min);
    number("avg_ms", ping.avg);
    number("max_ms", ping.max);
    number("stddev_ms", ping.stddev);
    whole("sent", ping.sent);
    whole("received", ping.received);
    number("loss_percent", ping.loss());
    json_.EndObject();
  }

  void writeRate(const char* key, const Rate& rate) {
    json_.Key(key);
    json_.StartObject();
    text("state", name(rate.state));
    rounded("bps", rate.bps);
    whole("bytes", rate.bytes);
    number("seconds", rate.seconds);
    whole("duration", rate.duration);
    // Only a journal tells these.
    json_.Key("retransmits");
    json_.Null();
    json_.Key("rtt_ms");
    json_.Null();
    text("reason", rate.reason);
    json_.EndObject();
  }

  void writeSources(const Run& run) {
    json_.Key("from");
    json_.StartObject();
    source("result", run.result);
    sources("ping", run.pings);
    sources("verbose", run.outputs);
    source("forward", run.forward);
    source("reverse", run.reverse);
    sources("journal", {});
    json_.EndObject();
  }

  void source(const char* key, const Source& from) {
    sources(key, from.isThere() ? std::vector<Source>{from} : std::vector<Source>());
  }

  void sources(const char* key, const std::vector<Source>& all) {
    json_.Key(key);
    json_.StartArray();
    for (const Source& from : all) {
      json_.StartArray();
      string(files_[from.file]);
      json_.Uint(from.first);
      json_.Uint(from.last);
      json_.EndArray();
    }
    json_.EndArray();
  }

  bool string(const std::string& value) {
    return json_.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
  }

  // Each writes a member, null where there is nothing to say.
  void text(const char* key, const char* value) {
    json_.Key(key);
    value == nullptr ? json_.Null() : json_.String(value);
  }
  void text(const char* key, const std::string& value) {
    json_.Key(key);
    value.empty() ? json_.Null() : string(value);
  }
  void boolean(const char* key, bool value) {
    json_.Key(key);
    json_.Bool(value);
  }
  /// To thousandths, which is what the tools print.
  void number(const char* key, double value) {
    constexpr double kThousandths = 1000;
    json_.Key(key);
    std::isfinite(value) ? json_.Double(std::round(value * kThousandths) / kThousandths)
                         : json_.Null();
  }
  void rounded(const char* key, double value) {
    json_.Key(key);
    std::isfinite(value) ? json_.Int64(std::llround(value)) : json_.Null();
  }
  template <class Number>
  void whole(const char* key, const std::optional<Number>& value) {
    json_.Key(key);
    value ? json_.Uint64(*value) : json_.Null();
  }

  Writer& json_;
  const std::vector<std::string>& files_;
};

}  // namespace

std::string jsonLine(const Run& run, const std::vector<std::string>& files) {
  rapidjson::StringBuffer buffer;
  Writer json(buffer);
  RunWriter(json, files).write(run);
  buffer.Put('\n');
  return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace watch
