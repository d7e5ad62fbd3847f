// The iperf2 history: the lines that are reports count.
#include "iperf2/iperf2_history.h"

#include "harness.h"
#include "iperf2/iperf2_status.h"
#include "log_files.h"
#include "run_state.h"

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> columnsOf(const std::string& line) {
  std::istringstream text(line.c_str());
  std::vector<std::string> columns;
  for (std::string column; std::getline(text, column, ',');) {
    columns.push_back(column);
  }
  return columns;
}

int toInt(const std::string& column) {
  return static_cast<int>(std::strtol(column.c_str(), nullptr, 10));
}

void requireColumns(const std::vector<std::string>& columns, const iperf2_status& status) {
  require(columns[0] == status.date, "column 1 is the date");
  require(columns[1] == status.clientIp, "column 2 is the client's address");
  require(toInt(columns[2]) == status.clientPort, "column 3 is the client's port");
  require(columns[3] == status.serverIp, "column 4 is the server's address");
  require(toInt(columns[4]) == status.serverPort, "column 5 is the server's port");
  require(toInt(columns[5]) == status.transferId, "column 6 is the transfer");
  require(columns[6] == status.testTime, "column 7 is the interval");
}

unsigned countReports(const std::string& history) {
  std::istringstream lines(history);
  unsigned count = 0;
  for (std::string line; std::getline(lines, line);) {
    iperf2_status status;
    if (scanIperf2Report(line.c_str(), status)) {
      requireColumns(columnsOf(line), status);
      ++count;
    }
  }
  return count;
}

}  // namespace

void readInput(const std::string& input) {
  writeFile(logFile("iperf2_history.log"), input);
  write_iperf2_history_log_files();
  const std::size_t moves = countReports(input) < kFullHistoryLines ? 0 : 1;
  require(commandCount == moves, "ten reports are moved");
}
