// The shell, replaced at link time (--wrap=system).
#pragma once

#include <functional>

/// Takes each command line that the program hands to the shell, and returns the shell's status. At
/// first, does nothing and returns 0.
extern std::function<int(const char* command)> fakeShell;

/// Hands `command` to the real shell.
int realShell(const char* command);
