#include "views/export.h"
#include "views/record.h"

#include <algorithm>
#include <future>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace watch {

namespace {

class JsonSink : public RecordSink {
 public:
  JsonSink(rapidjson::StringBuffer& buffer, const std::vector<std::string>& files)
      : json_(buffer), files_(files) {
    json_.StartObject();
  }
  void endLine() { json_.EndObject(); }

  void begin(const char* group) override {
    json_.Key(group);
    json_.StartObject();
  }
  void end() override { json_.EndObject(); }
  void nothing(const char* key) override {
    json_.Key(key);
    json_.Null();
  }
  void text(const char* key, std::string_view value) override {
    json_.Key(key);
    string(value);
  }
  void boolean(const char* key, bool value) override {
    json_.Key(key);
    json_.Bool(value);
  }
  void whole(const char* key, std::int64_t value) override {
    json_.Key(key);
    json_.Int64(value);
  }
  void number(const char* key, double value) override {
    json_.Key(key);
    json_.Double(value);
  }
  void numbers(const char* key, std::initializer_list<double> values) override {
    json_.Key(key);
    json_.StartArray();
    for (const double value : values) {
      json_.Double(value);
    }
    json_.EndArray();
  }
  void sources(const char* key, std::span<const Source> value) override {
    json_.Key(key);
    json_.StartArray();
    for (const Source& from : value) {
      json_.StartArray();
      string(files_[from.file]);
      json_.Uint(from.first);
      json_.Uint(from.last);
      json_.EndArray();
    }
    json_.EndArray();
  }

 private:
  void string(std::string_view value) {
    json_.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
  }

  rapidjson::Writer<rapidjson::StringBuffer> json_;
  const std::vector<std::string>& files_;
};

rapidjson::StringBuffer linesOf(std::span<const Run> runs, const std::vector<std::string>& files) {
  rapidjson::StringBuffer lines;
  for (const Run& run : runs) {
    JsonSink line(lines, files);
    writeRecord(run, line);
    line.endLine();
    lines.Put('\n');
  }
  return lines;
}

}  // namespace

void exportJsonl(std::span<const Run> runs, const std::vector<std::string>& files, Output& output) {
  constexpr std::size_t kBlock = 512;
  const auto blockAt = [&](std::size_t place) {
    const auto rest = runs.subspan(std::min(place, runs.size()));
    return linesOf(rest.first(std::min(rest.size(), kBlock)), files);
  };
  const auto write = [&](const rapidjson::StringBuffer& lines) {
    output.write({lines.GetString(), lines.GetSize()});
  };
  for (std::size_t place = 0; place < runs.size(); place += 2 * kBlock) {
    auto next = std::async(blockAt, place + kBlock);
    write(blockAt(place));
    write(next.get());
  }
}

}  // namespace watch
