#include "evidence/iperf3_line.h"

#include "evidence/text.h"

#include <algorithm>

namespace watch {

namespace {

constexpr std::size_t kColumns = 11;
/// Of seconds since the epoch, from 2001 to 2286.
constexpr std::size_t kEpochDigits = 10;

/// Returns nothing for an empty text, and sets `failed` for what is no number.
template <class Number>
std::optional<Number> optionalNumber(std::string_view text, bool& failed) {
  const auto number = wholeNumber<Number>(text);
  failed = failed || (!number && !text.empty());
  return number;
}

/// Columns of the bytes and their rate: what was sent, and what was received.
constexpr std::size_t kSent = 7;
constexpr std::size_t kReceived = 9;

/// `amounts` are the columns of the direction; those of the other one hold zeros.
std::optional<Iperf3Line> parse(std::string_view line, std::size_t amounts, std::size_t zeros) {
  std::string_view columns[kColumns];
  if (!splitColumns(line, columns) || columns[5] != "0" || columns[zeros] != "0" ||
      columns[zeros + 1] != "0") {
    return std::nullopt;
  }
  const std::string_view start = withoutCarriageReturn(columns[0]);
  bool failed = start.size() > kEpochDigits;
  Iperf3Line test;
  test.start = optionalNumber<EpochSeconds>(start, failed);
  test.duration = optionalNumber<std::uint32_t>(withoutCarriageReturn(columns[6]), failed);
  const auto clientPort = wholeNumber<std::uint16_t>(columns[2]);
  const auto serverPort = wholeNumber<std::uint16_t>(columns[4]);
  const auto bytes = wholeNumber<std::uint64_t>(columns[amounts]);
  const auto bps = wholeNumber<double>(columns[amounts + 1]);
  if (failed || !clientPort || !serverPort || !bytes || !bps) {
    return std::nullopt;
  }
  test.client = printable(columns[1]);
  test.server = printable(columns[3]);
  test.clientPort = *clientPort;
  test.serverPort = *serverPort;
  test.bytes = *bytes;
  test.bps = *bps;
  return test;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

std::optional<Iperf3Line> parseForwardLine(std::string_view line) {
  return parse(line, kSent, kReceived);
}

std::optional<Iperf3Line> parseReverseLine(std::string_view line) {
  return parse(line, kReceived, kSent);
}

std::size_t lastIperf3Line(std::string_view line) {
  const std::size_t comma = commaBefore(line, kColumns - 1);
  if (comma == std::string_view::npos || comma == 0) {
    return std::string_view::npos;
  }
  constexpr std::string_view kNothing = ",,0,,0,0,,0,0,0,0";
  if (line.substr(comma) == kNothing) {
    return comma;
  }
  const std::string_view before = withoutCarriageReturn(line.substr(0, comma));
  if (before.size() <= kEpochDigits) {
    return std::string_view::npos;
  }
  const std::size_t begin = before.size() - kEpochDigits;
  return std::ranges::all_of(before.substr(begin), isDigit) ? begin : std::string_view::npos;
}

bool isSameTest(const Iperf3Line& one, const Iperf3Line& other) {
  return one.start && one.start == other.start && one.clientPort == other.clientPort &&
         one.serverPort == other.serverPort;
}

}  // namespace watch
