// How long an adapter lets its tool run.
//
// Environment: CONNTESTER_GRACE_SECONDS (read), the seconds that any tool may take beyond the
// number in its arguments, from 1; each adapter has a default of its own.
#pragma once

#include <chrono>
#include <string>

struct TimeLimit {
  std::chrono::seconds run;       // up to its interruption
  std::chrono::seconds patience;  // from a request to end up to the kill
};

/// Returns the number that the last option of either name gives in `arguments`, as in "-c 10",
/// "-c10", "--count 10" and "--count=10"; 0 when there is none.
int lastNumber(char** arguments, const std::string& shortOption, const std::string& longOption);

/// Returns the limit of a run of `tool` that is to take `seconds`: these and the grace, which is
/// `defaultGrace` unless the environment says otherwise; a minute when `seconds` is not above 0,
/// since such a run may have no end. The patience is ten seconds, or the grace when that is less.
///
/// Complains about a grace that is none, and takes the default then.
TimeLimit timeLimit(const std::string& tool, int seconds, std::chrono::seconds defaultGrace);
