// The run of a tool: its processes, the signals that reach it, and its end.
#pragma once

#include "time_limit.h"

#include <csignal>
#include <cstdio>
#include <string>
#include <sys/types.h>

/// Passes on what a tool prints, to its end. It runs in a process of its own, and ends that with
/// another status than 0 when it cannot write.
using Filter = void (*)(std::FILE* output);

struct ToolRun {
  pid_t tool;
  pid_t writer;      // of the output: the filter's process, or without a filter the tool's own
  sigset_t signals;  // held back, to be waited for
};

/// Runs `tool`, the program at `path`, with `arguments`. What it prints goes through `filter`, or
/// straight where this program's output goes when that is null. Ends this program with status 126
/// when there is no process or pipe to be had.
///
/// When this program is killed, so is the tool; but the kernel spares one with more rights than its
/// caller, such as a ping with a file capability. Its next line ends that one.
ToolRun startTool(const std::string& tool, const std::string& path, char** arguments,
                  Filter filter);

/// What has made a tool end.
enum class Cause { Itself, Signal, TimeLimit };

struct Ending {
  Cause cause;
  bool toolKilled;  // since it went on after the signal, or its interruption at the limit
  bool outputLeft;  // since it went on after the tool: another process has it, or nobody takes it
};

/// Follows `run` to its end. A hang-up, interrupt, quit or termination signal that a process sends
/// to this program is passed on, unless the caller has it ignored; one from the terminal has
/// reached the tool already. At the limit the tool is interrupted, as by ^C. What goes on after
/// that, or after a signal but the one to quit, is killed when the patience is at its end.
Ending follow(const ToolRun& run, const TimeLimit& limit);

/// Returns the exit status of the tool, or dies by the signal that killed it. Where it was the
/// filter that failed, its end counts.
int endLike(const ToolRun& run, const Ending& ending);
