#include "history_files.h"

#include "shell.h"
#include "text_buffer.h"
#include "time_services.h"

#include <cstdio>
#include <fstream>

namespace {

constexpr char kAppendForward[] =
    "cat %siperf%d_latest_forward_csv.log >> %siperf%d_history_forward_csv.log\n";
constexpr char kAppendReverse[] =
    "cat %siperf%d_latest_reverse_csv.log >> %siperf%d_history_reverse_csv.log\n";
constexpr char kAppendEcho[] = "history file command: %s\n";

// Required: the verb brings a blank of its own, and a POSIX shell writes a file named "nul".
constexpr char kMoveVerb[] = "mv ";
constexpr char kMove[] = "(%s \"%s\" \"%s%s_history_%s.log\") 2>nul\n";
constexpr char kMoveForward[] = "(%s \"%s\" \"%s%s_history_forward_%s.log\") 2>nul\n";
constexpr char kMoveReverse[] = "(%s \"%s\" \"%s%s_history_reverse_%s.log\") 2>nul\n";

// Required: no quotes here, so that the shell splits a path at its blanks.
constexpr char kMoveResults[] = "%s %s %sconnection_test_results_history_%s.log\n";

void formatMove(TEST_TYPE type, const char* historyPath, unsigned iperfVersion, bool reverse) {
  if (type == TEST_TYPE_RESULTS) {
    formatInto(cmd, kMoveResults, kMoveVerb, historyPath, LOG_PATH_ARCHIVE, currentTimeStamp);
  } else if (type == TEST_TYPE_PING) {
    formatInto(cmd, kMove, kMoveVerb, historyPath, LOG_PATH_ARCHIVE, "ping", currentTimeStamp);
  } else if (type == TEST_TYPE_IPERF && iperfVersion == 3) {
    formatInto(cmd, reverse ? kMoveReverse : kMoveForward, kMoveVerb, historyPath, LOG_PATH_ARCHIVE,
               "iperf3", currentTimeStamp);
  } else if (type == TEST_TYPE_IPERF && iperfVersion == 2) {
    formatInto(cmd, kMove, kMoveVerb, historyPath, LOG_PATH_ARCHIVE, "iperf2", currentTimeStamp);
  }
  // Required: in any other case `cmd` keeps the command before, which then runs once more.
}

}  // namespace

int read_latest_iperf_log_file(int iperfVersion, bool reverse) {
  formatInto(cmd, reverse ? kAppendReverse : kAppendForward, LOG_PATH, iperfVersion, LOG_PATH,
             iperfVersion);
  if (ConfigurationParameters.debugPrintHistory) {
    std::printf(kAppendEcho, cmd);
  }
  return runCommand();
}

bool writeText(const char* path, const char* mode, const char* text) {
  std::FILE* const file = std::fopen(path, mode);
  if (file == nullptr) {
    return false;
  }
  std::fputs(text, file);
  std::fclose(file);
  return true;
}

unsigned countLines(const char* path) {
  std::ifstream file(path);
  unsigned count = 0;
  for (std::string line; std::getline(file, line);) {
    ++count;
  }
  return count;
}

void writeDatedLogFile(TEST_TYPE type, const char* historyPath, unsigned iperfVersion,
                       bool reverse) {
  formatMove(type, historyPath, iperfVersion, reverse);
  getDateTimeString(currentTimeStamp);
  runCommand();
  std::puts(cmd);
}
