#include "readers.h"

#include "history_files.h"
#include "iperf2/iperf2_history.h"
#include "iperf3/iperf3_history.h"
#include "iperf3/iperf3_json.h"
#include "run_state.h"
#include "text_buffer.h"

#include <cinttypes>
#include <fstream>
#include <nlohmann/json.hpp>
#include <simdjson.h>

namespace {

using nlohmann::json;

// ---- Reports ----

iperf3_status readAsTheProgram(const std::string& path) {
  iperf3_status status;
  iperf3JsonToCsvUnix(path.c_str(), status);
  return status;
}

void takeSums(const json& sums, unsigned long long& length, double& bps) {
  length = sums.at("bytes").get<unsigned long long>();
  bps = sums.at("bits_per_second").get<float>();
}

iperf3_status membersOf(const json& report) {
  const json& start = report.at("start");
  const json& connection = start.at("connected").at(0);
  const json& test = start.at("test_start");
  iperf3_status status;
  copyInto(status.clientIp, connection.at("local_host").get_ref<const std::string&>());
  status.clientPort = connection.at("local_port").get<int>();
  copyInto(status.serverIp, connection.at("remote_host").get_ref<const std::string&>());
  status.serverPort = connection.at("remote_port").get<int>();
  formatInto(status.date, "%d", start.at("timestamp").at("timesecs").get<int>());
  formatInto(status.testTime, "%d", test.at("duration").get<int>());
  formatInto(status.reverse, "%d", test.at("reverse").get<int>());
  if (status.reverse[0] == '0') {
    takeSums(report.at("end").at("sum_sent"), status.lengthSent, status.bpsSent);
  } else {
    takeSums(report.at("end").at("sum_received"), status.lengthRcvd, status.bpsRcvd);
  }
  return status;
}

iperf3_status readWithNlohmann(const std::string& path) {
  std::ifstream file(path);
  return membersOf(json::parse(file));
}

/// Drops the intervals while it parses, so that they take no memory.
iperf3_status readWithNlohmannFilter(const std::string& path) {
  std::ifstream file(path);
  return membersOf(json::parse(file, [](int depth, json::parse_event_t event, const json& parsed) {
    return !(depth == 1 && event == json::parse_event_t::key && parsed == "intervals");
  }));
}

template <std::size_t N>
void takeNumber(char (&field)[N], std::int64_t number) {
  formatInto(field, "%" PRId64, number);
}

void takeSums(simdjson::ondemand::object sums, unsigned long long& length, double& bps) {
  length = sums["bytes"].get_uint64();
  bps = static_cast<float>(sums["bits_per_second"].get_double());
}

iperf3_status readWithSimdjson(const std::string& path) {
  simdjson::ondemand::parser parser;
  const simdjson::padded_string text = simdjson::padded_string::load(path);
  simdjson::ondemand::document report = parser.iterate(text);
  simdjson::ondemand::object start = report["start"];
  iperf3_status status;
  for (simdjson::ondemand::object connection : start["connected"]) {
    copyInto(status.clientIp, connection["local_host"]);
    status.clientPort = static_cast<int>(connection["local_port"].get_int64());
    copyInto(status.serverIp, connection["remote_host"]);
    status.serverPort = static_cast<int>(connection["remote_port"].get_int64());
  }
  takeNumber(status.date, start["timestamp"]["timesecs"]);
  simdjson::ondemand::object test = start["test_start"];
  takeNumber(status.testTime, test["duration"]);
  takeNumber(status.reverse, test["reverse"]);
  if (status.reverse[0] == '0') {
    takeSums(report["end"]["sum_sent"], status.lengthSent, status.bpsSent);
  } else {
    takeSums(report["end"]["sum_received"], status.lengthRcvd, status.bpsRcvd);
  }
  return status;
}

constexpr ReportReader kReportReaders[] = {
    {"connTester", readAsTheProgram},
    {"nlohmann-json", readWithNlohmann},
    {"nlohmann-json, intervals dropped", readWithNlohmannFilter},
    {"simdjson", readWithSimdjson}};

// ---- Histories ----

void countAll(const std::string& directory) {
  countLines((directory + "ping_history.log").c_str());
}

void readIperf2(const std::string& directory) {
  formatInto(LOG_PATH, "%s", directory.c_str());
  write_iperf2_history_log_files();
}

template <bool Reverse>
void readIperf3(const std::string& directory) {
  formatInto(LOG_PATH, "%s", directory.c_str());
  write_iperf3_history_log_files(Reverse);
}

constexpr HistoryReader kHistoryReaders[] = {{"countLines", countAll},
                                             {"iperf2 history", readIperf2},
                                             {"iperf3 history, forward", readIperf3<false>},
                                             {"iperf3 history, reverse", readIperf3<true>}};

}  // namespace

std::span<const ReportReader> reportReaders() {
  return kReportReaders;
}

std::span<const HistoryReader> historyReaders() {
  return kHistoryReaders;
}
