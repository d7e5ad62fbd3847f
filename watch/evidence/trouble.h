// What could not be read, so that it can be said.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace watch {

struct Trouble {
  /// Below the log directory.
  std::string file;
  /// From 1 on, or 0 for the whole file.
  std::uint32_t line;
  /// What is wrong, as the end of a sentence about it.
  std::string what;
};

using Troubles = std::vector<Trouble>;

}  // namespace watch
