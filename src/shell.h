// The one door to the shell.
#pragma once

/// Runs the command line in `cmd`, waits for it and returns what `system` returned.
int runCommand();
