#include "guard/tester_output.h"

#include "files.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace watch {

namespace {

constexpr std::size_t kMostText = 65536;
constexpr mode_t kMode = 0600;

}  // namespace

void TesterOutput::noteTrouble() {
  if (trouble_.empty()) {
    trouble_ =
        fmt::format("cannot write {}: {}", (path_ / kRunLatest).string(), std::strerror(errno));
  }
}

/// The start command has seen to it that the file, if there is one, is the user's own.
void TesterOutput::keep() {
  if (!file_ && trouble_.empty()) {
    const int file = open((path_ / kRunLatest).c_str(),
                          O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, kMode);
    file_.reset(file >= 0 ? fdopen(file, "w") : nullptr);
  }
  if (!file_ || std::fwrite(unkept_.data(), 1, unkept_.size(), file_.get()) != unkept_.size() ||
      std::fflush(file_.get()) != 0) {
    noteTrouble();
  }
  unkept_.clear();
}

void TesterOutput::takeLines(Progress& progress) {
  std::size_t begin = 0;
  std::size_t end = unfinishedLine_.find('\n');
  while (end != std::string::npos) {
    progress.take({unfinishedLine_.data() + begin, end - begin});
    begin = end + 1;
    end = unfinishedLine_.find('\n', begin);
  }
  unfinishedLine_.erase(0, begin);
  // What no tool prints: of a line without an end the beginning is kept.
  unfinishedLine_.resize(std::min(kMostText, unfinishedLine_.size()));
}

void TesterOutput::take(const std::string& text, Progress& progress) {
  if (text.empty()) {
    return;
  }
  if (isShown_) {
    std::fwrite(text.data(), 1, text.size(), stderr);
  } else {
    text_.append(text, 0, kMostText - std::min(kMostText, text_.size()));
  }
  unkept_ += text;
  unfinishedLine_ += text;
  takeLines(progress);
  if (progress.hasStarted()) {
    keep();
  }
}

void TesterOutput::finish(Progress& progress) {
  if (!unfinishedLine_.empty()) {
    progress.take(unfinishedLine_);
  }
}

}  // namespace watch
