#include "views/export.h"
#include "views/flat_sink.h"

#include <fmt/format.h>

namespace watch {

namespace {

class CsvSink : public FlatSink {
 public:
  CsvSink(std::string& line, const std::vector<std::string>& files)
      : FlatSink(files), line_(line) {}

  void nothing(const char* /*key*/) override { add(""); }
  void text(const char* /*key*/, std::string_view value) override { add(value); }
  void boolean(const char* /*key*/, bool value) override { add(value ? "true" : "false"); }
  void whole(const char* /*key*/, std::int64_t value) override { add(fmt::to_string(value)); }
  void number(const char* /*key*/, double value) override { add(fmt::to_string(value)); }

 private:
  void add(std::string_view value) {
    line_ += isFirst_ ? "" : ",";
    isFirst_ = false;
    if (value.find_first_of(",\"\n\r") == std::string_view::npos) {
      line_ += value;
      return;
    }
    line_ += '"';
    for (const char c : value) {
      line_ += c == '"' ? "\"\"" : std::string(1, c);
    }
    line_ += '"';
  }

  std::string& line_;
  bool isFirst_ = true;
};

}  // namespace

void exportCsv(std::span<const Run> runs, const std::vector<std::string>& files, Output& output) {
  std::string line;
  for (const Column& column : flatColumns()) {
    line += (line.empty() ? "" : ",") + column.name;
  }
  output.write(line + "\n");
  for (const Run& run : runs) {
    line.clear();
    CsvSink sink(line, files);
    writeRecord(run, sink);
    line += '\n';
    output.write(line);
  }
}

}  // namespace watch
