#include "run_state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::StrEq;

std::string zeros(std::size_t count) {
  return std::string(count, '\0');
}

template <std::size_t N>
std::string whole(const char (&buffer)[N]) {
  return {buffer, N};
}

auto fieldsOf(const Configuration& configuration) {
  const auto& [a, b, c, d, e, f, g, h, i, j, k, l] = configuration;
  return std::tuple(a, b, c, d, e, f, g, h, i, j, k, l);
}

auto fieldsOf(const Results& results) {
  const auto& [date, a, b, c, d, e, f] = results;
  return std::tuple(whole(date), a, b, c, d, e, f);
}

/// The globals as they are before main() starts; the other tests put their own values into them.
struct StartUp {
  Configuration configuration = ConfigurationParameters;
  Results results = outputResults;
  std::vector<std::string> buffers = {whole(LOG_PATH),
                                      whole(LOG_PATH_ARCHIVE),
                                      whole(currentTimeStamp),
                                      whole(pingStartTimeStamp),
                                      whole(iperfStartTimeStamp),
                                      whole(cmd),
                                      whole(ipaddr),
                                      whole(filepath)};
  std::vector<std::string> names = {log_folder,  latestfile_perf2, iperf2path,
                                    iperf2_prog, iperf3path,       iperf3_prog};
};
const StartUp atStart;

// An initializer names its fields in their order, or the compiler refuses it.

TEST(RunState, StartsWithTheDefaultsOfTheConfiguration) {
  const Configuration defaults = {.numPings = 10,
                                  .iperfTestTime = 10,
                                  .debugPrintPing = false,
                                  .debugConfFile = false,
                                  .pingTestServer = false,
                                  .debugPrintIperf = true,
                                  .debugPrintLast = false,
                                  .debugPrintHistory = false,
                                  .doPingTests = true,
                                  .doIperf2Tests = false,
                                  .doIperf3Tests = true,
                                  .outputFormat = 1};

  EXPECT_EQ(fieldsOf(atStart.configuration), fieldsOf(defaults));
}

TEST(RunState, HasTheConfigurationsKeysInTheOrderOfTheSearch) {
  EXPECT_THAT(
      configFileKeys,
      ElementsAre(StrEq("debugConfFile"), StrEq("numPings"), StrEq("iperfTestTime"),
                  StrEq("pingTestServer"), StrEq("debugPrintPing"), StrEq("debugPrintIperf"),
                  StrEq("debugPrintLast"), StrEq("debugPrintHistory"), StrEq("doPingTests"),
                  StrEq("doIperf2Tests"), StrEq("doIperf3Tests"), StrEq("outputFormat")));
}

TEST(RunState, StartsWithoutResults) {
  const Results empty = {.dateTime = {},
                         .latencyValid = false,
                         .latencyMs = 0,
                         .writeRateValid = false,
                         .writeRateBps = 0,
                         .readRateValid = false,
                         .readRateBps = 0};

  EXPECT_EQ(fieldsOf(atStart.results), fieldsOf(empty));
}

TEST(RunState, HasNumbersOfTheirWidths) {
  EXPECT_TRUE((std::is_same_v<decltype(Configuration::numPings), std::int32_t>));
  EXPECT_TRUE((std::is_same_v<decltype(Configuration::iperfTestTime), std::int32_t>));
  EXPECT_TRUE((std::is_same_v<decltype(Configuration::outputFormat), std::int32_t>));
  EXPECT_TRUE((std::is_same_v<decltype(Results::latencyMs), std::uint32_t>));
  EXPECT_TRUE((std::is_same_v<decltype(Results::writeRateBps), unsigned long long>));
  EXPECT_TRUE((std::is_same_v<decltype(Results::readRateBps), unsigned long long>));
  EXPECT_TRUE((std::is_same_v<decltype(arg_count), std::int32_t>));
}

TEST(RunState, StartsWithBuffersOfTheirCapacitiesAllZero) {
  EXPECT_THAT(atStart.buffers, ElementsAre(zeros(256), zeros(256), zeros(32), zeros(32), zeros(32),
                                           zeros(512), zeros(16), zeros(128)));
}

TEST(RunState, StartsWithTheNamesOfTheWindowsVariant) {
  EXPECT_THAT(atStart.names, ElementsAre("logs\\", "iperf2_latest.log", "iperf2\\",
                                         "iperf2-win-2.1.7.exe", "iperf3\\", "iperf3.exe"));
}

TEST(RunState, NumbersTheKindsOfHistory) {
  EXPECT_EQ(TEST_TYPE_PING, 0);
  EXPECT_EQ(TEST_TYPE_IPERF, 1);
  EXPECT_EQ(TEST_TYPE_RESULTS, 2);
}

}  // namespace
