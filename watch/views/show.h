// The view of one run: each figure with the file and line that it comes from.
#pragma once

#include "evidence/log_directory.h"
#include "runs/run.h"
#include "views/style.h"

#include <span>
#include <string>
#include <vector>

namespace watch {

/// What a view of one run needs to know beside it.
struct ShowContext {
  /// All runs, for what is usual.
  std::span<const Run> runs;
  /// Of the evidence.
  const std::vector<std::string>& files;
  const LogDirectory& directory;
  EpochSeconds now;
};

std::string showView(const Run& run, const ShowContext& context, const Style& style);

}  // namespace watch
