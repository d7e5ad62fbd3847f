// The guarded run: starts the start command, shows how it goes, and says what has come of it.
#pragma once

#include <optional>
#include <string>

namespace watch {

struct RunRequest {
  /// Of the server.
  std::optional<std::string> address;
  /// What the tester prints is shown as it comes.
  bool hasTrace = false;
};

/// Exit statuses of a run. That of another run in progress is the start command's.
inline constexpr int kRunIsOk = 0;
inline constexpr int kRunIsPartial = 1;
inline constexpr int kRunHasFailed = 2;
/// There is none: the start command has refused it, or it broke off and has left nothing.
inline constexpr int kNoRun = 3;
inline constexpr int kRunIsBusy = 75;

/// Makes one run, keeps its reports in the journal, and returns its exit status. Figures go to
/// standard output, the line of the test that goes on to standard error. A signal that ends
/// programs ends the run and all its tools, and then this program.
int guardedRun(const RunRequest& request);

}  // namespace watch
