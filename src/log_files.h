// The files of the log directory: their names, and when a history is full. Holds no state.
//
// docs/files.md says what is in them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

/// The latest run of each tool, and the output of every ping.
inline constexpr char kPingLatest[] = "ping_latest.log";
inline constexpr char kPingVerbose[] = "ping_history_verbose.log";
inline constexpr char kIperf2Latest[] = "iperf2_latest.log";
inline constexpr char kResultLatest[] = "connection_test_results.txt";

/// A history: its file, and how the names of its archived files begin, which a "_", a stamp and
/// ".log" end.
struct History {
  const char* live;
  const char* archived;
};
inline constexpr History kPingHistory = {"ping_history.log", "ping_history"};
inline constexpr History kIperf2History = {"iperf2_history.log", "iperf2_history"};
inline constexpr History kResultHistory = {"connection_test_results_history.log",
                                           "connection_test_results_history"};

/// One direction of iperf3: its name, the latest report, the latest CSV line and their history.
struct DirectionFiles {
  const char* name;
  const char* report;
  const char* latestCsv;
  History history;
};
inline constexpr DirectionFiles kForwardFiles = {
    "forward",
    "iperf3_latest.log",
    "iperf3_latest_forward_csv.log",
    {"iperf3_history_forward_csv.log", "iperf3_history_forward"}};
inline constexpr DirectionFiles kReverseFiles = {
    "reverse",
    "iperf3_latest-R.log",
    "iperf3_latest_reverse_csv.log",
    {"iperf3_history_reverse_csv.log", "iperf3_history_reverse"}};

constexpr const DirectionFiles& directionFiles(bool reverse) {
  return reverse ? kReverseFiles : kForwardFiles;
}

/// Lines at which a history moves to the archive, so that an archived file holds ten runs.
inline constexpr unsigned kFullHistoryLines = 10;

/// What an archived file's name has behind that of its history.
inline constexpr std::string_view kArchivedEnding = "_YYYYMMDDTHHMMSS.log";

/// Characters of the longest name of a history's live file, and of an archived one. No other file
/// of the log directory has a longer name.
inline constexpr std::size_t kLongestLiveName = std::max(
    {std::string_view(kPingHistory.live).size(), std::string_view(kIperf2History.live).size(),
     std::string_view(kResultHistory.live).size(),
     std::string_view(kForwardFiles.history.live).size(),
     std::string_view(kReverseFiles.history.live).size()});
inline constexpr std::size_t kLongestArchivedName =
    kArchivedEnding.size() + std::max({std::string_view(kPingHistory.archived).size(),
                                       std::string_view(kIperf2History.archived).size(),
                                       std::string_view(kResultHistory.archived).size(),
                                       std::string_view(kForwardFiles.history.archived).size(),
                                       std::string_view(kReverseFiles.history.archived).size()});
