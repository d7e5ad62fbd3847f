// Ping history: one CSV line for every summary, archived every ten lines.
//
// Files: LOG_PATH "ping_history.log" (appended, then moved when full).
#pragma once

#include "ping/ping_status.h"

/// Appends `status` under `pingStartTimeStamp` and moves a full history into the archive.
///
/// Does nothing, silently, when the history cannot be opened for appending.
void write_ping_history_log_file(const ping_status& status);
