#include "doctor/checks.h"
#include "doctor/tool.h"
#include "run_state.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <unistd.h>

namespace watch {

namespace {

constexpr char kSubject[] = "iperf3";

Finding toMend(const std::string& text, const std::string& remedy = {}) {
  return {Level::mend, kSubject, text, remedy};
}

/// "/usr/local/bin/Qelmora/iperf3 -> /usr/bin/iperf3"
std::string describe(const std::string& path) {
  std::error_code error;
  const auto target = std::filesystem::read_symlink(path, error);
  return error ? path : fmt::format("{} -> {}", path, target.string());
}

std::string adapterOf(const Workstation& workstation) {
  return (workstation.programs / "iperf3-adapter/iperf3").string();
}

std::string linkCommand(const Workstation& workstation, const std::string& fixedPath) {
  return fmt::format("sudo ln -sf {} {}", adapterOf(workstation), fixedPath);
}

/// Returns where the adapter finds the system's iperf3, as far as PATH tells.
std::string behindAdapter(const Workstation& workstation) {
  const auto found = findProgram("iperf3", workstation.path);
  return found ? *found : "where it usually is";
}

/// What stands there already is not touched by the installation.
Finding describeMissing(const Workstation& workstation, const std::string& fixedPath,
                        const char* reason) {
  const std::string text = fmt::format("{} cannot be run: {}. ", describe(fixedPath), reason);
  std::error_code error;
  if (!workstation.startCommand || !std::filesystem::exists(adapterOf(workstation), error)) {
    return toMend(text + "Install connTester again, or put a link to iperf3 there");
  }
  return std::filesystem::is_symlink(fixedPath, error)
             ? toMend(text + "Link it anew:", linkCommand(workstation, fixedPath))
             : toMend(text + "Put it there:",
                      fmt::format("sudo {}/fixed-paths make", workstation.programs.string()));
}

Finding judge(const Workstation& workstation, const std::string& fixedPath,
              const std::string& release) {
  const std::string adapter = adapterOf(workstation);
  std::error_code error;
  if (std::filesystem::equivalent(fixedPath, adapter, error)) {
    return {Level::well, kSubject,
            fmt::format("{} at {}, behind the adapter at {}", release, behindAdapter(workstation),
                        fixedPath)};
  }
  if (!workstation.startCommand || !std::filesystem::exists(adapter, error)) {
    return {Level::well, kSubject, fmt::format("{} at {}", release, describe(fixedPath))};
  }
  return {
      Level::look, kSubject,
      fmt::format("{} at {}, without the adapter: a server that hangs holds a run for ever. Put "
                  "it there:",
                  release, describe(fixedPath)),
      linkCommand(workstation, fixedPath)};
}

}  // namespace

Findings checkIperf3(const Workstation& workstation) {
  constexpr std::chrono::seconds kLimit{3};
  if (!ConfigurationParameters.doIperf3Tests) {
    return {{Level::well, kSubject, "switched off by the settings"}};
  }
  const std::string fixedPath = std::string(kFixedFolder) + "/iperf3";
  if (access(fixedPath.c_str(), X_OK) != 0) {
    return {describeMissing(workstation, fixedPath, std::strerror(errno))};
  }
  const Answer answer = ask({fixedPath, "--version"}, workstation.pathOfRun, kLimit);
  if (!answer.succeeded()) {
    return {toMend(fmt::format("{} fails: {}", describe(fixedPath), failure(answer)))};
  }
  const std::string said = firstLine(answer.text);
  constexpr std::string_view kName = "iperf ";
  if (!said.starts_with("iperf 3")) {
    return {toMend(fmt::format("{} is no iperf3: it says \"{}\"", describe(fixedPath), said))};
  }
  const std::size_t end = said.find(' ', kName.size());
  return {judge(workstation, fixedPath, said.substr(kName.size(), end - kName.size()))};
}

}  // namespace watch
