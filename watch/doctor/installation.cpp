#include "config/config_file.h"
#include "doctor/checks.h"
#include "doctor/tool.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace watch {

namespace {

constexpr char kSubject[] = "start";

/// What the start command starts, or puts in front of the tools. The adapters need Linux.
constexpr const char* kPrograms[] = {"connTester", "in-session",
#ifdef __linux__
                                     "ping-adapter/ping", "iperf3-adapter/iperf3"
#endif
};

Finding checkStartCommand(const Workstation& workstation) {
  constexpr std::chrono::seconds kLimit{3};
  if (!workstation.startCommand) {
    return {Level::mend, kSubject,
            "connTester is in no folder of PATH. Install it, or add its folder to PATH"};
  }
  const Answer answer = ask({*workstation.startCommand, "--version"}, workstation.path, kLimit);
  if (!answer.succeeded()) {
    return {Level::mend, kSubject,
            fmt::format("{} does not start: {}", *workstation.startCommand, failure(answer))};
  }
  const std::string version = firstLine(answer.text);
  if (version != "connTester " CONNWATCH_VERSION) {
    return {Level::look, kSubject,
            fmt::format("{} is {}, and this is connWatch {}: install both at once",
                        *workstation.startCommand, version, CONNWATCH_VERSION)};
  }
  return {Level::well, kSubject, fmt::format("{} at {}", version, *workstation.startCommand)};
}

void checkPrograms(const Workstation& workstation, Findings& findings) {
  for (const char* const name : kPrograms) {
    const std::string path = (workstation.programs / name).string();
    if (access(path.c_str(), X_OK) != 0) {
      findings.push_back({Level::mend, kSubject,
                          fmt::format("{} cannot be started: {}. Install connTester again", path,
                                      std::strerror(errno))});
    }
  }
}

/// Who may write there decides what all users run, and what they measure.
void checkWriters(std::string_view path, Findings& findings) {
  struct stat status = {};
  if (stat(path.data(), &status) != 0) {
    if (errno != ENOENT || path == kFixedFolder) {
      findings.push_back({Level::look, kSubject,
                          fmt::format("{} cannot be looked at: {}", path, std::strerror(errno))});
    }
  } else if (status.st_uid != 0 && status.st_uid != geteuid()) {
    findings.push_back(
        {Level::look, kSubject,
         fmt::format("{} is another user's, who decides what you run. Mend it:", path),
         fmt::format("sudo chown root:root {}", path)});
  } else if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
    findings.push_back(
        {Level::look, kSubject,
         fmt::format("others may write in {}, and decide what you run. Close it:", path),
         fmt::format("sudo chmod go-w {}", path)});
  }
}

}  // namespace

Findings checkInstallation(const Workstation& workstation) {
  Findings findings = {checkStartCommand(workstation)};
  if (workstation.startCommand) {
    checkPrograms(workstation, findings);
  }
  checkWriters(kFixedFolder, findings);
  checkWriters(kConfigPath, findings);
  return findings;
}

}  // namespace watch
