#include "views/output.h"

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace watch {

namespace {

/// The rights of the file that is replaced, or those of a new one.
mode_t rightsFor(const std::filesystem::path& path) {
  struct stat old {};
  if (stat(path.c_str(), &old) == 0) {
    return old.st_mode & 0777U;
  }
  const mode_t mask = umask(0);
  umask(mask);
  return 0666U & ~mask;
}

}  // namespace

Output::Output(std::optional<std::filesystem::path> path) : path_(std::move(path)) {
  if (path_) {
    begin();
  }
}

void Output::begin() {
  std::error_code none;
  if (const auto target = std::filesystem::canonical(*path_, none); !none) {
    path_ = target;
    if (!std::filesystem::is_regular_file(*path_)) {
      throw std::runtime_error(path_->string() + " is no file that can be replaced");
    }
  }
  std::string pattern = path_->string() + ".XXXXXX";
  const int descriptor = mkstemp(pattern.data());
  if (descriptor < 0) {
    fail();
  }
  temporary_ = pattern;
  fchmod(descriptor, rightsFor(*path_));
  file_ = fdopen(descriptor, "w");
  if (file_ == nullptr) {
    unlink(temporary_.c_str());
    fail();
  }
}

Output::~Output() {
  if (path_ && file_ != nullptr) {
    std::fclose(file_);
    unlink(temporary_.c_str());
  }
}

void Output::write(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), file_) != text.size()) {
    fail();
  }
}

void Output::finish() {
  if (std::fflush(file_) != 0) {
    fail();
  }
  if (!path_) {
    return;
  }
  if (fsync(fileno(file_)) != 0 || std::rename(temporary_.c_str(), path_->c_str()) != 0) {
    fail();
  }
  std::fclose(file_);
  file_ = nullptr;
}

std::string Output::name() const {
  return path_ ? path_->string() : "standard output";
}

void Output::fail() const {
  throw std::system_error(errno, std::generic_category(), name());
}

void print(std::string_view text) {
  Output output(std::nullopt);
  output.write(text);
  output.finish();
}

}  // namespace watch
