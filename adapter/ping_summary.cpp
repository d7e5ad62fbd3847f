#include "ping_summary.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <string_view>

namespace {

constexpr char kReplyTime[] = " time=";
constexpr char kReplyTimeScan[] = " time=%lf ms%n";

// The statistics of busybox; the duplicates are left out when there are none.
constexpr char kReceivedScan[] = "%*u packets transmitted, %llu packets received%n";
constexpr char kDuplicatesScan[] = ", %llu duplicates%n";

// The "mdev" of iputils is the population standard deviation: see its ping(8).
constexpr std::string_view kIputilsLabel = "rtt min/avg/max/mdev = ";
constexpr std::string_view kThreeNumbersLabel = "round-trip min/avg/max = ";
constexpr std::string_view kRecognisedLabel = "round-trip min/avg/max/stddev = ";

/// Adds the time of a reply such as "64 bytes from 10.0.0.5: seq=0 ttl=64 time=0.025 ms". A
/// duplicate counts, as it does in the other numbers of the summary; "time<1 ms" is no number.
void addReply(const std::string& line, ReplyTimes& times) {
  const std::size_t label = line.find(kReplyTime);
  if (label == std::string::npos) {
    return;
  }
  double timeMs = 0.0;
  int end = 0;
  std::sscanf(line.c_str() + label, kReplyTimeScan, &timeMs, &end);
  if (end == 0) {
    return;
  }
  // Welford's update: the difference of two large means of squares would lose the decimals.
  ++times.count;
  const double deviation = timeMs - times.meanMs;
  times.meanMs += deviation / static_cast<double>(times.count);
  times.squaredDeviations += deviation * (timeMs - times.meanMs);
}

/// Takes the number of replies from a line such as "4 packets transmitted, 3 packets received, 1
/// duplicates, 25% packet loss".
void takeStatistics(const std::string& line, ReplyTimes& times) {
  unsigned long long received = 0;
  int end = 0;
  std::sscanf(line.c_str(), kReceivedScan, &received, &end);
  if (end == 0) {
    return;
  }
  unsigned long long duplicates = 0;
  int endOfDuplicates = 0;
  std::sscanf(line.c_str() + end, kDuplicatesScan, &duplicates, &endOfDuplicates);
  times.expectedCount = received + (endOfDuplicates != 0 ? duplicates : 0);
}

/// The population standard deviation with three decimals, as pings print it.
std::string standardDeviation(const ReplyTimes& times) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(3)
       << std::sqrt(times.squaredDeviations / static_cast<double>(times.count));
  return text.str();
}

/// Whether `line` is `label`, then `count` numbers with slashes between them, then " ms".
bool isSummary(const std::string& line, std::string_view label, int count) {
  if (!line.starts_with(label)) {
    return false;
  }
  const char* text = line.c_str() + label.size();
  for (int left = count; left > 0; --left) {
    char* end = nullptr;
    std::strtod(text, &end);
    if (end == text || *end != (left > 1 ? '/' : ' ')) {
      return false;
    }
    text = end + 1;
  }
  return std::string_view(text).starts_with("ms");
}

}  // namespace

std::string adaptLine(std::string line, ReplyTimes& times) {
  addReply(line, times);
  takeStatistics(line, times);
  const bool allSeen = times.count > 0 && times.count == times.expectedCount;
  if (isSummary(line, kIputilsLabel, 4)) {
    line.replace(0, kIputilsLabel.size(), kRecognisedLabel);
  } else if (allSeen && isSummary(line, kThreeNumbersLabel, 3)) {
    line.insert(line.find(" ms"), std::string("/").append(standardDeviation(times)));
    line.replace(0, kThreeNumbersLabel.size(), kRecognisedLabel);
  }
  return line;
}
