#include "runs/no_test.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

TEST(WhyNoTest, IsSaidInAWordOrTwo) {
  const struct {
    const char* complaint;
    const char* why;
  } cases[] = {
      {"error - the server is busy running a test. try again later", "busy"},
      {"unable to connect to server: Connection refused", "refused"},
      {"unable to connect to server: Network is unreachable", "unreachable"},
      {"unable to connect to server: No route to host", "unreachable"},
      {"unable to connect to server - server may have stopped running or use a different port, "
       "firewall issue, etc.: Name or service not known",
       "unknown name"},
      {"unable to connect to server: Temporary failure in name resolution", "unknown name"},
      {"unable to connect to server: nodename nor servname provided, or not known", "unknown name"},
      {"unable to connect to server: Connection timed out", "no answer"},
      {"iperf3 had not ended after 91 seconds and was interrupted", "ended by its limit"},
      {"no other iperf3 in PATH or the usual folders; install one, for example with: apt-get "
       "install iperf3",
       "iperf3 missing"},
      {"sh: 1: iperf3: not found", "iperf3 missing"},
      {"control socket has closed unexpectedly", "control socket has closed unexpectedly"},
      {"", ""}};
  for (const auto& c : cases) {
    EXPECT_EQ(whyNoTest(c.complaint), c.why);
  }
}

}  // namespace
}  // namespace watch
