// The adapter in front of real pings, on loopback.

#include "adapter/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <regex>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// A real ping and the texts in which it differs from the others.
struct Implementation {
  const char* name;
  const char* program;
  const char* size;
  const char* sequence;
  int firstSequence;
  const char* statistics;  // what follows the replies
  const char* received;
  const char* duration;
  bool measuresDeviation;
};

std::ostream& operator<<(std::ostream& out, const Implementation& implementation) {
  return out << implementation.name;
}

constexpr Implementation kImplementations[] = {
    {"iputils", IPUTILS_PING, " 56(84) bytes of data.", "icmp_seq=", 1, "\n---", " received",
     ", time #ms", true},
    {"busybox", BUSYBOX, ": 56 data bytes", "seq=", 0, "\n---", " packets received", "", true},
    // Its deviation is 0.000 for times that differ as little as these.
    {"inetutils", INETUTILS_PING, ": 56 data bytes", "icmp_seq=", 0, "---", " packets received", "",
     false},
};

std::string firstLine(const Implementation& ping) {
  return "PING 127.0.0.1 (127.0.0.1)" + std::string(ping.size) + "\n";
}

std::string replyLine(const Implementation& ping, int reply) {
  return "64 bytes from 127.0.0.1: " +
         (ping.sequence + std::to_string(ping.firstSequence + reply)) + " ttl=64 time=# ms\n";
}

std::string lastLines(const Implementation& ping, int replies) {
  const std::string count = std::to_string(replies);
  return std::string(ping.statistics) + " 127.0.0.1 ping statistics ---\n" + count +
         " packets transmitted, " + count + ping.received + ", 0% packet loss" + ping.duration +
         "\nround-trip min/avg/max/stddev = #/#/#/# ms\n";
}

/// `text` with a # in place of each time.
std::string withoutTimes(const std::string& text) {
  static const std::regex kTime("(time[= ])[0-9.]+|(= |/)[0-9]+\\.[0-9]+");
  return std::regex_replace(text, kTime, "$1$2#");
}

/// The numbers that the first group of `pattern` finds in `text`.
std::vector<double> numbersIn(const std::string& text, const std::string& pattern) {
  std::vector<double> numbers;
  const std::regex expression(pattern);
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
       ++match) {
    numbers.push_back(std::stod((*match)[1]));
  }
  return numbers;
}

double mean(const std::vector<double>& numbers) {
  double sum = 0.0;
  for (const double number : numbers) {
    sum += number;
  }
  return sum / static_cast<double>(numbers.size());
}

double deviation(const std::vector<double>& numbers) {
  double sumOfSquares = 0.0;
  for (const double number : numbers) {
    sumOfSquares += std::pow(number - mean(numbers), 2);
  }
  return std::sqrt(sumOfSquares / static_cast<double>(numbers.size()));
}

/// A directory that holds one real ping, behind the adapter in PATH.
class RealPing : public testing::TestWithParam<Implementation> {
 protected:
  void SetUp() override { putBehindAdapter(GetParam()); }

  void putBehindAdapter(const Implementation& implementation) {
    ASSERT_EQ(access(implementation.program, X_OK), 0)
        << "There is no ping of " << implementation.name << " at \"" << implementation.program
        << "\": script/test installs all that the tests need.";
    char name[] = "/tmp/ping.XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    directory = name;
    fs::create_symlink(implementation.program, directory / "ping");
    const std::string adapterDirectory = fs::path(PING_ADAPTER).parent_path();
    setenv("PATH", (adapterDirectory + ":" + directory.string()).c_str(), 1);
  }

  void TearDown() override { fs::remove_all(directory); }

  fs::path directory;
};

INSTANTIATE_TEST_SUITE_P(Each, RealPing, testing::ValuesIn(kImplementations),
                         testing::PrintToStringParamName());

TEST_P(RealPing, PrintsARecognisedSummaryOfItsReplies) {
  Process adapter({PING_ADAPTER, "-c", "3", "-i", "0.2", "127.0.0.1"});
  const std::string output = adapter.readOutput();

  EXPECT_EQ(withoutTimes(output), firstLine(GetParam()) + replyLine(GetParam(), 0) +
                                      replyLine(GetParam(), 1) + replyLine(GetParam(), 2) +
                                      lastLines(GetParam(), 3));
  EXPECT_EQ(adapter.readErrors(), "");
  EXPECT_EQ(adapter.end(), "exit status 0");
  const std::vector<double> times = numbersIn(output, "time=([0-9.]+) ms");
  const std::vector<double> summary = numbersIn(output, "(?:= |/)([0-9]+\\.[0-9]{3})(?=[/ ])");
  ASSERT_EQ(summary.size(), 4U) << output;
  // A reply's time has three digits that count.
  const double maximum = *std::max_element(times.begin(), times.end());
  const double tolerance = 0.0015 + maximum / 100;
  EXPECT_NEAR(summary[0], *std::min_element(times.begin(), times.end()), tolerance) << output;
  EXPECT_NEAR(summary[1], mean(times), tolerance) << output;
  EXPECT_NEAR(summary[2], maximum, tolerance) << output;
  if (GetParam().measuresDeviation) {
    EXPECT_NEAR(summary[3], deviation(times), tolerance) << output;
  }
}

