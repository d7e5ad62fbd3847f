#include "doctor/tool.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <string>

namespace watch {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLong{10'000};
constexpr char kPath[] = "/usr/bin:/bin";

Answer askShell(const std::string& script, milliseconds limit = kLong) {
  return ask({"/bin/sh", "-c", script}, kPath, limit);
}

TEST(Tool, SaysWhatItWritesAndHowItEnds) {
  const Answer answer = askShell("echo one; echo two >&2; exit 3");

  EXPECT_EQ(answer.text, "one\ntwo\n");
  EXPECT_EQ(answer.status, 3);
  EXPECT_FALSE(answer.timedOut);
  EXPECT_FALSE(answer.succeeded());
  EXPECT_EQ(failure(answer), "it says \"two\"");
}

TEST(Tool, HasItsPathAndTheLanguageOfTheLibraryAndNothingToRead) {
  const Answer answer = askShell("echo $PATH $LC_ALL; cat");

  EXPECT_EQ(answer.text, "/usr/bin:/bin C\n");
  EXPECT_TRUE(answer.succeeded());
}

TEST(Tool, IsInterruptedAtItsLimitAndSaysSo) {
  const Answer answer =
      askShell("trap 'echo interrupted; exit' INT; echo begun; while :; do sleep 0.01; done",
               milliseconds(100));

  EXPECT_EQ(answer.text, "begun\ninterrupted\n");
  EXPECT_EQ(answer.status, std::nullopt);
  EXPECT_TRUE(answer.timedOut);
  EXPECT_EQ(failure(answer), "it has not ended in time");
}

TEST(Tool, IsKilledWhenItHeedsNoInterruptAndLeavesItsOutputOpen) {
  const auto begin = std::chrono::steady_clock::now();

  const Answer answer =
      askShell("trap '' INT; sleep 5 & while :; do sleep 0.01; done", milliseconds(50));

  EXPECT_TRUE(answer.timedOut);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, milliseconds(4000));
}

TEST(Tool, IsNotWaitedForWhenOnlyItsOutputIsLeftOpen) {
  const auto begin = std::chrono::steady_clock::now();

  const Answer answer = askShell("sleep 5 & echo done");

  EXPECT_EQ(answer.text, "done\n");
  EXPECT_TRUE(answer.succeeded());
  EXPECT_LT(std::chrono::steady_clock::now() - begin, milliseconds(4000));
}

TEST(Tool, IsHeardInPartWhenItSaysVeryMuch) {
  const Answer answer = askShell("yes | head -c 1000000");

  EXPECT_EQ(answer.text.size(), 65536U);
  EXPECT_TRUE(answer.succeeded());
}

TEST(Tool, FailsInWords) {
  EXPECT_EQ(failure(askShell("exit 4")), "it ends with status 4");
  EXPECT_EQ(failure(askShell("kill -KILL $$")), "it was killed by a signal");
  EXPECT_EQ(failure(ask({"/nowhere/tool"}, kPath, kLong)), "it says \"No such file or directory\"");
}

TEST(Tool, MayBeAFunction) {
  const Answer answer = askFunction(
      [] {
        std::puts("said");
        return 2;
      },
      kLong);

  EXPECT_EQ(answer.text, "said\n");
  EXPECT_EQ(answer.status, 2);
}

TEST(Tool, IsTheFirstOfItsNameInPath) {
  EXPECT_EQ(findProgram("sh", "/nowhere:/bin:/usr/bin"), "/bin/sh");
  EXPECT_EQ(findProgram("sh", "/nowhere"), std::nullopt);
  EXPECT_EQ(findProgram("bin", "/usr"), std::nullopt);
}

TEST(AnswerText, HasAFirstAndALastLineThatCanBeShown) {
  EXPECT_EQ(firstLine("\n  one \r\ntwo\n\n"), "one");
  EXPECT_EQ(lastLine("\n  one \r\ntwo\n\n"), "two");
  EXPECT_EQ(firstLine("\x1b[1m"), "?[1m");
  EXPECT_EQ(firstLine(" \n"), "");
}

}  // namespace
}  // namespace watch
