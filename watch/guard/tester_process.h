// The start command as a process of this one: started, heard, ended.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>

namespace watch {

/// Returns the start command that is installed beside this program; where the system does not tell
/// where that is, the first in PATH.
std::filesystem::path startCommand();

class TesterProcess {
 public:
  /// Starts `command` with `address`, if any, in a session of its own, which the terminal's keys do
  /// not reach, without input. Throws std::runtime_error when it cannot be run.
  TesterProcess(const std::filesystem::path& command, const std::optional<std::string>& address);
  TesterProcess(const TesterProcess&) = delete;
  TesterProcess& operator=(const TesterProcess&) = delete;
  /// Ends it, if need be, and waits for that.
  ~TesterProcess();

  /// Where its output and its complaints can be read, those of its tools too; -1 at their end.
  int output() const { return output_; }
  /// Reads what is there by now, or a part of very much.
  std::string read();
  /// Returns, once it has ended, the exit status, or 128 and the signal by which it has died.
  std::optional<int> status();
  /// Asks it to end the run with all its tools, which takes five seconds at most.
  void end() const;

 private:
  pid_t process_ = -1;
  int output_ = -1;
  std::optional<int> status_;
};

}  // namespace watch
