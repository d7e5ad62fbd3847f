// Asking a tool: it runs with a time limit and nothing to read, and what it says is kept.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace watch {

struct Answer {
  /// Nothing for a tool that could not be started, has not ended in time, or was killed.
  std::optional<int> status = {};
  bool timedOut = false;
  /// All that it has written, to both outputs; of very much the beginning. Where it could not be
  /// started, why.
  std::string text = {};

  bool succeeded() const { return status == 0; }
};

/// Returns the path of the first program `name` that the folders of `searchPath` hold.
std::optional<std::string> findProgram(const std::string& name, const std::string& searchPath);

/// Runs the program at the path `command[0]`, with `searchPath` as PATH and in the language of the
/// C library. After `limit` it is interrupted as by ^C, a second later killed.
Answer ask(const std::vector<std::string>& command, const std::string& searchPath,
           std::chrono::milliseconds limit);

/// The same for a function that writes to standard output and returns the status, in a process of
/// its own.
Answer askFunction(const std::function<int()>& function, std::chrono::milliseconds limit);

/// Returns the first line of `text` that is not empty, and the last one; as they may be shown.
std::string firstLine(const std::string& text);
std::string lastLine(const std::string& text);

/// Returns in words how a tool has failed: what it said last, or that it has not ended.
std::string failure(const Answer& answer);

}  // namespace watch
