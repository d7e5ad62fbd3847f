// The signals that a guarded run waits for.
#pragma once

#include <chrono>

namespace watch {

/// From now on holds back what ends a program: ^C, a termination, a hang-up, ^\, an alarm. One that
/// the caller has ignored, as nohup does the hang-up, stays ignored. Nobody may read what is
/// written: that is no signal any more.
void holdBackSignals();

/// Waits until something can be read from `descriptor`, a held back signal or the end of a child
/// comes, or `time` is over. Without a descriptor (-1) only for the others.
void waitForSomething(int descriptor, std::chrono::milliseconds time);

/// Returns the first held back signal that has come, or 0.
int signalThatCame();

/// "^C", "a termination signal".
const char* describeSignal(int signal);

/// Ends this program by `signal`.
[[noreturn]] void dieBy(int signal);

}  // namespace watch
