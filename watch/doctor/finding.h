// What a check has found, as the doctor shows it.
#pragma once

#include <string>
#include <vector>

namespace watch {

/// How it is: well, not to be told here, to be looked at, to be mended.
enum class Level { well, unknown, look, mend };

struct Finding {
  Level level;
  /// What it is about, in one word.
  std::string subject;
  /// What is so, and what to do.
  std::string text;
  /// What to write or to run, letter by letter, behind the text. Empty where there is nothing.
  std::string remedy = {};

  bool operator==(const Finding&) const = default;
};

using Findings = std::vector<Finding>;

}  // namespace watch
