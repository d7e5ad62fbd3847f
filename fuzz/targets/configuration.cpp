// The configuration file, and any text as one line of it.
#include "config/config_file.h"
#include "harness.h"
#include "run_state.h"

namespace {

/// Ends the process where a configuration file stands already, which it would overwrite.
void requireOwnMachine() {
  static const bool isOwn = !fileExists(kConfigPath);
  require(isOwn, "the target runs behind tests/support/private_machine");
}

void requireSoundConfiguration() {
  require(ConfigurationParameters.outputFormat >= 1 && ConfigurationParameters.outputFormat <= 3,
          "the output format is in range");
  require(!ConfigurationParameters.doIperf2Tests, "no file turns iperf2 on");
  require(ConfigurationParameters.debugPrintIperf, "no file turns debugPrintIperf off");
}

}  // namespace

void readInput(const std::string& input) {
  requireOwnMachine();
  writeFile(kConfigPath, input);
  endingOf(readConfigFile, {kConfigPath});
  requireSoundConfiguration();

  startRun();
  endingOf([&input] { applyConfigLine(input, 1); }, {kConfigPath});
  requireSoundConfiguration();
}
