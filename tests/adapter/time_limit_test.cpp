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

TEST(TimeLimit, IsTheNumberAndTheGraceOrAMinute) {
  const struct {
    int number;
    const char* grace;
    long long run;
    int patience;
  } cases[] = {{10, nullptr, 40, 10},
               {2147483647, nullptr, 2147483677, 10},
               {0, nullptr, 60, 10},
               {-1, nullptr, 60, 10},
               {-2147483647, nullptr, 60, 10},
               {10, "5", 15, 5},
               {0, "5", 60, 5},
               {1, "1", 2, 1},
               {1, "9", 10, 9},
               {1, "10", 11, 10},
               {1, "2147483647", 2147483648, 10}};
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    if (c.grace != nullptr) {
      setenv("CONNTESTER_GRACE_SECONDS", c.grace, 1);
    }

    const TimeLimit limit = timeLimit("ping", c.number, seconds(30));

    EXPECT_EQ(limit.run, seconds(c.run));
    EXPECT_EQ(limit.patience, seconds(c.patience));
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
