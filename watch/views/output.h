// Where the commands write: standard output, or a file that is replaced in one step.
#pragma once

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace watch {

/// Collects what is written. A file is there only when finish() has returned. Throws
/// std::runtime_error with the name of what can't be written.
class Output {
 public:
  /// Without a path, standard output. A link is followed; what is no regular file is refused.
  explicit Output(std::optional<std::filesystem::path> path);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  /// Without finish(), removes what was begun.
  ~Output();

  void write(std::string_view text);
  /// Where the file grows until finish(), for what writes it by itself.
  const std::filesystem::path& temporary() const { return temporary_; }
  /// Puts the file in its place: written to the disk, then renamed.
  void finish();
  /// What is written, for messages.
  std::string name() const;

 private:
  void begin();
  [[noreturn]] void fail() const;

  std::optional<std::filesystem::path> path_;
  std::filesystem::path temporary_;
  std::FILE* file_ = stdout;
};

/// Writes to standard output what a command has to say.
void print(std::string_view text);

}  // namespace watch
