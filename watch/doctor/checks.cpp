#include "doctor/checks.h"

#include <exception>
#include <iterator>

namespace watch {

namespace {

constexpr Findings (*kChecks[])(const Workstation&) = {
    checkSettings, checkInstallation, checkPing, checkIperf3, checkServer, checkHome,
    checkLogs,     checkNul,          checkLock, checkTimer,  checkClock,  checkDuration};

}  // namespace

Findings examine(const Workstation& workstation) {
  Findings findings;
  for (const auto check : kChecks) {
    Findings found = check(workstation);
    findings.insert(findings.end(), std::move_iterator(found.begin()),
                    std::move_iterator(found.end()));
  }
  return findings;
}

}  // namespace watch
