#include "guard/run.h"

#include "config/config_file.h"
#include "evidence/evidence.h"
#include "guard/progress.h"
#include "guard/rewritten_line.h"
#include "guard/screen.h"
#include "guard/signals.h"
#include "guard/tester_output.h"
#include "guard/tester_process.h"
#include "journal/journal.h"
#include "journal/latest_reports.h"
#include "log_files.h"
#include "run_state.h"
#include "runs/join.h"
#include "runs/states.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace watch {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kRedrawTime{250};
constexpr milliseconds kSilentTime{1000};
constexpr int kDiedBySignal = 128;

EpochSeconds currentTime() {
  using std::chrono::duration_cast;
  using std::chrono::seconds;
  return duration_cast<seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

double secondsSince(Clock::time_point then) {
  return std::chrono::duration<double>(Clock::now() - then).count();
}

/// Settings that the tester does not take are for it to complain of.
std::optional<Configuration> readSettings() {
  try {
    readConfigFile();
  } catch (const std::logic_error&) {
    return std::nullopt;
  }
  return ConfigurationParameters;
}

/// The runs of the time in which something is usual, and later. More is not read: it takes the
/// machine's time from the test that goes on.
std::vector<Run> recentRuns(const LogDirectory& directory, EpochSeconds start) {
  std::vector<Run> runs = joinRuns(readEvidenceSince(directory, localTime(start - kUsualPeriod)));
  std::erase_if(runs, [](const Run& run) { return run.orphan; });
  return runs;
}

/// Whether the terminal of standard error is this program's, and not a shell's, say.
bool isInForeground() {
  const pid_t foreground = tcgetpgrp(STDERR_FILENO);
  return foreground == -1 || foreground == getpgrp();
}

/// Prints at once, whether or not anybody reads.
void print(std::FILE* file, const std::string& text) {
  std::fputs(text.c_str(), file);
  std::fflush(file);
}

/// " in write test"
std::string placeIn(Step step) {
  return step == Step::start || step == Step::end
             ? ""
             : fmt::format(" in {}{}", name(step), step == Step::ping ? "" : " test");
}

/// How a run has not come to its end, by the status of the start command.
std::string describeStatus(int status, Step step) {
  if (status == 0) {
    return "";
  }
  const std::string how = status > kDiedBySignal
                              ? fmt::format("by signal {}", status - kDiedBySignal)
                              : fmt::format("with status {}", status);
  return fmt::format("ended {}{}", how, placeIn(step));
}

LogDirectory directoryOfRun() {
  if (const auto own = ownDirectory()) {
    return *own;
  }
  throw std::runtime_error("HOME is not set: a run needs a log directory");
}

class GuardedRun {
 public:
  explicit GuardedRun(const RunRequest& request)
      : directory_(directoryOfRun()),
        address_(request.address.value_or("")),
        settings_(readSettings()),
        plan_(planOf(settings_.value_or(Configuration()))),
        start_(currentTime()),
        before_(recentRuns(directory_, start_)),
        oldFiles_(timesOfLatest(directory_)),
        style_(styleOf(STDOUT_FILENO)),
        isLive_(styleOf(STDERR_FILENO).canRewrite && !request.hasTrace),
        output_(directory_.path(), request.hasTrace) {}

  /// Returns the exit status of the run that `tester` makes.
  int run(TesterProcess& tester) {
    follow(tester);
    const int status = *tester.status();
    if (!progress_.hasStarted() && signalThatCame() == 0) {
      print(stderr, output_.text());
      return status == kRunIsBusy ? kRunIsBusy : kNoRun;
    }
    return conclude(status);
  }

 private:
  void follow(TesterProcess& tester) {
    bool isEnding = false;
    while (!tester.status()) {
      waitForSomething(tester.output(), isLive_ ? kRedrawTime : kSilentTime);
      if (signalThatCame() != 0 && !isEnding) {
        tester.end();
        isEnding = true;
      }
      listen(tester);
      show();
    }
    listen(tester);
    output_.finish(progress_);
    line_.clear();
  }

  void listen(TesterProcess& tester) {
    const Step before = progress_.step();
    const bool isNewReport = before < Step::write && latestOfRun()[kWriteReport];
    // What ping has printed was there before that report.
    output_.take(tester.read(), progress_);
    if (isNewReport) {
      progress_.takeNewReport();
    }
    if (progress_.step() != before) {
      stepStart_ = Clock::now();
    }
  }

  /// A file that has changed since the start: the shell makes a report anew as its test begins.
  LatestOfRun latestOfRun() const {
    const LatestTimes now = timesOfLatest(directory_);
    LatestOfRun isOfRun{};
    for (std::size_t i = 0; i < now.size(); ++i) {
      isOfRun[i] = now[i] && now[i] != oldFiles_[i];
    }
    return isOfRun;
  }

  void show() {
    const Step step = progress_.step();
    if (style_.canRewrite && step > shownUpTo_) {
      shownUpTo_ = step;
      showRows(thisRun().value_or(Run()), false);
    }
    if (isLive_ && isInForeground() && step != Step::start && step != Step::end) {
      line_.write(goingLine({step, secondsSince(stepStart_), planned(step), progress_.replies()},
                            styleOf(STDERR_FILENO)));
    }
  }

  PlannedTest planned(Step step) const {
    return step == Step::ping ? plan_.ping : step == Step::write ? plan_.write : plan_.read;
  }

  /// This run, as far as its lines are there, as all commands read it.
  std::optional<Run> thisRun() const {
    const std::vector<Run> runs = recentRuns(directory_, start_);
    const EpochSeconds now = currentTime();
    const auto found = std::ranges::find_if(runs.rbegin(), runs.rend(), [&](const Run& run) {
      return run.time && *run.time >= start_ && *run.time <= now;
    });
    if (found != runs.rend()) {
      return withSettings(*found);
    }
    // A run that has measured nothing may have no time. Its place is behind all others.
    return runs.size() > before_.size() ? std::optional(withSettings(runs.back())) : std::nullopt;
  }

  /// The files do not tell a ping that is switched off from one that could not run.
  Run withSettings(Run run) const {
    if (plan_.ping.mostSeconds == 0 && run.ping.state == PingState::noOutput) {
      run.ping.state = PingState::off;
      run.runClass = classOf(run);
    }
    return run;
  }

  /// Prints the rows of the tests that have ended, but for those that stand there already. What the
  /// files do not tell may be told at the end of the run.
  void showRows(const Run& run, bool isAtEnd) {
    for (const Step step : {Step::ping, Step::write, Step::read}) {
      const bool isTold = step < progress_.step() && (isAtEnd || isKnown(step, run));
      const std::string row = isTold ? rowOf(step, run) : "";
      std::string& shown = rows_.at(static_cast<std::size_t>(step));
      if (isTold && row != shown) {
        line_.clear();
        print(stdout, row);
        shown = row;
      }
    }
  }

  bool isKnown(Step step, const Run& run) const {
    return step == Step::ping    ? pingOf(run).state != PingState::unknown
           : step == Step::write ? run.write.state != RateState::unknown
                                 : run.read.state != RateState::unknown;
  }

  std::string rowOf(Step step, const Run& run) const {
    const Metric& metric = step == Step::ping ? kLatency : step == Step::write ? kWrite : kRead;
    const RowContext context{usualThen(before_, metric, start_), start_, progress_.complaint(step),
                             progress_.replies()};
    if (step == Step::ping) {
      return pingRow(pingOf(run), context, style_);
    }
    return rateRow(step, step == Step::write ? run.write : run.read, context, style_);
  }

  /// A ping without a summary leaves no line, and no run can be told to be its own as long as no
  /// other test has ended: then its output alone tells what it came to.
  Ping pingOf(const Run& run) const {
    return run.ping.state == PingState::unknown && progress_.pingOutput() != nullptr
               ? judge(PingFacts{.output = progress_.pingOutput()})
               : run.ping;
  }

  /// Keeps of the run what the next one overwrites. `run` is what its lines tell.
  void keep(const std::optional<Run>& run, const std::string& end) const {
    JournalLine line = readLatestReports(directory_, latestOfRun());
    line.start = start_;
    line.end = currentTime();
    line.ended = end.empty() ? "finished" : end;
    line.address = address_;
    line.settings = settings_;
    // A file that a run was to write as it was ended may lack what was seen.
    if (progress_.pingOutput() != nullptr && !line.ping) {
      line.ping.emplace().output = *progress_.pingOutput();
    }
    addTo(line.ping, progress_.complaint(Step::ping));
    addTo(line.write, progress_.complaint(Step::write));
    addTo(line.read, progress_.complaint(Step::read));
    if (line.ping && run && run->timeSource == TimeSource::ping) {
      line.ping->start = localTime(*run->time);
    }
    try {
      appendToJournal(directory_, line, start_);
    } catch (const std::system_error& error) {
      print(stderr, fmt::format("connWatch: {}\n", error.what()));
    }
  }

  template <class Tool>
  static void addTo(std::optional<Tool>& tool, const std::string& said) {
    if (!said.empty()) {
      tool = tool.value_or(Tool());
      tool->said = said;
    }
  }

  /// "ended by ^C in ping", or empty.
  std::string abnormalEnd(int status) const {
    if (const int signal = signalThatCame(); signal != 0) {
      return fmt::format("ended by {}{}", describeSignal(signal), placeIn(progress_.step()));
    }
    return describeStatus(status, progress_.step());
  }

  /// Shows what has come of the run, whose start command has ended with `status`.
  int conclude(int status) {
    std::optional<Run> run = thisRun();
    const std::string end = abnormalEnd(status);
    if (run || signalThatCame() != 0) {
      keep(run, end);
      run = thisRun();
    }
    if (run) {
      showRows(*run, true);
    }
    if (!output_.trouble().empty()) {
      print(stderr, "connWatch: " + output_.trouble() + "\n");
    }
    const std::string time = fmt::format("{:.0f} s", secondsSince(begin_));
    if (const int signal = signalThatCame(); signal != 0) {
      print(stdout, fmt::format("{}, after {}\n", end, time));
      dieBy(signal);
    }
    const std::string howLong = time + (end.empty() ? "" : ": " + end);
    if (!run) {
      print(stderr, output_.text());
      print(stdout, fmt::format("{}, after {}\n", paint(style_, Tone::bad, "no run"), howLong));
      return kNoRun;
    }
    const Class result = status == 0 ? run->runClass : std::max(run->runClass, Class::partial);
    print(stdout, fmt::format("{} in {}\n", paint(style_, tone(result), name(result)), howLong));
    return static_cast<int>(result);
  }

  LogDirectory directory_;
  std::string address_;
  std::optional<Configuration> settings_;
  Plan plan_;
  EpochSeconds start_;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point stepStart_ = begin_;
  std::vector<Run> before_;
  LatestTimes oldFiles_;
  Style style_;
  bool isLive_;
  Progress progress_;
  /// The rows of the tests before this step have been shown.
  Step shownUpTo_ = Step::ping;
  std::array<std::string, static_cast<std::size_t>(Step::end)> rows_;
  RewrittenLine line_;
  TesterOutput output_;
};

static_assert(static_cast<int>(Class::ok) == kRunIsOk);
static_assert(static_cast<int>(Class::partial) == kRunIsPartial);
static_assert(static_cast<int>(Class::failed) == kRunHasFailed);

}  // namespace

int guardedRun(const RunRequest& request) {
  // What a run is compared with may take long to read. Up to there a signal ends this program
  // alone.
  GuardedRun guarded(request);
  holdBackSignals();
  TesterProcess tester(startCommand(), request.address);
  return guarded.run(tester);
}

}  // namespace watch
