#include "report/browser.h"

#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>

extern char** environ;  // NOLINT(readability-redundant-declaration): macOS declares none.

namespace watch {

namespace {

/// Returns whether the command has taken the file.
bool passTo(const char* command, const std::filesystem::path& file) {
  std::string name = command;
  // An absolute path is no option.
  std::string path = std::filesystem::absolute(file).string();
  char* const arguments[] = {name.data(), path.data(), nullptr};
  pid_t child = 0;
  if (posix_spawnp(&child, command, nullptr, nullptr, arguments, environ) != 0) {
    return false;
  }
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

void openInBrowser(const std::filesystem::path& file) {
  if (!passTo("xdg-open", file) && !passTo("open", file)) {
    throw std::runtime_error("no browser could be started: open " + file.string() + " by hand");
  }
}

}  // namespace watch
