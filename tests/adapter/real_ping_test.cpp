// The adapter in front of real pings, on loopback.

#include "adapter/adapter_fixture.h"
#include "adapter/process.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <ostream>
#include <regex>
#include <string>

namespace {

/// A real ping, and what it prints of a single reply, with a # in place of each time.
struct Implementation {
  const char* name;
  const char* program;
  const char* output;
};

std::ostream& operator<<(std::ostream& out, const Implementation& implementation) {
  return out << implementation.name;
}

constexpr Implementation kImplementations[] = {
    {"iputils", IPUTILS_PING, R"(PING 127.0.0.1 (127.0.0.1) 56(84) bytes of data.
64 bytes from 127.0.0.1: icmp_seq=1 ttl=64 time=# ms

--- 127.0.0.1 ping statistics ---
1 packets transmitted, 1 received, 0% packet loss, time #ms
round-trip min/avg/max/stddev = #/#/#/# ms
)"},
    {"busybox", BUSYBOX, R"(PING 127.0.0.1 (127.0.0.1): 56 data bytes
64 bytes from 127.0.0.1: seq=0 ttl=64 time=# ms

--- 127.0.0.1 ping statistics ---
1 packets transmitted, 1 packets received, 0% packet loss
round-trip min/avg/max/stddev = #/#/#/# ms
)"},
    {"inetutils", INETUTILS_PING, R"(PING 127.0.0.1 (127.0.0.1): 56 data bytes
64 bytes from 127.0.0.1: icmp_seq=0 ttl=64 time=# ms
--- 127.0.0.1 ping statistics ---
1 packets transmitted, 1 packets received, 0% packet loss
round-trip min/avg/max/stddev = #/#/#/# ms
)"},
};

/// `text` with a # in place of each time.
std::string withoutTimes(const std::string& text) {
  static const std::regex kTime("(time[= ])[0-9.]+|(= |/)[0-9]+\\.[0-9]+");
  return std::regex_replace(text, kTime, "$1$2#");
}

class RealPing : public AdapterFixture, public testing::WithParamInterface<Implementation> {
 protected:
  RealPing() : AdapterFixture(PING_ADAPTER) {}

  void SetUp() override {
    AdapterFixture::SetUp();
    linkTool(GetParam().program);
  }
};

INSTANTIATE_TEST_SUITE_P(Each, RealPing, testing::ValuesIn(kImplementations),
                         testing::PrintToStringParamName());

TEST_P(RealPing, PrintsARecognisedSummary) {
  EXPECT_EQ(withoutTimes(run({"-c", "1", "127.0.0.1"})),
            std::string(GetParam().output) + "exit status 0");
}

// Where the key is not ignored, it ends tee, and the summary is lost.
TEST_P(RealPing, LeavesItsSummaryToATeeThatIgnoresTheInterruptKey) {
  const std::string command = "exec " + adapter + " -i 50 127.0.0.1 > >(exec /usr/bin/tee kept)";
  const Terminal terminal;
  Process process({"/bin/bash", "-c", command}, [&terminal] {
    terminal.become(STDIN_FILENO);
    std::signal(SIGINT, SIG_IGN);
    // The end of the adapter, which is the first process at the terminal here, is a hang-up to tee.
    std::signal(SIGHUP, SIG_IGN);
  });
  std::string output = process.readLine();
  output += process.readLine();
  // Busybox prints from its signal handler, which spoils a line that it is just printing.
  process.awaitSleepOfTool();

  terminal.press('\x03');

  output += process.readOutput();
  EXPECT_EQ(withoutTimes(output), GetParam().output);
  EXPECT_EQ(readFile("kept"), output);
  EXPECT_EQ(process.end(), "exit status 0");
}

TEST_P(RealPing, StillPrintsItsSummaryWhenItsTimeIsOver) {
  setGraceSeconds("1");

  EXPECT_EQ(withoutTimes(run({"-c", "2", "-i", "50", "127.0.0.1"})),
            std::string(GetParam().output) +
                "ping adapter: ping had not ended after 3 seconds and was interrupted\n"
                "exit status 0");
}

TEST_P(RealPing, FailsAsItDoesAlone) {
  const std::string alone = Process({tool, "-c", "1", "10.99.0.7"}).result();  // has no route
  EXPECT_THAT(alone, testing::ContainsRegex("Network is unreachable\nexit status [12]$"));

  EXPECT_EQ(run({"-c", "1", "10.99.0.7"}), alone);
}

}  // namespace
