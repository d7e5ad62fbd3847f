// A table with a line for each month or workstation.
#pragma once

#include "figures/stretch.h"
#include "report/table.h"

namespace watch {

/// `name` is what the first column names.
Table summaryTable(const char* name);
void addTo(Table& table, const Html& name, const Stretch& stretch);

}  // namespace watch
