// The paths of the files in the log directory.
#pragma once

#include "run_state.h"

#include <string>

inline std::string logFile(const std::string& name) {
  return LOG_PATH + name;
}

inline std::string archiveFile(const std::string& name) {
  return LOG_PATH_ARCHIVE + name;
}
