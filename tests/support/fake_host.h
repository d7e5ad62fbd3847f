// The machine as a unit test sees it: a shell, a clock and a sleep that are replaced at link time.
#pragma once

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
  bool runsCommands = false;          // hand the commands to the real shell, too
  std::function<void(const std::string& command)> onCommand;  // what a command does instead
};
extern FakeHost fakeHost;
