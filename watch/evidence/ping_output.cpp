#include "evidence/ping_output.h"

#include "evidence/text.h"

#include <cmath>
#include <limits>

namespace watch {

namespace {

constexpr std::string_view kHeader = "PING ";
/// Stands before the figures of a summary.
constexpr std::string_view kSummaryFigures = "= ";
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

/// Takes "64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=13.9 ms". A duplicate is no reply, and
/// neither is a line that was cut: its time may be. Returns whether the line ends there.
bool takeReply(PingOutput& output, std::string_view line) {
  constexpr std::string_view kTime = " time=";
  constexpr std::string_view kUnit = " ms";
  const std::size_t behind = line.rfind('=') + 1;
  if (!line.substr(0, behind).ends_with(kTime)) {
    return false;
  }
  std::string_view rest = line.substr(behind);
  const auto ms = takeNumber<double>(rest);
  if (ms && std::isfinite(*ms) && *ms >= 0 && rest.starts_with(kUnit) &&
      rest.find("(DUP!)") == std::string_view::npos) {
    output.replies.push_back(*ms);
  }
  return rest == kUnit;
}

/// Takes "10 packets transmitted, 7 packets received, 30% packet loss".
void takeStatistics(PingOutput& output, std::string_view line) {
  constexpr std::string_view kSent = " packets transmitted, ";
  const std::size_t place = line.find(kSent);
  if (place == std::string_view::npos) {
    return;
  }
  std::string_view rest = line.substr(place + kSent.size());
  const auto received = takeNumber<std::uint32_t>(rest);
  if (received && (rest.starts_with(" packets received") || rest.starts_with(" received"))) {
    output.sent = wholeNumber<std::uint32_t>(line.substr(0, place));
    output.received = received;
  }
}

/// Returns where in `line` an output begins that follows on what was cut, or npos.
std::size_t findHeaderBehind(std::string_view line) {
  const std::size_t place = line.rfind(kHeader);
  return place != 0 && place != std::string_view::npos &&
                 line.find('(', place) != std::string_view::npos
             ? place
             : std::string_view::npos;
}

}  // namespace

bool isPingSummary(std::string_view line) {
  return (line.starts_with("round-trip") || line.starts_with("rtt ")) &&
         line.find(kSummaryFigures) != std::string_view::npos;
}

/// "round-trip min/avg/max/stddev = 13.4/13.9/14.4/0.3 ms", and what other pings write.
void takePingSummary(std::string_view line, PingOutput& output) {
  double numbers[4] = {kNone, kNone, kNone, kNone};
  std::size_t count = 0;
  bool lastIsWhole = false;
  std::string_view rest = line.substr(line.find(kSummaryFigures) + kSummaryFigures.size());
  while (count < std::size(numbers)) {
    const auto number = takeNumber<double>(rest);
    if (!number) {
      break;
    }
    numbers[count++] = *number;
    lastIsWhole = rest.starts_with('/') || rest.starts_with(" ms");
    rest.remove_prefix(rest.starts_with('/') ? 1 : 0);
  }
  output.summaryIsRead = line.starts_with("round-trip");
  output.summaryIsWhole = output.summaryIsRead && count == std::size(numbers);
  if (count == std::size(numbers) || (count + 1 == std::size(numbers) && lastIsWhole)) {
    output.summary = PingSummary{numbers[0], numbers[1], numbers[2], numbers[3]};
  }
}

void PingOutputReader::begin(std::string_view header, std::uint32_t file, std::uint32_t number) {
  header.remove_prefix(kHeader.size());
  PingOutput& output = outputs_.emplace_back();
  output.target = printable(header.substr(0, header.find_first_of(" (")));
  output.from = {file, number, number};
  hasBegun_ = true;
}

void PingOutputReader::take(std::string_view line, std::uint32_t file, std::uint32_t number) {
  const bool begins = line.starts_with(kHeader);
  if (!begins && hasBegun_) {
    PingOutput& output = outputs_.back();
    output.from.last = number;
    if (takeReply(output, line)) {
      return;
    }
    takeStatistics(output, line);
    if (isPingSummary(line)) {
      takePingSummary(line, output);
    }
  }
  const std::size_t place = findHeaderBehind(line);
  if (begins) {
    begin(line.substr(0, place), file, number);
  } else if (!hasBegun_) {
    ++before_;
  }
  if (place != std::string_view::npos) {
    begin(line.substr(place), file, number);
  }
}

}  // namespace watch
