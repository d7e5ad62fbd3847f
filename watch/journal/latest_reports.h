// The files that each run overwrites: what its tools have printed, and its result.
#pragma once

#include "evidence/journal_line.h"
#include "evidence/log_directory.h"
#include "log_files.h"

#include <array>
#include <filesystem>
#include <iterator>
#include <optional>

namespace watch {

/// In the order in which a run writes them, and the place of the report of the write test.
inline constexpr const char* kLatestFiles[] = {kPingLatest, kForwardFiles.report,
                                               kReverseFiles.report, kResultLatest};
inline constexpr std::size_t kWriteReport = 1;

/// When each of kLatestFiles was written. Nothing where it is not there.
using LatestTimes =
    std::array<std::optional<std::filesystem::file_time_type>, std::size(kLatestFiles)>;
LatestTimes timesOfLatest(const LogDirectory& directory);

/// Which of kLatestFiles are of one run.
using LatestOfRun = std::array<bool, std::size(kLatestFiles)>;

/// Returns what these files tell. What can't be read is not there.
JournalLine readLatestReports(const LogDirectory& directory, const LatestOfRun& isOfRun);

}  // namespace watch
