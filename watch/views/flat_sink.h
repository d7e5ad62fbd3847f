// Flat records: the members of a group carry its name, and sources are text.
#pragma once

#include "views/record.h"

#include <string>
#include <string_view>
#include <vector>

namespace watch {

/// The kinds of values in a column.
enum class ColumnKind { text, boolean, whole, number };

struct Column {
  std::string name;
  ColumnKind kind;
};

/// The columns of every flat record, in their order.
std::vector<Column> flatColumns();

/// Calls `take...` for each member, in the order of the columns.
class FlatSink : public RecordSink {
 public:
  explicit FlatSink(const std::vector<std::string>& files) : files_(files) {}

  void begin(const char* /*group*/) override {}
  void end() override {}
  /// "18.2 31 55.1"
  void numbers(const char* key, std::initializer_list<double> values) override;
  /// "archive/ping_history_20261121T050112.log:10", with a range behind the colon where there are
  /// several lines, and a blank between several.
  void sources(const char* key, std::span<const Source> value) override;

 private:
  const std::vector<std::string>& files_;
};

}  // namespace watch
