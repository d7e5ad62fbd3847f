// What a contract promises, and how often it was reached.
#pragma once

#include "figures/days_in_a_row.h"
#include "figures/stretch.h"

#include <optional>
#include <span>

namespace watch {

/// Mbit/s; nothing where it is not known.
struct Contract {
  std::optional<double> read;
  std::optional<double> write;
};

/// How the rates of all runs stand beside the promised one.
struct Reached {
  /// Runs that have measured it; those with 90 % of the promised one or more; with less than half.
  std::size_t runs = 0;
  std::size_t inFull = 0;
  std::size_t belowHalf = 0;
  /// Days with such a run; those on which none came to 90 %, and the most of them in a row.
  std::size_t days = 0;
  std::size_t daysWithout = 0;
  std::optional<DaysInARow> longest;
};

/// The marks of `days` are those beside the contract.
Reached reached(std::span<const Stretch> days);

}  // namespace watch
