#include "views/flat_sink.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace watch {

namespace {

/// Notes the names of the members, and of which kind they are.
class ColumnSink : public RecordSink {
 public:
  std::vector<Column> columns;

  void begin(const char* group) override { prefix_ = std::string(group) + "_"; }
  void end() override { prefix_.clear(); }
  void nothing(const char* key) override { add(key, ColumnKind::text); }
  void text(const char* key, std::string_view /*value*/) override { add(key, ColumnKind::text); }
  void boolean(const char* key, bool /*value*/) override { add(key, ColumnKind::boolean); }
  void whole(const char* key, std::int64_t /*value*/) override { add(key, ColumnKind::whole); }
  void number(const char* key, double /*value*/) override { add(key, ColumnKind::number); }
  void numbers(const char* key, std::initializer_list<double> /*values*/) override {
    add(key, ColumnKind::text);
  }
  void sources(const char* key, std::span<const Source> /*value*/) override {
    add(key, ColumnKind::text);
  }

 private:
  void add(const char* key, ColumnKind kind) { columns.push_back({prefix_ + key, kind}); }

  std::string prefix_;
};

/// A run of which everything is known, so that each member is of its kind.
Run wholeRun() {
  Run run;
  run.ping = {PingState::replied, 1, 1, 1, 1, 1, 1, ""};
  run.write = {RateState::full, 1, 1, 1, 1, "", 1, {}, 1};
  run.read = run.write;
  return run;
}

}  // namespace

std::vector<Column> flatColumns() {
  ColumnSink sink;
  writeRecord(wholeRun(), sink);
  return std::move(sink.columns);
}

void FlatSink::numbers(const char* key, std::initializer_list<double> values) {
  text(key, fmt::format("{}", fmt::join(values, " ")));
}

void FlatSink::sources(const char* key, std::span<const Source> value) {
  std::string all;
  for (const Source& from : value) {
    all += fmt::format("{}{}:{}", all.empty() ? "" : " ", files_[from.file], from.first);
    if (from.last != from.first) {
      all += fmt::format("-{}", from.last);
    }
  }
  all.empty() ? nothing(key) : text(key, all);
}

}  // namespace watch
