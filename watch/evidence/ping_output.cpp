#include "evidence/ping_output.h"

#include "evidence/text.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>

namespace watch {

namespace {

constexpr std::string_view kHeader = "PING ";
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

void addReply(PingOutput& output, double ms) {
  output.leastMs = output.replies == 0 ? ms : std::min(output.leastMs, ms);
  output.greatestMs = std::max(output.greatestMs, ms);
  output.sumMs += ms;
  ++output.replies;
  output.fingerprint = output.fingerprint * 1099511628211ULL + std::bit_cast<std::uint64_t>(ms);
}

/// Takes "64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=13.9 ms". A duplicate is none.
bool takeReply(PingOutput& output, std::string_view line) {
  constexpr std::string_view kTime = " time=";
  const std::size_t place = line.rfind(kTime);
  if (place == std::string_view::npos || line.ends_with("(DUP!)")) {
    return place != std::string_view::npos;
  }
  if (const auto ms = leadingNumber<double>(line.substr(place + kTime.size()))) {
    addReply(output, *ms);
  }
  return true;
}

/// Takes "10 packets transmitted, 7 packets received, 30% packet loss".
bool takeStatistics(PingOutput& output, std::string_view line) {
  constexpr std::string_view kSent = " packets transmitted, ";
  const std::size_t place = line.find(kSent);
  if (place == std::string_view::npos) {
    return false;
  }
  output.sent = wholeNumber<std::uint32_t>(line.substr(0, place));
  output.received = leadingNumber<std::uint32_t>(line.substr(place + kSent.size()));
  return true;
}

/// Takes "round-trip min/avg/max/stddev = 13.4/13.9/14.4/0.3 ms", and what other pings write.
void takeSummary(PingOutput& output, std::string_view line) {
  const std::size_t equals = line.find("= ");
  if (equals == std::string_view::npos ||
      !(line.starts_with("round-trip") || line.starts_with("rtt "))) {
    return;
  }
  double numbers[4] = {kNone, kNone, kNone, kNone};
  std::size_t count = 0;
  std::string_view rest = line.substr(equals + 2);
  while (count < std::size(numbers)) {
    const auto number = leadingNumber<double>(rest);
    if (!number) {
      break;
    }
    numbers[count++] = *number;
    const std::size_t slash = rest.find('/');
    rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash + 1);
  }
  if (count >= 3) {
    output.summary = PingSummary{numbers[0], numbers[1], numbers[2], numbers[3]};
  }
  output.summaryIsRead = line.starts_with("round-trip");
  output.summaryIsWhole = output.summaryIsRead && count == std::size(numbers);
}

PingOutput begin(std::string_view header, std::uint32_t file, std::uint32_t number) {
  PingOutput output;
  output.from = {file, number, number};
  header.remove_prefix(kHeader.size());
  output.target = printable(header.substr(0, header.find_first_of(" :(")));
  return output;
}

/// Returns where in `line` an output begins: mostly at its start, but it may follow on one that was
/// cut.
std::size_t findHeader(std::string_view line) {
  const std::size_t place = line.rfind(kHeader);
  return place != std::string_view::npos &&
                 (place == 0 || line.find('(', place) != std::string_view::npos)
             ? place
             : std::string_view::npos;
}

}  // namespace

std::optional<PingOutput> PingOutputReader::take(std::string_view line, std::uint32_t file,
                                                 std::uint32_t number) {
  if (open_ && line.size() > kHeader.size() && !line.starts_with('P')) {
    open_->from.last = number;
    if (takeReply(*open_, line) || takeStatistics(*open_, line)) {
      return std::nullopt;
    }
    takeSummary(*open_, line);
  }
  if (const std::size_t place = findHeader(line); place != std::string_view::npos) {
    return std::exchange(open_, begin(line.substr(place), file, number));
  }
  if (open_) {
    open_->from.last = number;
  } else {
    ++before_;
  }
  return std::nullopt;
}

std::optional<PingOutput> PingOutputReader::end() {
  return std::exchange(open_, std::nullopt);
}

}  // namespace watch
