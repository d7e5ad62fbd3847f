// Reads the journal's files.
#pragma once

#include "evidence/journal_line.h"
#include "evidence/log_directory.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace watch {

/// Returns the lines of the journal in the order in which they were written, each run's once, and
/// adds its files to `files`. With `count`, at least so many of the last ones, if there are,
/// without line numbers.
std::vector<JournalLine> readJournal(const LogDirectory& directory,
                                     std::optional<std::size_t> count,
                                     std::vector<std::string>& files, Troubles& troubles);

}  // namespace watch
