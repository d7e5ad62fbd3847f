#include "evidence/run_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace watch {

std::optional<EpochSeconds> beginOfEndedRun(const LogDirectory& directory) {
  const std::filesystem::path path = directory.path() / "connTester.lock";
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) {
    return std::nullopt;
  }
  struct stat status = {};
  // The start command, too, tries more than once, so that this does not keep a run from beginning.
  const bool hasEnded = flock(file, LOCK_SH | LOCK_NB) == 0 && fstat(file, &status) == 0;
  close(file);
  return hasEnded ? std::optional<EpochSeconds>(status.st_mtime) : std::nullopt;
}

}  // namespace watch
