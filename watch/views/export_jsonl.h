// The export of runs as JSON Lines: an object a line, as docs/files.md describes it.
#pragma once

#include "evidence/evidence.h"
#include "runs/run.h"

#include <string>

namespace watch {

/// Returns the line of a run, with its newline. `files` are those of the evidence.
std::string jsonLine(const Run& run, const std::vector<std::string>& files);

}  // namespace watch
