#include "guard/rewritten_line.h"

#include <cstdio>

namespace watch {

namespace {

/// To the first column, then away with all from there on.
constexpr char kErase[] = "\r\x1b[J";

}  // namespace

void RewrittenLine::write(const std::string& text) {
  if (text != text_) {
    std::fputs((kErase + text + "\r").c_str(), stderr);
    std::fflush(stderr);
    text_ = text;
  }
}

void RewrittenLine::clear() {
  if (!text_.empty()) {
    std::fputs(kErase, stderr);
    std::fflush(stderr);
    text_.clear();
  }
}

}  // namespace watch
