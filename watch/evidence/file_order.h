// The order in which the archived files of a history were written. A wrong clock misnames them, and
// at the end of summer time an hour comes twice: so their lines' times decide.
#pragma once

#include "local_time.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace watch {

/// When a file was written, in seconds that compare with those of the other files.
struct FileTimes {
  /// Where it stands among the others by the times of its lines, and the first and the last of
  /// these.
  std::int64_t time = 0;
  std::int64_t first = 0;
  std::int64_t last = 0;
  /// A line tells when it was written.
  bool isTimed = false;
  /// Its name does.
  bool isNamed = false;
  /// The clock was set back while it was filled.
  bool goesBack = false;
};

/// Returns the times of a file whose lines tell `times`, in their order, and whose name tells
/// `named`. Without either, it is before all others.
FileTimes timesOfFile(std::vector<std::int64_t> times, std::optional<std::int64_t> named);

/// Returns the places of the files in the order in which they were written. Of two copies the
/// second is that whose name tells more.
std::vector<std::size_t> orderOfWriting(const std::vector<FileTimes>& files);

}  // namespace watch
