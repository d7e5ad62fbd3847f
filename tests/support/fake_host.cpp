#include "support/fake_host.h"

#include "support/fake_shell.h"

#include <gtest/gtest.h>

FakeHost fakeHost;

int FakeHost::run(const char* command) {
  commands.emplace_back(command);
  if (onCommand) {
    onCommand(command);
  }
  return runsCommands ? realShell(command) : shellStatus;
}

namespace {

bool timeTextFails() {
  if (fakeHost.failingTimeTexts == 0) {
    return false;
  }
  --fakeHost.failingTimeTexts;
  return true;
}

}  // namespace

// The linker hands every call of the wrapped functions to these; their names are its own.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {

int __wrap_nanosleep(const std::timespec* request, std::timespec* remainder) {
  EXPECT_EQ(remainder, nullptr);
  fakeHost.sleeps.push_back(*request);
  fakeHost.now += request->tv_sec;
  return fakeHost.sleepStatus;
}

std::time_t __wrap_time(std::time_t* t) {
  if (t != nullptr) {
    *t = fakeHost.now;
  }
  return fakeHost.now;
}

int __wrap_clock_gettime(clockid_t clock, std::timespec* now) {
  EXPECT_EQ(clock, CLOCK_MONOTONIC);
  *now = fakeHost.monotonic;
  return 0;
}

char* __real_ctime(const std::time_t* t);

char* __wrap_ctime(const std::time_t* t) {
  return timeTextFails() ? nullptr : __real_ctime(t);
}

char* __real_ctime_r(const std::time_t* t, char* buf);

char* __wrap_ctime_r(const std::time_t* t, char* buf) {
  return timeTextFails() ? nullptr : __real_ctime_r(t, buf);
}

ClockTimebase __real__Z17monotonicTimebasev();

ClockTimebase __wrap__Z17monotonicTimebasev() {
  return fakeTimebase;
}

}  // extern "C"

ClockTimebase platformTimebase() {
  return __real__Z17monotonicTimebasev();
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
