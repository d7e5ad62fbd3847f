// What the configuration file sets, and every line of it that does something else than it seems to.
#pragma once

#include "doctor/finding.h"

#include <string>
#include <string_view>

namespace watch {

/// What is wrong with a configuration, in the order of its lines.
struct SettingsReading {
  Findings findings;
  /// A number that is none ends every run.
  bool endsRun = false;
  /// There is a file, and why it cannot be read, if that is so: then all defaults count.
  bool isThere = false;
  std::string trouble = {};
};

/// Applies the lines of `text` to `ConfigurationParameters`, which holds the defaults then, by the
/// tester's own reader. The lines behind one that ends a run are read as well.
SettingsReading readSettings(std::string_view text);

/// The same for the configuration file.
SettingsReading readSettingsFile();

/// The values in force, in words: "10 pings, 10 s for each iperf3 test, rates in bps".
std::string settingsInForce();

}  // namespace watch
