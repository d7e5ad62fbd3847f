// The timers of the hourly run: the user's units connTester@ADDRESS.timer.
#pragma once

#include "local_time.h"

#include <optional>
#include <string>
#include <vector>

namespace watch {

struct Timer {
  std::string unit;
  std::string address;
  std::optional<EpochSeconds> next;
  std::optional<EpochSeconds> last;
};

/// Those that are active. Where systemd does not tell, `trouble` says why.
struct Timers {
  std::vector<Timer> all;
  std::string trouble;
};

/// Asks systemctl, which is looked for in `searchPath`.
Timers findTimers(const std::string& searchPath);

}  // namespace watch
