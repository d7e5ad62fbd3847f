#include "results/result_history.h"

#include "history_files.h"
#include "log_files.h"

void write_results_log_history_file() {
  char path[kPathCapacity];
  formatLogPath(path, kResultHistory.live);
  moveFullHistory(countLines(path), TEST_TYPE_RESULTS, path);
}
