#include "doctor/checks.h"
#include "run_limits.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace watch {

namespace {

constexpr char kSubject[] = "HOME";

/// Whether a shell takes `text` as one plain word, as the tester needs it. What is not ASCII means
/// itself.
bool isPlain(std::string_view text) {
  constexpr std::string_view kMarks = "/.,:+=_@%-";
  return std::ranges::all_of(text, [&](unsigned char c) {
    return c >= 0x80 || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
           (c >= 'a' && c <= 'z') || kMarks.find(static_cast<char>(c)) != std::string_view::npos;
  });
}

Finding toMend(const std::string& text) {
  return {Level::mend, kSubject, text};
}

Finding checkDirectory(const std::string& home) {
  struct stat status = {};
  if (stat(home.c_str(), &status) != 0) {
    return toMend(fmt::format("{} cannot be looked at: {}", home, std::strerror(errno)));
  }
  if (!S_ISDIR(status.st_mode)) {
    return toMend(fmt::format("{} is no directory", home));
  }
  if (status.st_uid != geteuid() && status.st_uid != 0) {
    return toMend(
        fmt::format("{} is another user's. Set it to your own, as \"sudo -H\" does", home));
  }
  return {Level::well, kSubject,
          fmt::format("{}: {} of {} characters, no blanks", home, home.size(), kMaxHomeLength)};
}

}  // namespace

bool canUseHome(const Workstation& workstation) {
  return checkHome(workstation).front().level == Level::well;
}

Findings checkHome(const Workstation& workstation) {
  if (!workstation.home || !workstation.home->starts_with('/')) {
    return {
        toMend("it does not hold the whole path of your home directory, and no run begins. Set "
               "it")};
  }
  if (const std::string& home = *workstation.home; !isPlain(home)) {
    return {
        toMend(fmt::format("\"{}\" is not of letters, digits and / . , : + - = _ @ % alone, "
                           "and a shell would split it: no run begins. Set HOME to another path",
                           home))};
  }
  if (workstation.home->size() > kMaxHomeLength) {
    return {
        toMend(fmt::format("it has {} characters, and a run takes {} at most. Set it to a "
                           "shorter path",
                           workstation.home->size(), kMaxHomeLength))};
  }
  return {checkDirectory(*workstation.home)};
}

}  // namespace watch
