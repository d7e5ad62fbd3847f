// What the run has measured, as a text that a test compares whole.
#pragma once

#include <string>

/// Every field of `outputResults` in one line, a value that is not valid in brackets:
/// "date 20261116T054000, latency 15, write (0), read (0)".
std::string resultsText();

/// resultsText() of a run that has measured nothing.
inline constexpr char kNoResults[] = "date , latency (0), write (0), read (0)";
