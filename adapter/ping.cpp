// A `ping` to stand first in PATH: it runs the system's `ping` with the same arguments, passes on
// every line as it comes, and gives the summary the form that connTester recognises.

#include "ping_summary.h"
#include "system_ping.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr char kNoPing[] =
    "ping adapter: no system ping behind this one in PATH; install one, for example with: "
    "apt-get install iputils-ping\n";

/// The exit status by which a shell, too, says that a program was not found.
constexpr int kNotFoundStatus = 127;

/// Writes `line` at once; returns 0, or the error number when it cannot be written.
int write(const std::string& line) {
  const bool written =
      std::fwrite(line.data(), 1, line.size(), stdout) == line.size() && std::fflush(stdout) == 0;
  return written ? 0 : errno;
}

/// Passes `output` on, line by line, to its end; returns the error number of a line that cannot be
/// written, otherwise 0.
int passOutputOn(std::FILE* output) {
  ReplyTimes times;
  char* line = nullptr;
  std::size_t capacity = 0;
  int error = 0;
  for (ssize_t length = 0; error == 0 && (length = getline(&line, &capacity, output)) > 0;) {
    error = write(adaptLine(std::string(line, static_cast<std::size_t>(length)), times));
  }
  std::free(line);
  return error;
}

}  // namespace

int main(int /*argc*/, char** argv) {
  const std::string path = findSystemPing();
  if (path.empty()) {
    std::fputs(kNoPing, stderr);
    return kNotFoundStatus;
  }
  const SystemPing ping = startSystemPing(path, argv);
  const int writeError = passOutputOn(ping.output);
  return writeError == 0 ? endLike(ping) : endWithoutOutput(ping, writeError);
}
