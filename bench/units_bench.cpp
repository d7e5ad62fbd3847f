// Times the units of a run, each on what a usual run gives it.
//
// Usage: units_bench [OPTION OF GOOGLE BENCHMARK...]    (behind tests/support/private_machine)
#include "config/config_file.h"
#include "history_files.h"
#include "iperf2/iperf2_run.h"
#include "iperf3/iperf3_history.h"
#include "iperf3/iperf3_json.h"
#include "ping/ping_run.h"
#include "ping/ping_windows.h"
#include "results/result_line.h"
#include "run_state.h"
#include "support/files.h"
#include "support/log_paths.h"
#include "text_buffer.h"
#include "time_services.h"

#include <benchmark/benchmark.h>
#include <filesystem>

namespace {

constexpr char kLogDirectory[] = "/tmp/units/";

void recorded(const std::string& name, const std::string& copy) {
  std::filesystem::copy_file(TEST_DATA_DIR "/" + name, logFile(copy));
}

void makeFiles() {
  std::filesystem::create_directories(kLogDirectory);
  formatInto(LOG_PATH, "%s", kLogDirectory);
  writeFile(kConfigPath, "numPings=5\niperfTestTime=5\ndebugPrintPing=false\noutputFormat=2\n");
  recorded("ping/inetutils_2.4_reply.log", "ping_latest.log");
  recorded("iperf2/2.1.9/forward.csv", "iperf2_latest.log");
  recorded("iperf3/3.12/forward.json", "iperf3_latest.log");
  const std::string line =
      "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,118000,943718,0,0\n";
  std::string history;
  for (int i = 0; i < 9; ++i) {
    history += line;
  }
  writeFile(logFile("iperf3_history_forward_csv.log"), history);
  writeFile(logFile("\\ping_latest.log"), "    Minimum = 12ms, Maximum = 20ms, Average = 15ms\r\n");
}

template <typename Step>
void addUnit(const char* name, Step step) {
  benchmark::RegisterBenchmark(name, [step](benchmark::State& state) {
    for (auto turn : state) {
      step();
    }
  });
}

/// A ping or result history that would grow with each turn starts anew.
void forget(const char* history) {
  std::filesystem::remove(logFile(history));
}

void addUnits() {
  addUnit("date-time stamp", [] { getDateTimeString(currentTimeStamp); });
  addUnit("configuration line", [] { applyConfigLine("iperfTestTime=5", 1); });
  addUnit("configuration file, 4 lines", readConfigFile);
  addUnit("ping summary and its history line", [] {
    read_latest_ping_log_file_unix();
    forget("ping_history.log");
  });
  addUnit("Windows ping summary and its history line", [] {
    read_latest_ping_log_file_win();
    forget("ping_history.log");
  });
  addUnit("iperf2 report", read_latest_iperf2_log_file);
  addUnit("iperf3 report, 2.6 KB", [] {
    iperf3_status status;
    iperf3JsonToCsvUnix("/tmp/units/iperf3_latest.log", status);
  });
  addUnit("iperf3 history, 9 lines", [] { write_iperf3_history_log_files(false); });
  addUnit("result line and its history", [] {
    logFormattedResults();
    forget("connection_test_results_history.log");
  });
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  makeFiles();
  addUnits();
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
