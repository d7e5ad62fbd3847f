// What the tester prints in a guarded run: kept, and cut into lines.
//
// Files: run-latest.log in the log directory (replaced when the run has started).
#pragma once

#include "guard/progress.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace watch {

class TesterOutput {
 public:
  /// With `isShown`, it goes to standard error, too, as it comes.
  TesterOutput(std::filesystem::path directory, bool isShown)
      : path_(std::move(directory)), isShown_(isShown) {}

  /// Takes the next piece, and has `progress` take its lines. What the start command says when it
  /// refuses is kept in no file: the latest run's is that of another, or of none.
  void take(const std::string& text, Progress& progress);
  /// Takes the end: a last line without a newline counts, too.
  void finish(Progress& progress);

  /// What has not been shown: all of it, the first part of very much, or nothing.
  const std::string& text() const { return text_; }
  /// Why it could not be kept, as "cannot write PATH: REASON"; empty when it was.
  const std::string& trouble() const { return trouble_; }

 private:
  void takeLines(Progress& progress);
  void keep();
  void noteTrouble();

  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::filesystem::path path_;
  bool isShown_;
  std::string text_;
  std::string unfinishedLine_;
  std::string unkept_;
  std::unique_ptr<std::FILE, Close> file_;
  std::string trouble_;
};

}  // namespace watch
