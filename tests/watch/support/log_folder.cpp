#include "watch/support/log_folder.h"

#include "support/files.h"

#include <cstdlib>
#include <dirent.h>
#include <stdexcept>

std::function<void()> beforeListing;

LogFolder::LogFolder() {
  char directory[] = "/tmp/log.XXXXXX";
  if (mkdtemp(directory) == nullptr) {
    throw std::runtime_error("cannot make a directory below /tmp");
  }
  path_ = directory;
}

LogFolder::~LogFolder() {
  std::filesystem::remove_all(path_);
}

void LogFolder::write(const std::string& name, const std::string& text) const {
  std::filesystem::create_directories((path_ / name).parent_path());
  writeFile(path_ / name, text);
}

// The linker hands the calls of opendir() to the first of these; the names are its own.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" DIR* __real_opendir(const char* path);

extern "C" DIR* __wrap_opendir(const char* path) {
  if (beforeListing) {
    beforeListing();
  }
  return __real_opendir(path);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
