// The state of one run: settings, results, paths, stamps and the command line.
//
// Every part reads and writes it directly. It is all static storage but for the few program names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Characters that a file path takes at most, its terminator included.
inline constexpr std::size_t kPathCapacity = 256;

/// Characters that a line of the ping or the result history takes at most, its newline and
/// terminator included.
inline constexpr std::size_t kLineCapacity = 128;

/// Characters of a buffer for a date-time stamp, which uses 15 and its terminator.
inline constexpr std::size_t kStampCapacity = 32;

/// Longest text of an iperf record, without a terminator.
inline constexpr std::size_t kTextWidth = 32;

/// The kinds of history that writeDatedLogFile() moves.
enum TEST_TYPE : int { TEST_TYPE_PING = 0, TEST_TYPE_IPERF = 1, TEST_TYPE_RESULTS = 2 };

/// Settings with their compiled defaults; readConfigFile() is the only writer.
struct Configuration {
  std::int32_t numPings = 10;
  std::int32_t iperfTestTime = 10;  // seconds, for each iperf run
  bool debugPrintPing = false;
  // Required (IperfClient.PrintsItsCommandFirstWhenTraced): despite its name, traces the iperf
  // steps.
  bool debugConfFile = false;
  bool pingTestServer = false;  // ping a public resolver instead of the server
  // Required (IperfClient.IsNotTracedByAnyOtherSwitch): no part reads it.
  bool debugPrintIperf = true;
  bool debugPrintLast = false;
  bool debugPrintHistory = false;
  bool doPingTests = true;
  bool doIperf2Tests = false;
  bool doIperf3Tests = true;
  std::int32_t outputFormat = 1;  // unit of the rates: 1 bps, 2 Mebibps, 3 Megabps
};
inline Configuration ConfigurationParameters;

/// The keys of the configuration file, in the order in which a line is searched for them.
// NOLINTNEXTLINE(readability-identifier-naming): a name of the design.
inline constexpr std::string_view configFileKeys[] = {
    "debugConfFile",  "numPings",        "iperfTestTime",  "pingTestServer",
    "debugPrintPing", "debugPrintIperf", "debugPrintLast", "debugPrintHistory",
    "doPingTests",    "doIperf2Tests",   "doIperf3Tests",  "outputFormat"};

/// What the run has measured; the tests fill it, logFormattedResults() reports and clears it.
struct Results {
  char dateTime[kStampCapacity] = {};  // stamp of the latest measurement; iperf3 runs set none
  bool latencyValid = false;
  std::uint32_t latencyMs = 0;
  bool writeRateValid = false;
  unsigned long long writeRateBps = 0;  // client to server, bits per second
  bool readRateValid = false;
  unsigned long long readRateBps = 0;  // server to client, bits per second
};
static_assert(sizeof(unsigned long long) == sizeof(std::uint64_t));
inline Results outputResults;

/// The log directory and its archive; both end in "/", so that a file name follows directly.
inline char LOG_PATH[kPathCapacity];
inline char LOG_PATH_ARCHIVE[kPathCapacity];

/// The run's stamp; every archive move refreshes it after it has named the archived file.
inline char currentTimeStamp[kStampCapacity];
inline char pingStartTimeStamp[kStampCapacity];
inline char iperfStartTimeStamp[kStampCapacity];

/// The shell command line in hand. It keeps its text until the next one is built.
inline char cmd[512];

/// The test server's address, as given; empty without one.
inline char ipaddr[16];

/// Path of the file that the iperf3 step has in hand, or the start of a longer one.
inline char filepath[128];

inline const char* myName = "";
inline std::int32_t arg_count = 0;

/// Names of the Windows variant; the two programs are replaced before they are used.
inline std::string log_folder = "logs\\";
inline std::string latestfile_perf2 = "iperf2_latest.log";
inline std::string iperf2path = "iperf2\\";
inline std::string iperf2_prog = "iperf2-win-2.1.7.exe";
inline std::string iperf3path = "iperf3\\";
inline std::string iperf3_prog = "iperf3.exe";
