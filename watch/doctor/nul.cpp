#include "doctor/checks.h"
#include "doctor/tool.h"
#include "evidence/log_directory.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <unistd.h>

namespace watch {

namespace {

constexpr char kSubject[] = "nul";

/// The file as the latest archive move has left it.
Finding checkFile(const Workstation& workstation, const std::filesystem::path& folder) {
  const std::filesystem::path path = folder / kSubject;
  std::error_code error;
  if (std::filesystem::exists(path, error) &&
      (!std::filesystem::is_regular_file(path, error) || access(path.c_str(), W_OK) != 0)) {
    return {Level::mend, kSubject,
            fmt::format("{} is no file that can be written, which the archive moves do: full "
                        "histories stay. Remove it:",
                        shortened(workstation, path)),
            fmt::format("rm -rf {}", path.lexically_normal().string())};
  }
  Troubles troubles;
  const auto content = LogDirectory(folder).read(kSubject, troubles);
  if (const std::string said = lastLine(content.value_or("")); !said.empty()) {
    return {Level::look, kSubject,
            fmt::format("the latest archive move has failed: it said \"{}\"", said)};
  }
  return {Level::well, kSubject,
          fmt::format("the archive moves can write their messages in {}",
                      shortened(workstation, folder))};
}

}  // namespace

Findings checkNul(const Workstation& workstation) {
  if (workstation.startCommand) {
    // The start command works in the log directory, which it makes.
    return {canUseHome(workstation)
                ? checkFile(workstation, workstation.logs)
                : Finding{Level::unknown, kSubject, "not known before HOME is mended"}};
  }
  const std::filesystem::path here = std::filesystem::current_path();
  if (access(here.c_str(), W_OK) != 0) {
    return {{Level::mend, kSubject,
             fmt::format("the working directory {} cannot be written ({}): histories would not be "
                         "archived. Start runs with \"connTester\", which goes to the logs",
                         here.string(), std::strerror(errno))}};
  }
  return {checkFile(workstation, here)};
}

}  // namespace watch
