// The readers that are measured: the program's own, and JSON libraries that pick the same members.
#pragma once

#include "iperf3/iperf3_status.h"

#include <span>
#include <string>

/// A reader of iperf3 reports.
struct ReportReader {
  const char* name;
  iperf3_status (*read)(const std::string& path);
};
std::span<const ReportReader> reportReaders();

/// A reader of the history files in `directory`, which ends in "/".
struct HistoryReader {
  const char* name;
  void (*read)(const std::string& directory);
};
std::span<const HistoryReader> historyReaders();
