#include "support/fake_shell.h"

std::function<int(const char* command)> fakeShell = [](const char* /*command*/) { return 0; };

// The names are those of the linker.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" int __real_system(const char* command);

extern "C" int __wrap_system(const char* command) {
  return fakeShell(command);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

int realShell(const char* command) {
  return __real_system(command);
}
