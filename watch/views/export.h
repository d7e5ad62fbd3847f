// The exports: every run, normalised, in formats that other programs read.
#pragma once

#include "runs/run.h"
#include "views/output.h"

#include <span>
#include <string>
#include <vector>

namespace watch {

/// JSON Lines: an object a line; what is not known is null.
void exportJsonl(std::span<const Run> runs, const std::vector<std::string>& files, Output& output);

/// Comma-separated values with a header, as RFC 4180 has them, with newlines alone. The members of
/// a group carry its name; what is not known is empty.
void exportCsv(std::span<const Run> runs, const std::vector<std::string>& files, Output& output);

/// An SQLite database with one table, `runs`, whose columns are those of the CSV, and `seconds`,
/// the time since the epoch. Throws std::runtime_error with SQLite's own words.
void exportSqlite(std::span<const Run> runs, const std::vector<std::string>& files, Output& output);

}  // namespace watch
