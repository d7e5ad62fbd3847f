// A program under test: its standard streams, the signals that it gets, and its end.
#pragma once

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

/// A terminal, which controls the session of a process that makes it one of its descriptors.
class Terminal {
 public:
  Terminal();
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  void become(int descriptor) const;
  void press(char key) const;

 private:
  int keyboard;
};

/// A running program in a session of its own. Whatever still runs of it when the test is done is
/// killed. Nothing here ends by itself when the program never writes or ends: ctest has a limit.
class Process {
 public:
  /// Starts `arguments[0]`, called by its bare name, after `prepare` has run in the new process.
  explicit Process(
      const std::vector<std::string>& arguments, const std::function<void()>& prepare = [] {});
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  /// The next line of the output, with its newline; what there is of it when the output ends.
  std::string readLine() const;
  /// The next `size` bytes of the output, or what there is of them when the output ends.
  std::string readBytes(std::size_t size) const;
  /// The output up to its end.
  std::string readOutput() const;
  /// The standard error output up to its end, which comes when all processes of the program ended.
  std::string readErrors() const;

  void writeInput(const std::string& text) const;
  void closeOutput();
  void sendSignal(int signal) const;
  /// Stops the program, and it alone; SIGCONT has it go on.
  void stop() const;
  /// Waits until the tool, the program's last child, waits for something, or has ended.
  void awaitSleepOfTool() const;
  /// Waits until the filter, the program's first child, has ended, and the program has seen that.
  void awaitEndOfFilter() const;
  /// Waits until nothing more can be written to the output.
  void awaitFullOutput() const;

  /// Waits for the end: "exit status 0", "killed by signal 15".
  std::string end() const;
  /// The rest of both outputs, then the end.
  std::string result() const;

 private:
  pid_t process = -1;
  int input = -1;
  int output = -1;
  int errors = -1;
};
