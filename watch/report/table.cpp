#include "report/table.h"

namespace watch {

void Table::add(std::initializer_list<Html> cells) {
  Html row;
  auto column = columns_.begin();
  for (const Html& cell : cells) {
    const bool isFirst = column == columns_.begin();
    row += el(isFirst ? "th" : "td", {{"scope", isFirst ? "row" : ""}, {"class", column->style}},
              cell);
    ++column;
  }
  rows_ += el("tr", {}, row);
}

Html Table::html(const char* style, const char* caption) const {
  Html heads;
  for (const Column& column : columns_) {
    heads += el("th", {{"scope", "col"}, {"class", column.style}}, column.name);
  }
  return el(
      "table", {{"class", style}},
      {el("caption", {}, caption), el("thead", {}, el("tr", {}, heads)), el("tbody", {}, rows_)});
}

}  // namespace watch
