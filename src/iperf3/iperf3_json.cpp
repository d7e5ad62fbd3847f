#include "iperf3/iperf3_json.h"

#include "run_state.h"
#include "text_buffer.h"
#include "time_services.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <optional>
#include <string>

namespace {

constexpr char kHeading[] = "\n= IPERF3 history  ====================================\n";

/// Characters of a path that the Windows variant takes, its terminator included.
constexpr std::size_t kCopyCapacity = 128;

// What stands between a member's name and its value, as a number of characters.
constexpr std::size_t kTab = 1;
constexpr std::size_t kTabAndQuote = 2;
constexpr std::size_t kQuoteColonTab = 3;

template <char (iperf3_status::*Field)[kTextWidth]>
void storeText(iperf3_status& status, const std::string& value) {
  copyInto(status.*Field, value);
}

template <std::int32_t iperf3_status::*Field>
void storeNumber(iperf3_status& status, const std::string& value) {
  status.*Field = std::stoi(value);
}

/// A member that stands on a line of its own: what follows the colon before its value, what ends
/// the value, and where it goes.
struct Member {
  const char* name;
  std::size_t lead;
  char delimiter;
  void (*store)(iperf3_status& status, const std::string& value);
};

// In the order in which a line is tested for them.
constexpr Member kMembers[] = {
    {"local_host", kTabAndQuote, '"', storeText<&iperf3_status::clientIp>},
    {"local_port", kTab, ',', storeNumber<&iperf3_status::clientPort>},
    {"remote_host", kTabAndQuote, '"', storeText<&iperf3_status::serverIp>},
    {"remote_port", kTab, ',', storeNumber<&iperf3_status::serverPort>},
    {"timesecs", kTab, ',', storeText<&iperf3_status::date>},
    {"duration", kTab, ',', storeText<&iperf3_status::testTime>},
    {"reverse", kTab, ',', storeText<&iperf3_status::reverse>}};

/// Takes each member that `line` names, and cuts the line down to what follows the colon: its first
/// one, wherever the name stands. The later members are looked for in what is left.
void takeMembers(std::string& line, iperf3_status& status) {
  for (const Member& member : kMembers) {
    const bool named = line.find(member.name) != std::string::npos;
    const std::size_t colon = named ? line.find(':') : std::string::npos;
    if (colon != std::string::npos) {
      line.erase(0, colon + 1 + member.lead);
      member.store(status, line.substr(0, line.find(member.delimiter)));
    }
  }
}

/// Reads the lines of a block up to the one that holds its closing brace, joined into one text.
std::string readBlock(std::istream& report) {
  std::string block;
  for (std::string line; std::getline(report, line);) {
    block += line;
    if (line.find('}') != std::string::npos) {
      break;
    }
  }
  return block;
}

/// Returns the value of `member` in `block`, up to `delimiter`, or nothing without that member.
std::optional<std::string> blockValue(const std::string& block, const std::string& member,
                                      char delimiter) {
  const std::size_t name = block.find(member);
  if (name == std::string::npos) {
    return std::nullopt;
  }
  const std::size_t start = std::min(name + member.size() + kQuoteColonTab, block.size());
  return block.substr(start, block.find(delimiter, start) - start);
}

/// What the report of one direction is read for, and where that goes.
struct Direction {
  char reverse;
  const char* sums;
  unsigned long long iperf3_status::*length;
  double iperf3_status::*bps;
  bool Results::*rateValid;
  unsigned long long Results::*rateBps;
};
constexpr Direction kDirections[] = {
    {'0', "sum_sent", &iperf3_status::lengthSent, &iperf3_status::bpsSent, &Results::writeRateValid,
     &Results::writeRateBps},
    {'1', "sum_received", &iperf3_status::lengthRcvd, &iperf3_status::bpsRcvd,
     &Results::readRateValid, &Results::readRateBps}};

/// Returns the direction that the report has named by now, or null.
const Direction* directionOf(const iperf3_status& status) {
  const auto* const direction =
      std::ranges::find(kDirections, status.reverse[0], &Direction::reverse);
  return direction != std::end(kDirections) ? direction : nullptr;
}

void takeSums(std::istream& report, const Direction& direction, iperf3_status& status) {
  const std::string block = readBlock(report);
  if (const auto value = blockValue(block, "bytes", ','); value) {
    status.*direction.length = static_cast<unsigned long long>(std::stoll(*value));
  }
  if (const auto value = blockValue(block, "bits_per_second", '\t'); value) {
    // Required (Iperf3Json.TakesTheDecimalsFromTheStandardOutputStreamWithARate): the rate is
    // rounded to single precision, and std::cout loses its decimals for good.
    status.*direction.bps = static_cast<double>(std::strtof(value->c_str(), nullptr));
    std::cout.precision(0);
  }
}

void readReport(const char* path, iperf3_status& status) {
  std::ifstream report(path);
  for (std::string line; std::getline(report, line);) {
    takeMembers(line, status);
    const Direction* const direction = directionOf(status);
    if (direction != nullptr && line.find(direction->sums) != std::string::npos) {
      takeSums(report, *direction, status);
    }
  }
}

void printReport(const iperf3_status& status) {
  std::fputs(kHeading, stdout);
  printIperf3Status(status);
}

/// Drops the fraction. A rate that is negative or not a number counts as 0, one too large as the
/// largest number.
unsigned long long wholeBps(double bps) {
  constexpr double kTwoTo64 = 18446744073709551616.0;
  if (bps >= kTwoTo64) {
    return std::numeric_limits<unsigned long long>::max();
  }
  return bps > 0.0 ? static_cast<unsigned long long>(bps) : 0;
}

void recordRate(const iperf3_status& status) {
  if (const Direction* const direction = directionOf(status)) {
    outputResults.*direction->rateValid = true;
    outputResults.*direction->rateBps = wholeBps(status.*direction->bps);
  }
}

}  // namespace

void iperf3JsonToCsvUnix(const char* path, iperf3_status& status) {
  readReport(path, status);
  printReport(status);
  recordRate(status);
}

void iperf3JsonToCsv(const char* path, iperf3_status& status) {
  char copy[kCopyCapacity];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
  // Required (Iperf3JsonOnWindows.TakesThePathAsAFormatOf127Characters): the path is its own
  // format, so that a "%" in it is interpreted.
  formatInto(copy, path);
#pragma GCC diagnostic pop
  readReport(copy, status);
  if (ConfigurationParameters.debugConfFile && ConfigurationParameters.debugPrintHistory) {
    printReport(status);
  }
  recordRate(status);
  getDateTimeString(outputResults.dateTime);
}
