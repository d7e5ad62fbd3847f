// The run: start, tests in their fixed order, result line.
//
// Files: the directory LOG_PATH_ARCHIVE, and with it LOG_PATH (created).
#pragma once

/// Runs the tester once, with the arguments of the command line, and returns 0: every failure of a
/// tool shows in the results only. Exits with status 2 for an address that `ipaddr` cannot hold,
/// and as init() does.
///
/// Throws what init() and the readers of the tools' output throw.
int runConnectionTest(int argc, char** argv);

/// Starts the run: stamps it, prints the banner, reads the configuration, builds the log paths from
/// HOME and creates their directories. Returns the shell's status of the creation. Exits with
/// status 2 when HOME is too long for the command lines.
///
/// Throws what readConfigFile() throws.
int init();
