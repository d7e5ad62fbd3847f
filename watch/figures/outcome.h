// What has come of a run, as far as it tells of the line: whether it was there, and whether its
// figures are whole.
#pragma once

#include "runs/run.h"

#include <cstdint>

namespace watch {

enum class Outcome : std::uint8_t {
  /// All that is switched on was measured.
  measured,
  /// Something was, and not all.
  partly,
  /// The line was there, and no test: the server is busy or switched off.
  noServer,
  /// Nothing came back.
  noConnection,
  /// Nothing was measured, and the files do not tell why.
  nothing,
};

Outcome outcomeOf(const Run& run);

/// Whether the run has tried to reach the server and nothing came back at all.
bool hadNoConnection(const Run& run);
/// Whether something came back. A run that was ended too early has neither had a connection nor
/// none.
bool hadConnection(const Run& run);

}  // namespace watch
