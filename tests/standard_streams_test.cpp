#include "standard_streams.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace {

using testing::Eq;
using testing::ExitedWithCode;

// Every step runs in a process of its own, whose streams it may close. It exits with 0 when all is
// as it should be.

int nextDescriptor() {
  const int descriptor = open("/dev/null", O_RDONLY);
  close(descriptor);
  return descriptor;
}

/// Closes the descriptors, and expects that a log file gets the number that it had before, and that
/// they read and write nothing.
[[noreturn]] void prepareClosed(std::initializer_list<int> descriptors) {
  const int before = nextDescriptor();
  for (const int descriptor : descriptors) {
    close(descriptor);
  }

  prepareStandardStreams();

  bool works = nextDescriptor() == before;
  for (const int descriptor : descriptors) {
    char c = '#';
    works &=
        descriptor == STDIN_FILENO ? read(descriptor, &c, 1) == 0 : write(descriptor, &c, 1) == 1;
  }
  std::_Exit(works ? 0 : 1);
}

[[noreturn]] void printAndDie() {
  // Only the buffering of a stream that nothing was printed on yet can be set.
  if (std::freopen("/dev/null", "w", stdout) == nullptr) {
    std::_Exit(1);
  }
  dup2(STDERR_FILENO, STDOUT_FILENO);

  prepareStandardStreams();

  std::printf("a line\nhalf a line");
  std::_Exit(0);
}

TEST(StandardStreams, ReadAndWriteNothingAndLeaveNoLogFileTheirNumberWhenTheyWereClosed) {
  EXPECT_EXIT(prepareClosed({}), ExitedWithCode(0), "");
  EXPECT_EXIT(prepareClosed({STDIN_FILENO}), ExitedWithCode(0), "");
  EXPECT_EXIT(prepareClosed({STDOUT_FILENO}), ExitedWithCode(0), "");
  EXPECT_EXIT(prepareClosed({STDERR_FILENO}), ExitedWithCode(0), "");
  EXPECT_EXIT(prepareClosed({STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}), ExitedWithCode(0), "");
}

TEST(StandardStreams, PassOnEachLineAsItIsPrinted) {
  EXPECT_EXIT(printAndDie(), ExitedWithCode(0), Eq("a line\n"));
}

}  // namespace
