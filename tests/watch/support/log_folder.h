// A log directory for a test.
#pragma once

#include "evidence/log_directory.h"

#include <filesystem>
#include <functional>
#include <string>

/// An empty directory below /tmp, which goes with what is in it.
class LogFolder {
 public:
  LogFolder();
  ~LogFolder();
  LogFolder(const LogFolder&) = delete;
  LogFolder& operator=(const LogFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  watch::LogDirectory directory() const { return watch::LogDirectory(path_); }

  /// Makes the file `name`, and the directories that it needs.
  void write(const std::string& name, const std::string& text) const;

 private:
  std::filesystem::path path_;
};

/// Called each time before an archive is listed, until it is emptied.
extern std::function<void()> beforeListing;
