#include "views/output.h"

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace watch {

Output::Output(std::optional<std::filesystem::path> path) : path_(std::move(path)) {
  if (!path_) {
    return;
  }
  std::string pattern = path_->string() + ".XXXXXX";
  const int descriptor = mkstemp(pattern.data());
  if (descriptor < 0) {
    fail();
  }
  temporary_ = pattern;
  // mkstemp makes it readable for its owner alone.
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(descriptor, 0666 & ~mask);
  file_ = fdopen(descriptor, "w");
}

Output::~Output() {
  if (path_ && file_ != nullptr) {
    std::fclose(file_);
    std::filesystem::remove(temporary_);
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

void Output::fail() const {
  throw std::system_error(errno, std::generic_category(),
                          path_ ? path_->string() : "standard output");
}

}  // namespace watch
