#include "evidence/iperf3_report.h"

#include "support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <sstream>
#include <string>

namespace watch {
namespace {

template <class Number>
std::string told(const std::optional<Number>& number) {
  return number ? fmt::format("{:.12g}", static_cast<double>(*number)) : "-";
}

std::string told(const std::optional<LoadedRoundTrips>& times) {
  return times ? fmt::format("{:.12g}/{:.12g}/{:.12g}", times->least, times->mean, times->most)
               : "-";
}

/// "-" for nothing, "none" for no report.
std::string told(const std::optional<Iperf3Report>& report) {
  if (!report) {
    return "none";
  }
  return fmt::format("{} {} {}-{} {} {} {} {} {} {} {:.12g} \"{}\"",
                     report->release.empty() ? "-" : report->release,
                     report->start ? std::to_string(*report->start) : "-", report->clientPort,
                     report->serverPort, told(report->bytes), told(report->seconds),
                     told(report->sentBps), told(report->receivedBps), told(report->retransmits),
                     told(report->roundTrips), report->emptySeconds, report->error);
}

TEST(Iperf3Report, OfEachReleaseIsRead) {
  std::istringstream rows(readFile(TEST_DIR "/evidence/iperf3_reports.txt"));
  std::string row;
  std::getline(rows, row);
  int count = 0;
  for (; std::getline(rows, row); ++count) {
    const std::string name = row.substr(0, row.find(": "));

    EXPECT_EQ(name + ": " + told(parseIperf3Report(readFile(TEST_DATA_DIR "/iperf3/" + name))),
              row);
  }
  EXPECT_EQ(count, std::ranges::count_if(
                       std::filesystem::recursive_directory_iterator(TEST_DATA_DIR "/iperf3"),
                       [](const auto& entry) { return entry.path().extension() == ".json"; }));
}

TEST(Iperf3Report, IsNoneWhenItWasCutAnywhere) {
  const std::string whole = readFile(TEST_DATA_DIR "/iperf3/3.12/reverse.json");
  for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
    ASSERT_EQ(told(parseIperf3Report(whole.substr(0, length))), "none") << length;
  }
}

TEST(Iperf3Report, TellsOnlyWhatHasItsType) {
  const struct {
    std::string text;
    std::string told;
  } cases[] = {
      {"{}", R"(- - 0-0 - - - - - - 0 "")"},
      {"{}\r\n", R"(- - 0-0 - - - - - - 0 "")"},
      {"{} {}", "none"},
      {std::string("{}\0x", 4), "none"},
      {"[]", "none"},
      {"null", "none"},
      {"", "none"},
      {R"({"start":7,"intervals":7,"error":7})", R"(- - 0-0 - - - - - - 0 "")"},
      {R"({"start":{"timestamp":{"timesecs":"7"}},"error":null})", R"(- - 0-0 - - - - - - 0 "")"},
      {R"({"start":{"timestamp":{"timesecs":7.5}}})", R"(- - 0-0 - - - - - - 0 "")"},
      {R"({"start":{"timestamp":{"timesecs":9223372036854775808}}})",
       R"(- - 0-0 - - - - - - 0 "")"},
      {R"({"start":{"timestamp":{"timesecs":-7}}})", R"(- -7 0-0 - - - - - - 0 "")"},
      {R"({"start":{"connected":[]}})", R"(- - 0-0 - - - - - - 0 "")"},
      {R"({"start":{"connected":[{"local_port":65535}]}})", R"(- - 65535-0 - - - - - - 0 "")"},
      {R"({"start":{"connected":[{"local_port":65536}]}})", R"(- - 0-0 - - - - - - 0 "")"},
      {R"({"start":{"connected":[{"local_port":-1}]}})", R"(- - 0-0 - - - - - - 0 "")"},
      {R"({"intervals":[{"sum":{"bytes":0,"seconds":1.5}},{"sum":{"bytes":1,"seconds":8}},
                     {"sum":{"bytes":0.0,"seconds":2}},{"sum":{"bytes":0}}]})",
       R"(- - 0-0 - - - - - - 3.5 "")"},
      {R"({"intervals":[{"sum":{"bytes":"0"}},{"sum":0},0,null,{}]})",
       R"(- - 0-0 - - - - - - 0 "")"},
      {R"({"error":"\u001b[2J\u0000\u00e9"})", R"(- - 0-0 - - - - - - 0 "?[2J???")"},
      {std::string(100'000, '['), "none"},
      {R"({"error":)" + std::string(100'000, '[') + std::string(100'000, ']') + "}",
       R"(- - 0-0 - - - - - - 0 "")"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text.substr(0, 100));

    EXPECT_EQ(told(parseIperf3Report(c.text)), c.told);
  }
}

}  // namespace
}  // namespace watch
