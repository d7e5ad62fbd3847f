#include "standard_streams.h"

#include "support/run_fixture.h"

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

[[noreturn]] void leaveLogFilesTheirNumber(std::initializer_list<int> closedDescriptors) {
  const int before = nextDescriptor();
  for (const int descriptor : closedDescriptors) {
    close(descriptor);
  }

  prepareStandardStreams();

  std::_Exit(nextDescriptor() == before ? 0 : 1);
}

[[noreturn]] void readAndWriteNothing(std::initializer_list<int> closedDescriptors) {
  for (const int descriptor : closedDescriptors) {
    close(descriptor);
  }

  prepareStandardStreams();

  bool works = true;
  for (const int descriptor : closedDescriptors) {
    char c = '#';
    works &=
        descriptor == STDIN_FILENO ? read(descriptor, &c, 1) == 0 : write(descriptor, &c, 1) == 1;
  }
  std::_Exit(works ? 0 : 1);
}

[[noreturn]] void printAndDie() {
  printOnStandardError();

  prepareStandardStreams();

  std::printf("a line\nhalf a line");
  std::_Exit(0);
}

TEST(StandardStreams, LeaveNoLogFileTheNumberOfAClosedOne) {
  EXPECT_EXIT(leaveLogFilesTheirNumber({}), ExitedWithCode(0), "");
  EXPECT_EXIT(leaveLogFilesTheirNumber({STDIN_FILENO}), ExitedWithCode(0), "");
  EXPECT_EXIT(leaveLogFilesTheirNumber({STDOUT_FILENO}), ExitedWithCode(0), "");
  EXPECT_EXIT(leaveLogFilesTheirNumber({STDERR_FILENO}), ExitedWithCode(0), "");
  EXPECT_EXIT(leaveLogFilesTheirNumber({STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}),
              ExitedWithCode(0), "");
}

TEST(StandardStreams, ReadAndWriteNothingWhenTheyWereClosed) {
  EXPECT_EXIT(readAndWriteNothing({STDIN_FILENO}), ExitedWithCode(0), "");
  EXPECT_EXIT(readAndWriteNothing({STDOUT_FILENO}), ExitedWithCode(0), "");
  EXPECT_EXIT(readAndWriteNothing({STDERR_FILENO}), ExitedWithCode(0), "");
  EXPECT_EXIT(readAndWriteNothing({STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}), ExitedWithCode(0),
              "");
}

TEST(StandardStreams, PassOnEachLineAsItIsPrinted) {
  EXPECT_EXIT(printAndDie(), ExitedWithCode(0), Eq("a line\n"));
}

}  // namespace
