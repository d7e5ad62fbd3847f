#include "tool_run.h"

#include "messages.h"

#include <algorithm>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kPassedOnSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

/// The signals to wait for: the end of a child, and those that are passed on. One that the caller
/// ignores, as nohup does the hang-up, stays ignored.
sigset_t awaitedSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGCHLD);
  for (const int signal : kPassedOnSignals) {
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN) {
      sigaddset(&signals, signal);
    }
  }
  return signals;
}

/// Like fork(); but the child is killed when this process is.
pid_t forkBound() {
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
      std::_Exit(EXIT_FAILURE);  // it was killed before
    }
  }
  return child;
}

/// The process of a filter, and the descriptor to write into it.
struct FilterProcess {
  pid_t process;
  int input;
};

/// Starts the process of `filter`; its number is -1 when there is no process or pipe to be had.
FilterProcess startFilter(Filter filter) {
  int ends[2];
  const pid_t process = pipe(ends) == 0 ? forkBound() : -1;
  if (process == -1) {
    return {-1, -1};
  }
  if (process == 0) {
    close(ends[1]);
    // Where nobody takes the output any more, the process is to end.
    std::signal(SIGPIPE, SIG_DFL);
    filter(fdopen(ends[0], "r"));
    std::_Exit(EXIT_SUCCESS);
  }
  close(ends[0]);
  return {process, ends[1]};
}

/// Turns this process, a child, into the tool, which writes to the descriptor `output`.
[[noreturn]] void becomeTool(const std::string& tool, const std::string& path, char** arguments,
                             int output) {
  if (output != STDOUT_FILENO) {
    dup2(output, STDOUT_FILENO);
    close(output);
  }
  execv(path.c_str(), arguments);
  giveUp(tool, cannot("run " + path), kCannotRunStatus);
}

/// How `process` has ended, or all zero when it has not and `options` say not to wait. It is not
/// reaped, so that a late signal finds it, and no other process of its number.
siginfo_t endOf(pid_t process, int options = 0) {
  siginfo_t end = {};
  waitid(P_PID, static_cast<id_t>(process), &end, WEXITED | WNOWAIT | options);
  return end;
}

bool hasEnded(pid_t process) {
  return endOf(process, WNOHANG).si_pid == process;
}

bool hasFailed(pid_t process) {
  const siginfo_t end = endOf(process, WNOHANG);
  return end.si_pid == process && (end.si_code != CLD_EXITED || end.si_status != EXIT_SUCCESS);
}

/// Waits up to `deadline` for a signal, and passes on to the tool what a process has sent. Returns
/// whether that asks the tool to end.
bool passSignalOn(const ToolRun& run, Clock::time_point deadline) {
  const Clock::duration left = std::max(deadline - Clock::now(), Clock::duration::zero());
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
  const std::chrono::nanoseconds rest = left - seconds;
  const timespec timeout = {seconds.count(), rest.count()};
  siginfo_t info = {};
  const int signal = sigtimedwait(&run.signals, &info, &timeout);
  // From the kernel come the end of a child and the keys at the terminal; the tool has got those.
  if (signal == -1 || info.si_code > 0) {
    return false;
  }
  kill(run.tool, signal);
  return signal == SIGHUP || signal == SIGINT || signal == SIGTERM;
}

/// Follows `run` until its tool has ended or is asked to end, and returns why.
Cause awaitCause(const ToolRun& run, Clock::time_point deadline) {
  while (!hasEnded(run.tool)) {
    if (hasFailed(run.writer)) {
      kill(run.tool, SIGKILL);
      return Cause::Itself;
    }
    if (Clock::now() >= deadline) {
      kill(run.tool, SIGINT);
      return Cause::TimeLimit;
    }
    if (passSignalOn(run, deadline)) {
      return Cause::Signal;
    }
  }
  return Cause::Itself;
}

/// Follows `run` until its `process` has ended, and kills that when it goes on after `patience`.
/// Returns whether it was killed.
bool killWhenLate(const ToolRun& run, pid_t process, std::chrono::seconds patience) {
  const Clock::time_point deadline = Clock::now() + patience;
  while (!hasEnded(process)) {
    if (Clock::now() >= deadline) {
      kill(process, SIGKILL);
      return true;
    }
    passSignalOn(run, deadline);
  }
  return false;
}

[[noreturn]] void dieBy(int signal) {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, signal);
  std::signal(signal, SIG_DFL);
  sigprocmask(SIG_UNBLOCK, &signals, nullptr);
  std::raise(signal);
  // The first process of a container is not killed so: the status is the shell's for the signal.
  std::_Exit(128 + signal);
}

}  // namespace

ToolRun startTool(const std::string& tool, const std::string& path, char** arguments,
                  Filter filter) {
  // Where the ends of children are ignored, their statuses are lost.
  std::signal(SIGCHLD, SIG_DFL);
  const sigset_t signals = awaitedSignals();
  sigset_t mask;
  sigprocmask(SIG_BLOCK, &signals, &mask);
  const FilterProcess writer =
      filter != nullptr ? startFilter(filter) : FilterProcess{0, STDOUT_FILENO};
  const pid_t process = writer.process != -1 ? forkBound() : -1;
  if (process == -1) {
    giveUp(tool, cannot("run " + path), kCannotRunStatus);
  }
  if (process == 0) {
    sigprocmask(SIG_SETMASK, &mask, nullptr);
    becomeTool(tool, path, arguments, writer.input);
  }
  if (filter == nullptr) {
    return {process, process, signals};
  }
  close(writer.input);
  return {process, writer.process, signals};
}

Ending follow(const ToolRun& run, const TimeLimit& limit) {
  Ending ending = {};
  ending.cause = awaitCause(run, Clock::now() + limit.run);
  ending.toolKilled = killWhenLate(run, run.tool, limit.patience);
  ending.outputLeft = killWhenLate(run, run.writer, limit.patience);
  return ending;
}

int endLike(const ToolRun& run, const Ending& ending) {
  const bool filterCounts = !ending.outputLeft && hasFailed(run.writer);
  const siginfo_t end = endOf(filterCounts ? run.writer : run.tool);
  if (end.si_code != CLD_EXITED) {
    dieBy(end.si_status);
  }
  return end.si_status;
}
