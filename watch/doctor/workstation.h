// What the checks are about: the user, the places and the settings, as a run would meet them.
#pragma once

#include "doctor/settings.h"
#include "doctor/timers.h"
#include "local_time.h"

#include <filesystem>
#include <optional>
#include <string>

namespace watch {

struct Workstation {
  /// HOME as it is set, also when no run can use it.
  std::optional<std::string> home;
  /// The log directory. Empty where HOME is not set.
  std::filesystem::path logs;
  /// PATH, as it is, and as it is in a run, with the ping adapter in front.
  std::string path;
  std::string pathOfRun;
  /// The start command, the first connTester in PATH, and the folder of what it starts.
  std::optional<std::string> startCommand;
  std::filesystem::path programs;
  /// What the configuration file sets is in `ConfigurationParameters`.
  SettingsReading settings;
  Timers timers;
  /// The server's, and where it is from: " (of the timer)". Empty where none is known.
  std::string address;
  std::string addressOrigin;
  /// A test of the server, which moves data, is wanted.
  bool isTry = false;
  EpochSeconds now = 0;
};

/// The folder of the fixed paths.
inline constexpr char kFixedFolder[] = "/usr/local/bin/Qelmora";

/// Looks where what is, and fills `ConfigurationParameters`. `address` is empty where none was
/// given: then it is that of the timer or of the last run.
Workstation findWorkstation(const std::string& address, bool isTry, EpochSeconds now);

/// "/home/me/Library" as "~/Library".
std::string shortened(const Workstation& workstation, const std::filesystem::path& path);

}  // namespace watch
