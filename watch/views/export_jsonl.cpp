#include "views/export.h"
#include "views/record.h"

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
  void sources(const char* key, const std::vector<Source>& value) override {
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

}  // namespace

void exportJsonl(std::span<const Run> runs, const std::vector<std::string>& files, Output& output) {
  rapidjson::StringBuffer buffer;
  for (const Run& run : runs) {
    buffer.Clear();
    JsonSink line(buffer, files);
    writeRecord(run, line);
    line.endLine();
    buffer.Put('\n');
    output.write({buffer.GetString(), buffer.GetSize()});
  }
}

}  // namespace watch
