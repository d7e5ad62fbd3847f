#include "results/result_history.h"

#include "history_files.h"
#include "run_state.h"
#include "text_buffer.h"

void write_results_log_history_file() {
  char path[kPathCapacity];
  formatInto(path, kResultHistoryPath, LOG_PATH);
  if (countLines(path) >= kFullHistoryLines) {
    writeDatedLogFile(TEST_TYPE_RESULTS, path, 0, false);
  }
}
