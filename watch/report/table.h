// Tables, row by row.
#pragma once

#include "report/html.h"

#include <initializer_list>
#include <vector>

namespace watch {

class Table {
 public:
  struct Column {
    const char* name;
    /// The class of its cells: "r" for figures, "wide" for what a phone has no room for.
    const char* style = "";
  };

  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// A cell for each column; the first one names the row.
  void add(std::initializer_list<Html> cells);
  /// `style` is the class of the table, `caption` what it shows, for those who don't see the title.
  Html html(const char* style, const char* caption) const;

 private:
  std::vector<Column> columns_;
  Html rows_;
};

}  // namespace watch
