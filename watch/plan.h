// How long a run takes, by its settings.
#pragma once

#include "run_state.h"

namespace watch {

/// Seconds of one test, with the wait that the tester puts behind it: as it is meant to go, and at
/// most, when the adapters have to end the tool.
struct PlannedTest {
  int seconds = 0;
  int mostSeconds = 0;
};

/// A test that is switched off takes no time.
struct Plan {
  PlannedTest ping;
  PlannedTest write;
  PlannedTest read;

  PlannedTest total() const;
};

Plan planOf(const Configuration& settings);

}  // namespace watch
