// How far a run has come, by what the tester prints.
#pragma once

#include "evidence/ping_output.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace watch {

/// The steps of a run, in their order. One that is switched off is passed over.
enum class Step : std::uint8_t { start, ping, write, read, end };

class Progress {
 public:
  Progress() = default;
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  Step step() const { return step_; }
  /// The tester itself runs: the start command has not refused.
  bool hasStarted() const { return hasStarted_; }
  /// The times of the replies so far, in milliseconds.
  std::span<const double> replies() const {
    return outputs_.empty() ? std::span<const double>() : outputs_.back().replies;
  }
  /// What ping has printed so far; null when that is nothing.
  const PingOutput* pingOutput() const { return outputs_.empty() ? nullptr : &outputs_.back(); }

  /// What the tool of that step, or its adapter, has complained of first, without its name.
  const std::string& complaint(Step step) const {
    return complaints_.at(static_cast<std::size_t>(step));
  }

  /// Takes the next line, without its newline, of what the tester and its tools print.
  void take(std::string_view line);
  /// The report of the write test has been made anew. No line tells of that: the tester prints none
  /// between its ping and that test.
  void takeNewReport() { advance(Step::write); }

 private:
  void advance(Step step);
  void takeComplaint(std::string_view line);

  Step step_ = Step::start;
  bool hasStarted_ = false;
  bool writeReportIsRead_ = false;
  std::vector<PingOutput> outputs_;
  PingOutputReader reader_{outputs_};
  std::array<std::string, static_cast<std::size_t>(Step::end) + 1> complaints_;
};

}  // namespace watch
