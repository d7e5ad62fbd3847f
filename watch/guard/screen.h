// What a guarded run shows, as text: the line of the test that goes on, which is rewritten in
// place, and a row for each test that has ended.
#pragma once

#include "figures/usual.h"
#include "guard/progress.h"
#include "plan.h"
#include "runs/run.h"
#include "views/style.h"

#include <span>
#include <string>

namespace watch {

/// A test that goes on, for so many seconds already.
struct GoingTest {
  Step step = Step::start;
  double seconds = 0;
  PlannedTest planned;
  std::span<const double> replies;
};

/// Returns the line of that test, without a newline and shorter than the terminal is wide.
std::string goingLine(const GoingTest& test, const Style& style);

/// What is told of a test beside its figures.
struct RowContext {
  UsualThen usual;
  /// The start of the run, for the hour of what is usual.
  EpochSeconds start = 0;
  /// What the tool has complained of, if anything.
  std::string complaint;
  std::span<const double> replies;
};

/// Return the row of a test that has ended, with a newline: for people on a terminal, or plain. A
/// rate that is none of the line is told in words alone.
std::string pingRow(const Ping& ping, const RowContext& context, const Style& style);
std::string rateRow(Step step, const Rate& rate, const RowContext& context, const Style& style);

/// "write", and what else a step is called.
const char* name(Step step);

}  // namespace watch
