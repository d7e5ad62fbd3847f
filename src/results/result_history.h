// History of the result lines: archived every ten lines.
//
// Files: LOG_PATH "connection_test_results_history.log" (read, then moved when full).
#pragma once

/// Moves a full history of result lines into the archive. A missing one counts as empty.
void write_results_log_history_file();
