// The ping adapter: passes on every line of the system's ping as it comes, and gives the summary
// the form that connTester recognises. To be put first in PATH.

#include "adapter.h"
#include "messages.h"
#include "ping_summary.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr Tool kPing = {"ping", "iputils-ping", "-c", "--count", 30};

/// Characters of a line that may be a summary, its newline included.
constexpr std::size_t kLineCapacity = 4096;

/// Writes `text` at once, or ends this process with status 1.
void write(const std::string& text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    giveUp(kPing.name, cannot(std::string("write the output of ") + kPing.name), EXIT_FAILURE);
  }
}

/// Reads a line with its newline, or as much of a long or unfinished one as there is room for.
/// Returns "" at the end.
std::string readLine(std::FILE* input) {
  std::string line;
  while (line.size() < kLineCapacity && !line.ends_with('\n')) {
    const int character = std::getc(input);
    if (character == EOF) {
      break;
    }
    line += static_cast<char>(character);
  }
  return line;
}

/// Passes `output` on, line by line; a line that is too long in pieces, and as it is.
void passLinesOn(std::FILE* output) {
  ReplyTimes times;
  bool begins = true;
  for (std::string line; !(line = readLine(output)).empty();) {
    const bool ends = line.ends_with('\n') || line.size() < kLineCapacity;
    write(begins && ends ? adaptLine(line, times) : line);
    begins = ends;
  }
}

}  // namespace

int main(int /*argc*/, char** argv) {
  setenv("LC_ALL", "C.UTF-8", 1);
  return standInFor(kPing, argv, passLinesOn);
}
