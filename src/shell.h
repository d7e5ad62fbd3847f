// The one door to the shell.
#pragma once

/// Runs the command line in `cmd` behind all that was printed before, waits for it and returns what
/// `system` returned.
int runCommand();
