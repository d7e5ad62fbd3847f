#include "doctor/workstation.h"

#include "doctor/timers.h"
#include "doctor/tool.h"
#include "evidence/evidence.h"
#include "run_limits.h"
#include "runs/join.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

namespace watch {

namespace {

std::optional<std::string> variable(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

/// Returns the server of the last run that tells it.
std::string lastServer(const std::filesystem::path& logs) {
  const std::vector<Run> runs = joinRuns(readEvidence(LogDirectory(logs)));
  const auto told = std::ranges::find_if(runs.rbegin(), runs.rend(),
                                         [](const Run& run) { return !run.server.empty(); });
  return told == runs.rend() ? "" : told->server;
}

void findPlaces(Workstation& workstation) {
  workstation.home = variable("HOME");
  if (workstation.home) {
    // Without the "/" that kLogDirectory ends in.
    workstation.logs = std::filesystem::path(*workstation.home + kLogDirectory).parent_path();
  }
  workstation.path = variable("PATH").value_or("");
  workstation.pathOfRun = workstation.path;
  workstation.startCommand = findProgram("connTester", workstation.path);
  if (!workstation.startCommand) {
    return;
  }
  std::error_code error;
  const auto target = std::filesystem::canonical(*workstation.startCommand, error);
  workstation.programs = (target.parent_path() / PROGRAMS_FROM_BIN).lexically_normal();
  workstation.pathOfRun = (workstation.programs / "ping-adapter").string() + ":" + workstation.path;
}

void findAddress(Workstation& workstation) {
  if (!workstation.address.empty()) {
    return;
  }
  if (!workstation.timers.all.empty()) {
    workstation.address = workstation.timers.all.front().address;
    workstation.addressOrigin = " (of the timer)";
  } else if (workstation.home) {
    workstation.address = lastServer(workstation.logs);
    workstation.addressOrigin = " (of the last run)";
  }
}

}  // namespace

Workstation findWorkstation(const std::string& address, bool isTry, EpochSeconds now) {
  Workstation workstation;
  workstation.address = address;
  workstation.isTry = isTry;
  workstation.now = now;
  findPlaces(workstation);
  workstation.settings = readSettingsFile();
  workstation.timers = findTimers(workstation.path);
  findAddress(workstation);
  return workstation;
}

std::string shortened(const Workstation& workstation, const std::filesystem::path& path) {
  std::string text = path.lexically_normal().string();
  if (workstation.home && !workstation.home->empty() && text.starts_with(*workstation.home + "/")) {
    return std::string("~").append(text, workstation.home->size());
  }
  return text;
}

}  // namespace watch
