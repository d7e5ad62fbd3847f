#include "run_state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <type_traits>

namespace {

using testing::ElementsAre;
using testing::StrEq;

template <std::size_t N>
std::string whole(const char (&buffer)[N]) {
  return {buffer, N};
}

/// The globals as they are before main() starts; the other tests put their own values into them.
struct StartUp {
  Configuration configuration = ConfigurationParameters;
  Results results = outputResults;
  std::string logPath = whole(LOG_PATH);
  std::string archivePath = whole(LOG_PATH_ARCHIVE);
  std::string currentStamp = whole(currentTimeStamp);
  std::string pingStamp = whole(pingStartTimeStamp);
  std::string iperfStamp = whole(iperfStartTimeStamp);
  std::string command = whole(cmd);
  std::string address = whole(ipaddr);
  std::string path = whole(filepath);
  std::string logFolder = log_folder;
  std::string latestIperf2 = latestfile_perf2;
  std::string iperf2Folder = iperf2path;
  std::string iperf2Program = iperf2_prog;
  std::string iperf3Folder = iperf3path;
  std::string iperf3Program = iperf3_prog;
};
const StartUp atStart;

TEST(Configuration, StartsWithItsDefaults) {
  const Configuration& start = atStart.configuration;

  EXPECT_EQ(start.numPings, 10);
  EXPECT_EQ(start.iperfTestTime, 10);
  EXPECT_FALSE(start.debugPrintPing);
  EXPECT_FALSE(start.debugConfFile);
  EXPECT_FALSE(start.pingTestServer);
  EXPECT_TRUE(start.debugPrintIperf);
  EXPECT_FALSE(start.debugPrintLast);
  EXPECT_FALSE(start.debugPrintHistory);
  EXPECT_TRUE(start.doPingTests);
  EXPECT_FALSE(start.doIperf2Tests);
  EXPECT_TRUE(start.doIperf3Tests);
  EXPECT_EQ(start.outputFormat, 1);
}

TEST(Configuration, HasItsFieldsInTheirOrder) {
  const auto& [numPings, iperfTestTime, debugPrintPing, debugConfFile, pingTestServer,
               debugPrintIperf, debugPrintLast, debugPrintHistory, doPingTests, doIperf2Tests,
               doIperf3Tests, outputFormat] = ConfigurationParameters;

  EXPECT_EQ(&numPings, &ConfigurationParameters.numPings);
  EXPECT_EQ(&iperfTestTime, &ConfigurationParameters.iperfTestTime);
  EXPECT_EQ(&debugPrintPing, &ConfigurationParameters.debugPrintPing);
  EXPECT_EQ(&debugConfFile, &ConfigurationParameters.debugConfFile);
  EXPECT_EQ(&pingTestServer, &ConfigurationParameters.pingTestServer);
  EXPECT_EQ(&debugPrintIperf, &ConfigurationParameters.debugPrintIperf);
  EXPECT_EQ(&debugPrintLast, &ConfigurationParameters.debugPrintLast);
  EXPECT_EQ(&debugPrintHistory, &ConfigurationParameters.debugPrintHistory);
  EXPECT_EQ(&doPingTests, &ConfigurationParameters.doPingTests);
  EXPECT_EQ(&doIperf2Tests, &ConfigurationParameters.doIperf2Tests);
  EXPECT_EQ(&doIperf3Tests, &ConfigurationParameters.doIperf3Tests);
  EXPECT_EQ(&outputFormat, &ConfigurationParameters.outputFormat);
}

TEST(Configuration, HoldsNumbersOf32Bits) {
  EXPECT_TRUE((std::is_same_v<decltype(Configuration::numPings), std::int32_t>));
  EXPECT_TRUE((std::is_same_v<decltype(Configuration::iperfTestTime), std::int32_t>));
  EXPECT_TRUE((std::is_same_v<decltype(Configuration::outputFormat), std::int32_t>));
}

TEST(ConfigFileKeys, StandInTheOrderOfTheSearch) {
  EXPECT_THAT(
      configFileKeys,
      ElementsAre(StrEq("debugConfFile"), StrEq("numPings"), StrEq("iperfTestTime"),
                  StrEq("pingTestServer"), StrEq("debugPrintPing"), StrEq("debugPrintIperf"),
                  StrEq("debugPrintLast"), StrEq("debugPrintHistory"), StrEq("doPingTests"),
                  StrEq("doIperf2Tests"), StrEq("doIperf3Tests"), StrEq("outputFormat")));
}

TEST(OutputResults, StartEmpty) {
  const Results& start = atStart.results;

  EXPECT_EQ(whole(start.dateTime), std::string(32, '\0'));
  EXPECT_FALSE(start.latencyValid);
  EXPECT_EQ(start.latencyMs, 0U);
  EXPECT_FALSE(start.writeRateValid);
  EXPECT_EQ(start.writeRateBps, 0U);
  EXPECT_FALSE(start.readRateValid);
  EXPECT_EQ(start.readRateBps, 0U);
}

TEST(OutputResults, HaveTheirFieldsInTheirOrder) {
  const auto& [dateTime, latencyValid, latencyMs, writeRateValid, writeRateBps, readRateValid,
               readRateBps] = outputResults;

  EXPECT_EQ(&dateTime, &outputResults.dateTime);
  EXPECT_EQ(&latencyValid, &outputResults.latencyValid);
  EXPECT_EQ(&latencyMs, &outputResults.latencyMs);
  EXPECT_EQ(&writeRateValid, &outputResults.writeRateValid);
  EXPECT_EQ(&writeRateBps, &outputResults.writeRateBps);
  EXPECT_EQ(&readRateValid, &outputResults.readRateValid);
  EXPECT_EQ(&readRateBps, &outputResults.readRateBps);
}

TEST(OutputResults, HoldALatencyOf32AndRatesOf64Bits) {
  EXPECT_TRUE((std::is_same_v<decltype(Results::latencyMs), std::uint32_t>));
  EXPECT_TRUE((std::is_same_v<decltype(Results::writeRateBps), unsigned long long>));
  EXPECT_TRUE((std::is_same_v<decltype(Results::readRateBps), unsigned long long>));
}

TEST(TextBuffers, HaveTheirCapacitiesAndStartAllZero) {
  EXPECT_EQ(atStart.logPath, std::string(256, '\0'));
  EXPECT_EQ(atStart.archivePath, std::string(256, '\0'));
  EXPECT_EQ(atStart.currentStamp, std::string(32, '\0'));
  EXPECT_EQ(atStart.pingStamp, std::string(32, '\0'));
  EXPECT_EQ(atStart.iperfStamp, std::string(32, '\0'));
  EXPECT_EQ(atStart.command, std::string(512, '\0'));
  EXPECT_EQ(atStart.address, std::string(16, '\0'));
  EXPECT_EQ(atStart.path, std::string(128, '\0'));
}

TEST(ProgramNames, StartWithThoseOfTheWindowsVariant) {
  EXPECT_EQ(atStart.logFolder, "logs\\");
  EXPECT_EQ(atStart.latestIperf2, "iperf2_latest.log");
  EXPECT_EQ(atStart.iperf2Folder, "iperf2\\");
  EXPECT_EQ(atStart.iperf2Program, "iperf2-win-2.1.7.exe");
  EXPECT_EQ(atStart.iperf3Folder, "iperf3\\");
  EXPECT_EQ(atStart.iperf3Program, "iperf3.exe");
}

TEST(ArgumentCount, Has32Bits) {
  EXPECT_TRUE((std::is_same_v<decltype(arg_count), std::int32_t>));
}

TEST(HistoryKinds, HaveTheirNumbers) {
  EXPECT_EQ(TEST_TYPE_PING, 0);
  EXPECT_EQ(TEST_TYPE_IPERF, 1);
  EXPECT_EQ(TEST_TYPE_RESULTS, 2);
}

}  // namespace
