#include "iperf_client.h"

#include "run_state.h"
#include "shell.h"
#include "time_services.h"

#include <cstdint>

namespace {

constexpr char kCommandTrace[] = "command=%s\n";

/// A second more than the test time, in milliseconds. Past 32 bits it wraps.
std::int32_t waitMs() {
  const auto testTime = static_cast<std::uint32_t>(ConfigurationParameters.iperfTestTime);
  return static_cast<std::int32_t>(testTime * 1000U + 1000U);
}

}  // namespace

void runIperfClient() {
  if (ConfigurationParameters.debugConfFile) {
    std::printf(kCommandTrace, cmd);
  }
  runCommand();
  // Required (IperfClient.RunsItsCommandSilentlyAndThenWaits): the client has already ended, and
  // the run still waits for as long again.
  Delay(waitMs());
}
