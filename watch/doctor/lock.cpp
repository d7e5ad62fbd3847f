#include "doctor/checks.h"
#include "doctor/tool.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <sys/file.h>
#include <unistd.h>

namespace watch {

namespace {

constexpr char kSubject[] = "runs";
constexpr char kNoRun[] = "no other run of yours is in progress";

/// The file holds the process and the start of the run that took the lock last: "1234 2026-11-21
/// 10:00:00".
Finding describeRun(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::string process;
  std::string begin;
  file >> process;
  std::getline(file >> std::ws, begin);
  return {
      Level::look, kSubject,
      fmt::format("a run of yours is in progress, as process {} since {}: another one would end "
                  "at once, with status 75",
                  firstLine(process), firstLine(begin))};
}

}  // namespace

Findings checkLock(const Workstation& workstation) {
  if (!canUseHome(workstation)) {
    return {{Level::unknown, kSubject, "not known before HOME is mended"}};
  }
  const std::filesystem::path path = workstation.logs / "connTester.lock";
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) {
    return {errno == ENOENT || errno == ENOTDIR
                ? Finding{Level::well, kSubject, kNoRun}
                : Finding{Level::unknown, kSubject,
                          fmt::format("{} cannot be read: {}", shortened(workstation, path),
                                      std::strerror(errno))}};
  }
  // The start command, too, tries more than once, so that this does not keep a run from beginning.
  const bool isFree = flock(file, LOCK_SH | LOCK_NB) == 0;
  const int error = errno;
  close(file);
  if (isFree) {
    return {{Level::well, kSubject, kNoRun}};
  }
  return {error == EWOULDBLOCK
              ? describeRun(path)
              : Finding{Level::unknown, kSubject,
                        fmt::format("{} cannot be locked: {}", shortened(workstation, path),
                                    std::strerror(error))}};
}

}  // namespace watch
