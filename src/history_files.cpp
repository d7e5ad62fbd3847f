#include "history_files.h"

#include "log_files.h"
#include "shell.h"
#include "text_buffer.h"
#include "time_services.h"

#include <cstdio>
#include <fstream>

namespace {

// Required (HistoryAppend.NamesVersionAndDirectionInBothFiles): the names are built for any
// version, also for that which writes no such file.
constexpr char kAppend[] = "cat %siperf%d_latest_%s_csv.log >> %siperf%d_history_%s_csv.log\n";
constexpr char kAppendEcho[] = "history file command: %s\n";

// Required (ArchiveMove.NamesKindDirectionAndTheStampFromBefore): the verb brings a blank of its
// own, and a POSIX shell writes a file named "nul".
constexpr char kMoveVerb[] = "mv ";
constexpr char kMove[] = "(%s \"%s\" \"%s%s_%s.log\") 2>nul\n";
// Required (ArchiveMove.KeepsABlankOfThePathTogetherForAllButTheResults): no quotes here, so that
// the shell splits a path at its blanks.
constexpr char kMoveResults[] = "%s %s %s%s_%s.log\n";

/// Returns what the names of an archived history begin with, or null for one that is not known.
const char* archivedName(TEST_TYPE type, unsigned iperfVersion, bool reverse) {
  if (type == TEST_TYPE_RESULTS) {
    return kResultHistory.archived;
  }
  if (type == TEST_TYPE_PING) {
    return kPingHistory.archived;
  }
  if (type == TEST_TYPE_IPERF && iperfVersion == 3) {
    return directionFiles(reverse).history.archived;
  }
  if (type == TEST_TYPE_IPERF && iperfVersion == 2) {
    return kIperf2History.archived;
  }
  return nullptr;
}

}  // namespace

int read_latest_iperf_log_file(int iperfVersion, bool reverse) {
  const char* const direction = directionFiles(reverse).name;
  formatInto(cmd, kAppend, LOG_PATH, iperfVersion, direction, LOG_PATH, iperfVersion, direction);
  if (ConfigurationParameters.debugPrintHistory) {
    std::printf(kAppendEcho, cmd);
  }
  return runCommand();
}

void formatLogPath(char (&path)[kPathCapacity], const char* name) {
  formatInto(path, "%s%s", LOG_PATH, name);
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
  // Required (ArchiveMove.RunsTheCommandBeforeAgainForAnUnknownKind): without a name `cmd` keeps
  // the command before, which then runs once more.
  if (const char* const name = archivedName(type, iperfVersion, reverse); name != nullptr) {
    formatInto(cmd, type == TEST_TYPE_RESULTS ? kMoveResults : kMove, kMoveVerb, historyPath,
               LOG_PATH_ARCHIVE, name, currentTimeStamp);
  }
  getDateTimeString(currentTimeStamp);
  runCommand();
  std::puts(cmd);
}

void moveFullHistory(unsigned lines, TEST_TYPE type, const char* historyPath, unsigned iperfVersion,
                     bool reverse) {
  if (lines >= kFullHistoryLines) {
    writeDatedLogFile(type, historyPath, iperfVersion, reverse);
  }
}
