// The adapter in front of the real iperf3, against a server on loopback.

#include "adapter/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr char kErrorOfAnInterrupt[] = "\"error\":\t\"interrupt - the client has terminated";
constexpr char kInterrupted[] =
    "iperf3 adapter: iperf3 had not ended after 2 seconds and was interrupted\n";

/// A system's iperf3 that has a second of grace, and a server that waits for it.
class RealIperf3 : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(access(IPERF3, X_OK), 0) << "There is no iperf3 at \"" << IPERF3
                                       << "\": script/test installs all that the tests need.";
    setenv("PATH", std::filesystem::path(IPERF3).parent_path().c_str(), 1);
    setenv("CONNTESTER_GRACE_SECONDS", "1", 1);
    awaitServer("Server listening");
  }

  /// Waits until the server has said `text`.
  void awaitServer(const std::string& text) const {
    std::string line;
    do {
      line = server.readLine();
      ASSERT_NE(line, "") << "The server ended before it said \"" << text << "\".";
    } while (line.find(text) == std::string::npos);
  }

  const Process server{{IPERF3, "-s", "--forceflush", "-i", "0.1"}};
};

TEST_F(RealIperf3, PrintsWhatItPrintsAlone) {
  const std::vector<std::string> cases[] = {
      {"--version"},
      {"--help"},
      {"-c"},
      {"-c", "127.0.0.1", "-p", "1", "-t", "1", "-J"},  // is refused
  };
  for (std::vector<std::string> arguments : cases) {
    SCOPED_TRACE(testing::PrintToString(arguments));
    arguments.insert(arguments.begin(), IPERF3);
    Process alone(arguments);
    arguments[0] = IPERF3_ADAPTER;
    Process adapter(arguments);

    EXPECT_EQ(adapter.readOutput(), alone.readOutput());
    EXPECT_EQ(adapter.readErrors(), alone.readErrors());
    EXPECT_EQ(adapter.end(), alone.end());
  }
}

TEST_F(RealIperf3, MeasuresAsItDoesAlone) {
  Process adapter({IPERF3_ADAPTER, "-c", "127.0.0.1", "-t", "1", "-J"});

  const std::string report = adapter.readOutput();

  EXPECT_THAT(report, HasSubstr("\t\t\"sum_received\":\t{"));
  EXPECT_THAT(report, testing::Not(HasSubstr("\"error\"")));
  EXPECT_EQ(adapter.readErrors(), "");
  EXPECT_EQ(adapter.end(), "exit status 0");
}

TEST_F(RealIperf3, ReportsAServerThatWasFrozenBeforeTheTest) {
  server.stop();
  Process forward({IPERF3_ADAPTER, "-c", "127.0.0.1", "-t", "1", "-J"});
  Process reverse({IPERF3_ADAPTER, "-c", "127.0.0.1", "-t", "1", "-J", "-R"});
  for (Process* const adapter : {&forward, &reverse}) {
    EXPECT_THAT(adapter->readOutput(), HasSubstr(kErrorOfAnInterrupt));
    EXPECT_EQ(adapter->readErrors(), kInterrupted);
    EXPECT_THAT(adapter->end(), StartsWith("exit status "));
  }
}

TEST_F(RealIperf3, ReportsAServerThatIsFrozenInTheTest) {
  Process adapter({IPERF3_ADAPTER, "-c", "127.0.0.1", "-t", "1", "-J"});
  awaitServer("connected to");

  server.stop();

  const std::string report = adapter.readOutput();
  EXPECT_THAT(report, HasSubstr("\t\t\"sum_sent\":\t{"));
  EXPECT_THAT(report, HasSubstr(kErrorOfAnInterrupt));
  EXPECT_EQ(adapter.readErrors(), kInterrupted);
  EXPECT_THAT(adapter.end(), StartsWith("exit status "));
}

TEST_F(RealIperf3, EndsWithTheToolWhenItIsTerminated) {
  Process adapter({IPERF3_ADAPTER, "-c", "127.0.0.1", "-t", "10", "-J"});
  awaitServer("connected to");

  adapter.sendSignal(SIGTERM);

  EXPECT_THAT(adapter.readOutput(), HasSubstr(kErrorOfAnInterrupt));
  EXPECT_EQ(adapter.readErrors(), "");
  EXPECT_THAT(adapter.end(), StartsWith("exit status "));
}

}  // namespace
