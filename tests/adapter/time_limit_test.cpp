#include "time_limit.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

using std::chrono::seconds;

int numberIn(std::vector<std::string> arguments) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) {
    pointers.push_back(argument.data());
  }
  pointers.push_back(nullptr);
  return lastNumber(pointers.data(), "-c", "--count");
}

TEST(TimeLimit, FollowsFromTheLastNumberInTheArguments) {
  const struct {
    std::vector<std::string> arguments;
    int number;
  } cases[] = {
      {{}, 0},
      {{"ping"}, 0},
      {{"ping", "-c", "10", "10.0.0.5"}, 10},
      {{"ping", "10.0.0.5", "-c10"}, 10},
      {{"ping", "--count", "10", "10.0.0.5"}, 10},
      {{"ping", "--count=10", "10.0.0.5"}, 10},
      {{"ping", "-c", "10", "-c", "3"}, 3},
      {{"ping", "-c", "10", "--count=0"}, 0},
      {{"ping", "-c", "-1"}, -1},
      {{"ping", "-c", "10x"}, 10},  // as iperf3 reads it
      {{"ping", "-c", "x"}, 0},
      {{"ping", "-c", ""}, 0},
      {{"ping", "-c", "2147483647"}, 2147483647},
      {{"ping", "-c", "2147483648"}, 0},
      {{"ping", "-c"}, 0},
      {{"ping", "10"}, 0},
      {{"ping", "-i", "10"}, 0},
      {{"ping", "-counter", "10"}, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));

    EXPECT_EQ(numberIn(c.arguments), c.number);
  }
}

TEST(TimeLimit, IsTheNumberAndTheGrace) {
  EXPECT_EQ(timeLimit("ping", 10, seconds(30)).run, seconds(40));
  EXPECT_EQ(timeLimit("iperf3", 1, seconds(60)).run, seconds(61));
  EXPECT_EQ(timeLimit("ping", 2147483647, seconds(30)).run, seconds(2147483677));
}

TEST(TimeLimit, IsAMinuteForARunWithoutEnd) {
  for (const int number : {0, -1, -2147483647}) {
    EXPECT_EQ(timeLimit("ping", number, seconds(30)).run, seconds(60));
  }
}

TEST(TimeLimit, HasTheGraceOfTheEnvironment) {
  setenv("CONNTESTER_GRACE_SECONDS", "5", 1);

  EXPECT_EQ(timeLimit("ping", 10, seconds(30)).run, seconds(15));
  EXPECT_EQ(timeLimit("ping", 0, seconds(30)).run, seconds(60));
}

TEST(TimeLimit, ComesWithAPatienceOfTenSecondsAtMost) {
  const struct {
    const char* grace;
    int patience;
  } cases[] = {{"1", 1}, {"9", 9}, {"10", 10}, {"11", 10}, {"2147483647", 10}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.grace);
    setenv("CONNTESTER_GRACE_SECONDS", c.grace, 1);

    EXPECT_EQ(timeLimit("ping", 10, seconds(30)).patience, seconds(c.patience));
  }
}

TEST(TimeLimit, KeepsItsDefaultWhereTheGraceIsNone) {
  for (const std::string grace : {"", " ", "0", "-1", "x", "5s", "5 ", " 5", "+5", "2147483648"}) {
    SCOPED_TRACE(grace);
    setenv("CONNTESTER_GRACE_SECONDS", grace.c_str(), 1);
    testing::internal::CaptureStderr();

    const TimeLimit limit = timeLimit("ping", 10, seconds(30));

    EXPECT_EQ(limit.run, seconds(40));
    EXPECT_EQ(limit.patience, seconds(10));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "ping adapter: CONNTESTER_GRACE_SECONDS is no number of seconds from 1: \"" + grace +
                  "\"; it is taken as 30\n");
  }
}

}  // namespace
