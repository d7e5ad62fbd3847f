#include "support/fake_host.h"

FakeHost fakeHost;

// The linker hands every call of the wrapped functions to these; their names are its own.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {

int __real_system(const char* command);

int __wrap_system(const char* command) {
  fakeHost.commands.emplace_back(command);
  if (fakeHost.onCommand) {
    fakeHost.onCommand(command);
  }
  return fakeHost.runsCommands ? __real_system(command) : fakeHost.shellStatus;
}

int __wrap_nanosleep(const std::timespec* request, std::timespec* /*remainder*/) {
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

int __wrap_clock_gettime(clockid_t /*clock*/, std::timespec* now) {
  *now = fakeHost.monotonic;
  return 0;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
