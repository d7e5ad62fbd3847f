#include "shell.h"

#include "run_state.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

namespace {

using testing::ElementsAre;

class Shell : public RunFixture {};

TEST_F(Shell, IsGivenTheCommandLineAsItStands) {
  formatInto(cmd, "%s", "ping -c 3  \"10.0.0.5\" %s > x\n");

  runCommand();

  EXPECT_THAT(fakeHost.commands, ElementsAre("ping -c 3  \"10.0.0.5\" %s > x\n"));
  EXPECT_STREQ(cmd, "ping -c 3  \"10.0.0.5\" %s > x\n");
}

TEST_F(Shell, GivesItsStatusBack) {
  fakeHost.shellStatus = 127 << 8;

  EXPECT_EQ(runCommand(), 127 << 8);
}

TEST_F(Shell, PrintsBetweenWhatStandsBeforeAndAfterTheCommand) {
  fakeHost.runsCommands = true;
  formatInto(cmd, "echo tool\n");

  const std::string text = console([] {
    std::fputs("before, ", stdout);
    runCommand();
    std::fputs("after", stdout);
  });

  EXPECT_EQ(text, "before, tool\nafter");
}

}  // namespace
