// Where in the log directory something was read.
#pragma once

#include <cstdint>
#include <limits>

namespace watch {

inline constexpr std::uint32_t kNoFile = std::numeric_limits<std::uint32_t>::max();

/// Lines of a file, from 1 on, both included. `file` is a place in `Evidence::files`, or kNoFile.
struct Source {
  std::uint32_t file = kNoFile;
  std::uint32_t first = 0;
  std::uint32_t last = 0;

  bool isThere() const { return file != kNoFile; }
};

}  // namespace watch
