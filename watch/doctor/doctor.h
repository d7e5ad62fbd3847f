// The command `doctor`: looks at all that a run needs, before one fails.
#pragma once

#include "local_time.h"

#include <string>

namespace watch {

struct DoctorRequest {
  /// The server's address; empty for that of the timer or of the last run.
  std::string address;
  /// Also have iperf3 make a test of a second.
  bool isTry = false;
};

/// Prints what all checks find. Returns the exit status: 0 when all is well, 1 when something is to
/// be looked at or not known, 2 when something is to be mended.
int doctor(const DoctorRequest& request, EpochSeconds now);

}  // namespace watch
