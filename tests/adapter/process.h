// A program under test: its standard streams, the signals that it gets, and its end.
#pragma once

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

/// Text as a test reads it: the whole file at `path`, which must be there.
std::string readFile(const std::string& path);

/// A running program in a session of its own. Whatever still runs of it when the test is done is
/// killed. Nothing here ends by itself when the program never writes or ends: ctest has a limit.
class Process {
 public:
  /// Starts `arguments[0]`, named "ping" to itself, after `prepare` has run in the new process.
  explicit Process(
      const std::vector<std::string>& arguments, const std::function<void()>& prepare = [] {});
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  Process(Process&&) = delete;
  Process& operator=(Process&&) = delete;

  /// The next line of the output, with its newline; what there is of it when the output ends.
  std::string readLine() const;
  /// The output up to its end.
  std::string readOutput() const;
  /// The standard error output up to its end, which comes when all processes of the program ended.
  std::string readErrors() const;

  void writeInput(const std::string& text) const;
  void closeOutput();
  void sendSignal(int signal) const;
  /// Waits until the child of the program waits for something, or has ended.
  void awaitSleepOfChild() const;

  /// Waits for the end: "exit status 0", "killed by signal 15".
  std::string end() const;

 private:
  pid_t process = -1;
  int input = -1;
  int output = -1;
  int errors = -1;
};
