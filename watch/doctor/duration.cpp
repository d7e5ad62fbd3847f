#include "doctor/checks.h"
#include "plan.h"
#include "run_state.h"
#include "views/words.h"

#include <fmt/format.h>

namespace watch {

namespace {

/// After that the hourly service, the crontab line and the agent, as they are installed, end a run.
constexpr int kLimitOfHourlyRun = 600;

/// "51 s", "3 min 52 s".
std::string inMinutes(int seconds) {
  constexpr int kMinute = 60;
  if (seconds < 2 * kMinute) {
    return fmt::format("{} s", seconds);
  }
  return seconds % kMinute == 0 ? fmt::format("{} min", seconds / kMinute)
                                : fmt::format("{} min {} s", seconds / kMinute, seconds % kMinute);
}

}  // namespace

Findings checkDuration(const Workstation& workstation) {
  constexpr char kSubject[] = "time";
  if (workstation.settings.endsRun) {
    return {
        {Level::unknown, kSubject, "how long a run takes is not known while its settings end it"}};
  }
  if (!ConfigurationParameters.doPingTests && !ConfigurationParameters.doIperf3Tests) {
    return {};
  }
  const PlannedTest run = planOf(ConfigurationParameters).total();
  const std::string text =
      fmt::format("a run takes about {}, and at most {}, when the server is silent",
                  inMinutes(run.seconds), inMinutes(run.mostSeconds));
  if (run.seconds > kLimitOfHourlyRun) {
    return {{Level::look, kSubject,
             fmt::format("{}. The hourly run is ended after {}: give it more, see man connTester",
                         text, inMinutes(kLimitOfHourlyRun))}};
  }
  return {{Level::well, kSubject, text}};
}

}  // namespace watch
