#include "run_driver.h"

#include "config/config_file.h"
#include "iperf2/iperf2_history.h"
#include "iperf2/iperf2_run.h"
#include "iperf3/iperf3_history.h"
#include "iperf3/iperf3_run.h"
#include "ping/ping_run.h"
#include "results/result_line.h"
#include "run_limits.h"
#include "run_state.h"
#include "shell.h"
#include "standard_streams.h"
#include "text_buffer.h"
#include "time_services.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr char kBanner[] = "current time %s name %s argc is %d. Server IP address: %s\n";
constexpr char kJoin[] = "%s%s";
constexpr char kCreateDirectories[] = "mkdir -p %s\n";

constexpr int kUsageStatus = 2;
constexpr char kAddressTooLong[] =
    "connTester: the server address has %zu characters, the limit is %zu: give an IPv4 address "
    "or a shorter name (usage: connTester [ADDRESS])\n";
constexpr char kHomeTooLong[] =
    "connTester: HOME has %zu characters, the limit is %zu: set HOME to a shorter path\n";

void takeArguments(int argc, char** argv) {
  myName = argv[0];
  arg_count = argc;
  if (argc != 2 && argc != 3) {
    return;
  }
  // Required (RunDriver.TakesTheLastOfOneOrTwoArgumentsAsTheAddress): the last of one or two
  // arguments; the first of two is ignored.
  const char* const address = argv[argc - 1];
  const std::size_t length = std::strlen(address);
  if (length > kMaxAddressLength) {
    std::fprintf(stderr, kAddressTooLong, length, kMaxAddressLength);
    std::exit(kUsageStatus);
  }
  // Required (RunDriver.CopiesTheAddressByItsOwnLengthWithoutATerminator): no terminator is
  // written, `ipaddr` starts out all zero.
  std::copy_n(address, length, ipaddr);
}

void buildLogPaths() {
  const char* const variable = std::getenv("HOME");
  const char* const home = variable != nullptr ? variable : "(null)";
  if (const std::size_t length = std::strlen(home); length > kMaxHomeLength) {
    std::fprintf(stderr, kHomeTooLong, length, kMaxHomeLength);
    std::exit(kUsageStatus);
  }
  formatInto(LOG_PATH, kJoin, home, kLogDirectory);
  formatInto(LOG_PATH_ARCHIVE, kJoin, LOG_PATH, kArchiveDirectory);
}

void testIperf3(bool reverse) {
  if (ConfigurationParameters.doIperf3Tests) {
    exec_iperf3(reverse);
    write_iperf3_history_log_files(reverse);
  }
}

void runTests() {
  if (ConfigurationParameters.doPingTests) {
    exec_ping();
    read_latest_ping_log_file_unix();
  }
  if (ConfigurationParameters.doIperf2Tests) {
    exec_iperf2();
    write_iperf2_history_log_files();
  }
  testIperf3(false);
  testIperf3(true);
}

bool anyTestIsOn() {
  return ConfigurationParameters.doPingTests || ConfigurationParameters.doIperf2Tests ||
         ConfigurationParameters.doIperf3Tests;
}

}  // namespace

int runConnectionTest(int argc, char** argv) {
  prepareStandardStreams();
  takeArguments(argc, argv);
  init();
  runTests();
  if (anyTestIsOn()) {
    logFormattedResults();
  }
  return 0;
}

int init() {
  getDateTimeString(currentTimeStamp);
  std::printf(kBanner, currentTimeStamp, myName, arg_count, ipaddr);
  readConfigFile();
  buildLogPaths();
  formatInto(cmd, kCreateDirectories, LOG_PATH_ARCHIVE);
  return runCommand();
}
