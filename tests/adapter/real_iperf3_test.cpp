// The adapter in front of the real iperf3. tests/networks has it measure, and its server fail.

#include "adapter/adapter_fixture.h"
#include "adapter/process.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class RealIperf3 : public AdapterFixture {
 protected:
  RealIperf3() : AdapterFixture(IPERF3_ADAPTER) {}

  void SetUp() override {
    AdapterFixture::SetUp();
    linkTool(IPERF3);
  }
};

TEST_F(RealIperf3, PrintsWhatItPrintsAlone) {
  const std::vector<std::string> cases[] = {
      {"--version"}, {"--help"}, {"-c"}, {"-c", "127.0.0.1", "-t", "1", "-J"},  // is refused
  };
  for (std::vector<std::string> arguments : cases) {
    SCOPED_TRACE(testing::PrintToString(arguments));
    const std::string result = run(arguments);
    arguments.insert(arguments.begin(), tool);

    EXPECT_EQ(result, Process(arguments).result());
  }
}

}  // namespace
