// Where an export goes: standard output, or a file that is replaced in one step.
#pragma once

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace watch {

/// Collects what is written. Nothing of it is there before finish(). Throws std::system_error with
/// the name of what can't be written.
class Output {
 public:
  /// Without a path, standard output.
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

 private:
  [[noreturn]] void fail() const;

  std::optional<std::filesystem::path> path_;
  std::filesystem::path temporary_;
  std::FILE* file_ = stdout;
};

}  // namespace watch
