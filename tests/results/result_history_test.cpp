#include "results/result_history.h"

#include "run_state.h"
#include "support/run_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kHistory[] = "connection_test_results_history.log";

class ResultHistory : public RunFixture {};

TEST_F(ResultHistory, MovesAtTenLines) {
  const std::string move = "mv  " + logFile(kHistory) + " " +
                           archiveFile("connection_test_results_history_20261116T054000.log\n");
  const struct {
    std::string history;
    bool moves;
  } cases[] = {{"", false},
               {repeated("line\n", 9), false},
               {repeated("line\n", 9) + "line", true},
               {repeated("line\n", 10), true},
               {repeated("line\n", 25), true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.history);
    writeFile(logFile(kHistory), c.history);

    EXPECT_EQ(console(write_results_log_history_file), c.moves ? move + "\n" : "");
  }
  EXPECT_THAT(fakeHost.commands, ElementsAre(move, move, move));
}

TEST_F(ResultHistory, StaysMissing) {
  EXPECT_EQ(console(write_results_log_history_file), "");

  EXPECT_THAT(fakeHost.commands, IsEmpty());
  EXPECT_FALSE(fileExists(logFile(kHistory)));
}

}  // namespace
