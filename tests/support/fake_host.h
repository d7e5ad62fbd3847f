// The machine as a unit test sees it: a shell, a clock and a sleep that are replaced at link time.
#pragma once

#include "monotonic_clock.h"

#include <ctime>
#include <functional>
#include <string>
#include <vector>

struct FakeHost {
  std::vector<std::string> commands;  // every command line that the shell was given
  std::vector<std::timespec> sleeps;  // every request to sleep
  std::time_t now = 0;                // the clock, moved by sleeping
  std::timespec monotonic = {};       // the monotonic clock
  int shellStatus = 0;                // what the shell returns
  int sleepStatus = 0;                // what the sleep returns
  int failingTimeTexts = 0;           // how many calls of ctime and ctime_r fail from now on
  bool runsCommands = false;          // hand the commands to the real shell, too
  std::function<void(const std::string& command)> onCommand;  // what a command does instead

  int run(const char* command);  // the shell
};
extern FakeHost fakeHost;

/// What a tick of the monotonic clock lasts: 24 ticks make a microsecond. Not a part of FakeHost,
/// as the program asks for it before main() starts.
inline constexpr ClockTimebase kTimebaseAtStart = {125, 3};
inline constinit ClockTimebase fakeTimebase = kTimebaseAtStart;

/// The ticks of this machine, which fakeTimebase stands for.
ClockTimebase platformTimebase();
