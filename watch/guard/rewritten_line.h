// The last line of the terminal, on standard error, which is rewritten in place.
#pragma once

#include <string>

namespace watch {

class RewrittenLine {
 public:
  RewrittenLine() = default;
  RewrittenLine(const RewrittenLine&) = delete;
  RewrittenLine& operator=(const RewrittenLine&) = delete;
  ~RewrittenLine() { clear(); }

  /// Puts `text` in place of what stands there. The cursor stays at its beginning: so a terminal
  /// that becomes narrower and wraps the line keeps it where all of it can be erased.
  void write(const std::string& text);
  void clear();

 private:
  std::string text_;
};

}  // namespace watch
