// The system's own `ping`: found behind this program in PATH, run, and followed to its end.
#pragma once

#include <cstdio>
#include <string>
#include <sys/types.h>

/// Returns the path of the first executable `ping` in PATH behind this program itself, and "" when
/// there is none. Ends this program with status 126 where /proc does not tell its own file, as it
/// does on Linux.
std::string findSystemPing();

/// A `ping` that runs, with what it prints on its standard output.
struct SystemPing {
  pid_t process;
  std::FILE* output;
};

/// Runs the `ping` at `path` with `arguments`, its texts English and its numbers with a point. From
/// then on it is given each hang-up, interrupt, quit and termination signal that a process sends to
/// this program. Ends this program with status 126 when there is no process or pipe to be had.
SystemPing startSystemPing(const std::string& path, char** arguments);

/// Waits for the end of `ping` and returns its exit status, or dies by the signal that killed it.
int endLike(const SystemPing& ping);

/// Kills a `ping` whose output could not be written, for `writeError`, and returns exit status 1;
/// dies by SIGPIPE when the reader of the output has gone.
int endWithoutOutput(const SystemPing& ping, int writeError);
