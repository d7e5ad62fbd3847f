// Figures, lengths and days as the page says them.
#pragma once

#include "figures/metric.h"
#include "figures/outage_bounds.h"
#include "figures/statistics.h"
#include "report/station.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace watch {

/// "8,485".
std::string grouped(std::size_t count);
/// The same; "–" for 0, so that a column of few is easy to read.
std::string countOrNone(std::size_t count);
/// "1 test", "8,485 tests".
std::string groupedCount(std::size_t count, const char* one, const char* many);
/// "243.9", "85,925" for a rate, "13.1" for a latency; "n/a" for nothing.
std::string figure(const Metric& metric, std::optional<double> value);
/// A round figure, as the end of an axis or a rate that somebody has named: "250", "0.5".
std::string plain(double value);
/// A figure with its unit.
std::string figureWithUnit(const Metric& metric, std::optional<double> value);
/// "77 %", "99.4 %", "0.6 %": 0 and 100 stand for none and all alone.
std::string share(std::size_t part, std::size_t whole);

/// How people call what is measured: "Download", "Upload", "Latency".
const char* title(const Metric& metric);
/// The colours of its pictures.
const char* colour(const Metric& metric);

/// The middle value; that which one in twenty is worse than, of twenty or more.
std::optional<double> middle(const std::optional<Spread>& spread);
std::optional<double> oneInTwenty(const Metric& metric, const std::optional<Spread>& spread);

/// "20 January 2026", "20 Jan".
std::string fullDate(std::int64_t day);
std::string shortDay(std::int64_t day);
/// "20 January", "Tue 20 January" and "Tue 20 January, 05:01", with the year where it is not that
/// of the last day.
std::string dateIn(const Station& station, std::int64_t day);
std::string dayIn(const Station& station, std::int64_t day);
std::string momentIn(const Station& station, EpochSeconds moment);
/// "January", of a key of months; the same for the year.
std::string monthIn(const Station& station, std::int64_t month);
/// "every hour", "every 5 minutes"; nothing without a rhythm.
std::string rhythmInWords(const Rhythm& rhythm);

/// "5 h to 7 h", "up to 2 h", "5 h or more".
std::string lengthInWords(const OutageBounds& bounds);

/// What comes from a file: in printable characters, and cut to a length that a page can hold, which
/// is said.
std::string foreign(std::string_view text);
/// "archive/iperf3_history_reverse_20260518T061230.log:1", or "n/a".
std::string place(const Source& source, const std::vector<std::string>& files);

}  // namespace watch
