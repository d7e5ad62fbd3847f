// An adapter: a program that has the name of a tool and stands in front of it. It runs the system's
// tool with the same arguments, sees to it that this ends, and ends as the tool has ended.
//
// Linux only: it finds itself through /proc, and the kernel ends the tool of a killed adapter.
#pragma once

#include "tool_run.h"

/// A tool, as its adapter knows it.
struct Tool {
  const char* name;
  const char* package;      // that brings it on Debian
  const char* shortOption;  // either gives the number of seconds that the tool is to take
  const char* longOption;
  int graceSeconds;  // that it may take beyond that: see time_limit.h
};

/// Runs `tool` with `arguments` to its end. What it prints goes through `filter`, or where this
/// program's own output goes when there is none. Says in one line on standard error what has not
/// gone as it should. Returns the exit status of the tool, or dies by the signal that killed it;
/// returns 127 when there is no such tool, and ends with 126 when it cannot be run.
int standInFor(const Tool& tool, char** arguments, Filter filter = nullptr);
