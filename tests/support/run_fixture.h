// The fixture of every unit test: a run at its start, in a directory of its own.
#pragma once

#include "support/fake_host.h"
#include "support/files.h"
#include "support/log_paths.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

/// Puts every global back to its start, sets the clock to 2026-11-16 05:40:00 UTC, and makes an
/// empty directory with "logs/archive/" in it the working directory, LOG_PATH and LOG_PATH_ARCHIVE.
class RunFixture : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Returns what `step` printed on standard output.
  template <typename Step>
  static std::string console(Step step) {
    testing::internal::CaptureStdout();
    step();
    return testing::internal::GetCapturedStdout();
  }

  /// How `step` ends: "returns", "invalid_argument" or "out_of_range".
  static std::string endingOf(const std::function<void()>& step);

  /// Makes `text` the configuration file until the test ends.
  void configure(const std::string& text);

  /// Turns the switch of every print around, but that of the print under test.
  static void flipPrintsBut(bool Configuration::*own);

  /// Moves the log directory to a path of 205 characters, the longest that HOME leads to.
  static void useLongestLogDirectory();

 private:
  bool configured_ = false;
};

inline constexpr std::time_t kStartTime = 1'794'807'600;
inline constexpr char kStartStamp[] = "20261116T054000";

/// The path of a file of tests/data/.
std::string testData(const std::string& name);

/// "text" repeated `count` times.
std::string repeated(const std::string& text, int count);
