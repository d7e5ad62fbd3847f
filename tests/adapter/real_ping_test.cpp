// The adapter in front of real pings, on loopback.

#include "adapter/adapter_fixture.h"
#include "adapter/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <ostream>
#include <regex>
#include <string>
#include <unistd.h>

namespace {

/// A real ping, and what it prints of a single reply, with a # in place of each time.
struct Implementation {
  const char* name;
  const char* program;
  const char* firstLine;
  const char* replyLine;
  const char* lastLines;
};

std::ostream& operator<<(std::ostream& out, const Implementation& implementation) {
  return out << implementation.name;
}

constexpr Implementation kImplementations[] = {
    {"iputils", IPUTILS_PING, "PING 127.0.0.1 (127.0.0.1) 56(84) bytes of data.\n",
     "64 bytes from 127.0.0.1: icmp_seq=1 ttl=64 time=# ms\n",
     "\n--- 127.0.0.1 ping statistics ---\n"
     "1 packets transmitted, 1 received, 0% packet loss, time #ms\n"
     "round-trip min/avg/max/stddev = #/#/#/# ms\n"},
    {"busybox", BUSYBOX, "PING 127.0.0.1 (127.0.0.1): 56 data bytes\n",
     "64 bytes from 127.0.0.1: seq=0 ttl=64 time=# ms\n",
     "\n--- 127.0.0.1 ping statistics ---\n"
     "1 packets transmitted, 1 packets received, 0% packet loss\n"
     "round-trip min/avg/max/stddev = #/#/#/# ms\n"},
    {"inetutils", INETUTILS_PING, "PING 127.0.0.1 (127.0.0.1): 56 data bytes\n",
     "64 bytes from 127.0.0.1: icmp_seq=0 ttl=64 time=# ms\n",
     "--- 127.0.0.1 ping statistics ---\n"
     "1 packets transmitted, 1 packets received, 0% packet loss\n"
     "round-trip min/avg/max/stddev = #/#/#/# ms\n"},
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

  /// Reads the first two lines of a ping that goes on, and compares them.
  static std::string readReply(const Process& process) {
    std::string lines = process.readLine();
    lines += process.readLine();
    EXPECT_EQ(withoutTimes(lines), std::string(GetParam().firstLine) + GetParam().replyLine);
    // Busybox prints from its signal handler, which spoils a line that it is just printing.
    process.awaitSleepOfTool();
    return lines;
  }
};

INSTANTIATE_TEST_SUITE_P(Each, RealPing, testing::ValuesIn(kImplementations),
                         testing::PrintToStringParamName());

TEST_P(RealPing, PrintsARecognisedSummary) {
  EXPECT_EQ(withoutTimes(run({"-c", "1", "127.0.0.1"})),
            std::string(GetParam().firstLine) + GetParam().replyLine + GetParam().lastLines +
                "exit status 0");
}

TEST_P(RealPing, StillPrintsItsSummaryWhenItIsInterrupted) {
  Process process({adapter, "-i", "50", "127.0.0.1"});
  readReply(process);

  process.sendSignal(SIGINT);

  EXPECT_EQ(withoutTimes(process.result()), std::string(GetParam().lastLines) + "exit status 0");
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
  const std::string reply = readReply(process);

  terminal.press('\x03');

  const std::string summary = process.readOutput();
  EXPECT_EQ(withoutTimes(summary), GetParam().lastLines);
  EXPECT_EQ(readFile("kept"), reply + summary);
  EXPECT_EQ(process.end(), "exit status 0");
}

TEST_P(RealPing, StillPrintsItsSummaryWhenItsTimeIsOver) {
  setGraceSeconds("1");

  EXPECT_EQ(withoutTimes(run({"-c", "2", "-i", "50", "127.0.0.1"})),
            std::string(GetParam().firstLine) + GetParam().replyLine + GetParam().lastLines +
                "ping adapter: ping had not ended after 3 seconds and was interrupted\n"
                "exit status 0");
}

TEST_P(RealPing, EndsWhenItIsTerminated) {
  Process process({adapter, "-i", "50", "127.0.0.1"});
  readReply(process);

  process.sendSignal(SIGTERM);

  EXPECT_EQ(process.result(), "killed by signal 15");
}

TEST_P(RealPing, FailsAsItDoesAlone) {
  const std::string alone = Process({tool, "-c", "1", "10.99.0.7"}).result();  // has no route
  EXPECT_THAT(alone, testing::ContainsRegex("Network is unreachable\nexit status [12]$"));

  EXPECT_EQ(run({"-c", "1", "10.99.0.7"}), alone);
}

class IputilsPing : public AdapterFixture {
 protected:
  IputilsPing() : AdapterFixture(PING_ADAPTER) {}
};

TEST_F(IputilsPing, PrintsInterimStatisticsWhenItIsAskedToQuit) {
  linkTool(IPUTILS_PING);
  Process process({adapter, "-i", "50", "127.0.0.1"}, [] { dup2(STDOUT_FILENO, STDERR_FILENO); });
  process.readLine();
  process.readLine();

  process.sendSignal(SIGQUIT);

  EXPECT_EQ(withoutTimes(process.readLine()),
            "\r1/1 packets, 0% loss, min/avg/ewma/max = #/#/#/# ms\n");
  process.sendSignal(SIGINT);
  EXPECT_EQ(withoutTimes(process.readOutput()), kImplementations[0].lastLines);
}

}  // namespace
