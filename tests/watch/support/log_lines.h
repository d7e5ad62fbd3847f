// Builds in memory what a log directory tells, run by run, in UTC.
#pragma once

#include "evidence/evidence.h"

#include <string>
#include <vector>

/// Seconds since the epoch at which the first run begins: 2026-11-16T05:00:00Z.
inline constexpr watch::EpochSeconds kFirstRun = 1'794'805'200;
inline constexpr watch::EpochSeconds kHour = 3600;

/// Adds to each history what runs write. Line numbers count from 1 in each.
class LogLines {
 public:
  LogLines();

  /// The ping of a run that begins `at`; its output, too.
  LogLines& ping(watch::EpochSeconds at, double avg);
  LogLines& pingLine(watch::EpochSeconds at, double avg);
  LogLines& output(double avg);
  /// An output without replies, of which the tester writes no line.
  LogLines& silentOutput();
  /// Tests of ten seconds; those of a run begin 9 and 30 seconds after it.
  LogLines& forward(watch::EpochSeconds at, double bps);
  LogLines& reverse(watch::EpochSeconds at, double bps);
  LogLines& failedForward();
  LogLines& failedReverse();
  /// With a date, the end of the ping of a run that begins `at`. A rate below 0 is "n/a".
  LogLines& result(watch::EpochSeconds at, double avg, double write, double read);
  LogLines& resultWithoutPing(double write, double read);
  /// All that a run writes in which all is well.
  LogLines& run(watch::EpochSeconds at, double avg, double write, double read);

  /// Adds the line of a run that was guarded `at`, which tells nothing more yet, and returns it.
  watch::JournalLine& journal(watch::EpochSeconds at);

  /// The unit of the results from here on.
  LogLines& unit(std::uint64_t bps);

  watch::Evidence evidence;

 private:
  std::uint64_t unitBps_ = 1;
};

/// Says of each run which lines it holds: "ping 1, output 1, forward 1, reverse 1, result 1", and
/// in brackets what it is unsure of.
std::vector<std::string> joined(const watch::Evidence& evidence);
