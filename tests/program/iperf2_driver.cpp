// A tester with iperf2 switched on, which the configuration file cannot do. Its iperf2 client is
// /tmp/bin/iperf, where a test puts what it needs.
//
//   iperf2_driver [ADDRESS]        the whole run
//   iperf2_driver ADDRESS STEP...  the start of a run, then only these steps
#include "iperf2/iperf2_history.h"
#include "iperf2/iperf2_run.h"
#include "results/result_line.h"
#include "run_driver.h"
#include "run_state.h"
#include "standard_streams.h"
#include "support/fake_shell.h"
#include "text_buffer.h"

#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace {

const std::map<std::string, std::function<void()>> kSteps = {
    {"exec", exec_iperf2},
    {"read", read_latest_iperf2_log_file},
    {"report", write_iperf2_history_log_files},
    {"result", logFormattedResults}};

constexpr std::string_view kClient = "/usr/bin/iperf";
constexpr char kClientOfTheTest[] = "/tmp/bin/iperf";

int runClientOfTheTest(const char* command) {
  std::string text = command;
  if (text.starts_with(kClient)) {
    text.replace(0, kClient.size(), kClientOfTheTest);
  }
  return realShell(text.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  fakeShell = runClientOfTheTest;
  ConfigurationParameters.doIperf2Tests = true;
  if (argc <= 2) {
    return runConnectionTest(argc, argv);
  }
  prepareStandardStreams();
  formatInto(ipaddr, "%s", argv[1]);
  init();
  for (int i = 2; i < argc; ++i) {
    kSteps.at(argv[i])();
  }
  return 0;
}
