// The lock that the start command holds while a run lasts. The bare program takes none.
//
// Files: connTester.lock in the log directory (only looked at).
#pragma once

#include "evidence/log_directory.h"
#include "local_time.h"

#include <optional>

namespace watch {

/// Returns when the run began that took the lock last and has ended. Nothing while the lock is
/// held, and where there is none or it can't be looked at.
std::optional<EpochSeconds> beginOfEndedRun(const LogDirectory& directory);

}  // namespace watch
