// The command line of connWatch: its commands, their options, and what they call.
#pragma once

namespace watch {

/// Runs the command that the arguments name. Returns the exit status of the program.
int runCommandLine(int argc, char** argv);

}  // namespace watch
