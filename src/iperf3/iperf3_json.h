// The iperf3 report: JSON in the layout of iperf3's option -J, one member a line, read by its
// members' names and not as JSON.
//
// Writes `writeRateValid` and `writeRateBps`, or `readRateValid` and `readRateBps`, of
// `outputResults`.
#pragma once

#include "iperf3/iperf3_status.h"

/// Reduces the report at `path` to `status`, prints it, and records the rate of the direction that
/// the report names: sent for "0", received for "1", none for anything else. A member that the
/// report lacks leaves its field as it is.
///
/// Throws std::invalid_argument or std::out_of_range for a port or byte count that is not a number
/// or too large. A rate that is not a number is 0; any rate that is there sets the floating-point
/// precision of std::cout to 0.
void iperf3JsonToCsvUnix(const char* path, iperf3_status& status);

/// The Windows variant: takes `path` as a printf format without arguments, of whose text it opens
/// the first 127 characters, prints only when `debugConfFile` and `debugPrintHistory` are set, and
/// stamps `dateTime` of `outputResults`.
void iperf3JsonToCsv(const char* path, iperf3_status& status);