TEST_P(RealPing, StillPrintsItsSummaryWhenItIsInterrupted) {
  Process adapter({PING_ADAPTER, "-i", "50", "127.0.0.1"});
  EXPECT_EQ(adapter.readLine(), firstLine(GetParam()));
  EXPECT_EQ(withoutTimes(adapter.readLine()), replyLine(GetParam(), 0));
  // Busybox prints from its signal handler, which spoils a line that it is just printing.
  adapter.awaitSleepOfTool();

  adapter.sendSignal(SIGINT);

  EXPECT_EQ(withoutTimes(adapter.readOutput()), lastLines(GetParam(), 1));
  EXPECT_EQ(adapter.readErrors(), "");
  EXPECT_EQ(adapter.end(), "exit status 0");
}

// Where the key is not ignored, it ends tee, and the summary is lost.
TEST_P(RealPing, LeavesItsSummaryToATeeThatIgnoresTheInterruptKey) {
  const std::string file = directory / "kept";
  const std::string command =
      std::string("exec ") + PING_ADAPTER + " -i 50 127.0.0.1 > >(exec /usr/bin/tee " + file + ")";
  const Terminal terminal;
  Process adapter({"/bin/bash", "-c", command}, [&terminal] {
    terminal.become(STDIN_FILENO);
    std::signal(SIGINT, SIG_IGN);
    // The end of the adapter, which is the first process at the terminal here, is a hang-up to tee.
    std::signal(SIGHUP, SIG_IGN);
  });
  std::string output = adapter.readLine();
  output += adapter.readLine();
  adapter.awaitSleepOfTool();

  terminal.press('\x03');

  output += adapter.readOutput();
  EXPECT_EQ(withoutTimes(output),
            firstLine(GetParam()) + replyLine(GetParam(), 0) + lastLines(GetParam(), 1));
  EXPECT_EQ(readFile(file), output);
  EXPECT_EQ(adapter.end(), "exit status 0");
}

TEST_P(RealPing, EndsWhenItIsTerminated) {
  Process adapter({PING_ADAPTER, "-i", "50", "127.0.0.1"});
  EXPECT_EQ(adapter.readLine(), firstLine(GetParam()));

  adapter.sendSignal(SIGTERM);

  EXPECT_EQ(adapter.readErrors(), "");
  EXPECT_EQ(adapter.end(), "killed by signal 15");
}

TEST_P(RealPing, FailsAsItDoesAlone) {
  Process alone({(directory / "ping").string(), "-c", "1", "10.99.0.7"});  // has no route
  Process adapter({PING_ADAPTER, "-c", "1", "10.99.0.7"});

  EXPECT_EQ(adapter.readOutput(), alone.readOutput());
  const std::string errors = alone.readErrors();
  EXPECT_THAT(errors, testing::HasSubstr("Network is unreachable"));
  EXPECT_EQ(adapter.readErrors(), errors);
  const std::string end = alone.end();
  EXPECT_NE(end, "exit status 0");
  EXPECT_EQ(adapter.end(), end);
}

class IputilsPing : public RealPing {
 protected:
  void SetUp() override { putBehindAdapter(kImplementations[0]); }
};

TEST_F(IputilsPing, StillPrintsItsSummaryWhenItsTimeIsOver) {
  setenv("CONNTESTER_GRACE_SECONDS", "1", 1);
  Process adapter({PING_ADAPTER, "-c", "2", "-i", "50", "127.0.0.1"});

  EXPECT_EQ(withoutTimes(adapter.readOutput()), firstLine(kImplementations[0]) +
                                                    replyLine(kImplementations[0], 0) +
                                                    lastLines(kImplementations[0], 1));
  EXPECT_EQ(adapter.readErrors(),
            "ping adapter: ping had not ended after 3 seconds and was interrupted\n");
  EXPECT_EQ(adapter.end(), "exit status 0");
}

TEST_F(IputilsPing, PrintsInterimStatisticsWhenItIsAskedToQuit) {
  Process adapter({PING_ADAPTER, "-i", "50", "127.0.0.1"},
                  [] { dup2(STDOUT_FILENO, STDERR_FILENO); });
  adapter.readLine();
  adapter.readLine();

  adapter.sendSignal(SIGQUIT);

  EXPECT_EQ(withoutTimes(adapter.readLine()),
            "\r1/1 packets, 0% loss, min/avg/ewma/max = #/#/#/# ms\n");
  adapter.sendSignal(SIGINT);
  EXPECT_EQ(withoutTimes(adapter.readOutput()), lastLines(kImplementations[0], 1));
}

}  // namespace
