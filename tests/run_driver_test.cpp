#include "run_driver.h"

#include "config/config_file.h"
#include "run_state.h"
#include "support/run_fixture.h"
#include "text_buffer.h"
#include "time_services.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr char kBanner[] =
    "current time 20261116T054000 name connTester argc is 2. Server IP address: 10.0.0.5\n";

/// Runs the tester with `arguments`, the program's name first, and returns its exit status.
int run(std::vector<std::string> arguments) {
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) {
    argv.push_back(argument.data());
  }
  argv.push_back(nullptr);
  return runConnectionTest(static_cast<int>(arguments.size()), argv.data());
}

/// The names in `directory`, in order.
std::vector<std::string> namesIn(const std::string& directory) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// The command lines of a run, with "LOG/" for the log directory.
std::vector<std::string> commands() {
  std::vector<std::string> shortened = fakeHost.commands;
  const std::string path = LOG_PATH;
  for (std::string& command : shortened) {
    for (std::size_t at = 0; (at = command.find(path, at)) != std::string::npos;) {
      command.replace(at, path.size(), "LOG/");
    }
  }
  return shortened;
}

constexpr char kCreate[] = "mkdir -p LOG/archive/\n";

// The command lines of each test of a run against 10.0.0.5.
const std::vector<std::string> kPing = {
    "ping -c 10 10.0.0.5  | tee  LOG/ping_latest.log\n",
    "cat LOG/ping_latest.log >> LOG//ping_history_verbose.log\n"};
const std::vector<std::string> kIperf2 = {
    "/usr/bin/iperf -c 10.0.0.5 -y C -t 10 > LOG/iperf2_latest.log\n",
    "cat LOG/iperf2_latest_forward_csv.log >> LOG/iperf2_history_forward_csv.log\n"};
const std::vector<std::string> kForward = {
    "/usr/local/bin/Qelmora/iperf3 -c 10.0.0.5 -t 10 -J   > LOG/iperf3_latest.log\n",
    "cat LOG/iperf3_latest_forward_csv.log >> LOG/iperf3_history_forward_csv.log\n"};
const std::vector<std::string> kReverse = {
    "/usr/local/bin/Qelmora/iperf3 -c 10.0.0.5 -t 10 -J  -R > LOG/iperf3_latest-R.log\n",
    "cat LOG/iperf3_latest_reverse_csv.log >> LOG/iperf3_history_reverse_csv.log\n"};

/// The command lines of a run of these tests.
std::vector<std::string> commandsOf(const std::vector<std::vector<std::string>>& tests) {
  std::vector<std::string> all = {kCreate};
  for (const std::vector<std::string>& test : tests) {
    all.insert(all.end(), test.begin(), test.end());
  }
  return all;
}

/// A run whose tools print nothing. The real shell creates the directories and keeps the files.
class RunDriver : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    fakeHost.onCommand = play;
  }

  static void play(const std::string& command) {
    fakeHost.runsCommands = !command.starts_with("ping ") && command.front() != '/';
  }
};

TEST_F(RunDriver, RunsTheTestsThatAreOnInTheirOrder) {
  const struct {
    const char* configuration;
    bool iperf2;
    std::vector<std::string> commands;
    std::size_t waits;
    bool hasResult;
  } cases[] = {{"", false, commandsOf({kPing, kForward, kReverse}), 2, true},
               {"", true, commandsOf({kPing, kIperf2, kForward, kReverse}), 3, true},
               {"doIperf3Tests=false\n", false, commandsOf({kPing}), 0, true},
               {"doPingTests=false\n", false, commandsOf({kForward, kReverse}), 2, true},
               {"doPingTests=false\ndoIperf3Tests=false\n", true, commandsOf({kIperf2}), 1, true},
               {"doPingTests=false\ndoIperf3Tests=false\n", false, commandsOf({}), 0, false}};
  configure("");
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.configuration << (c.iperf2 ? "iperf2" : ""));
    fakeHost.commands.clear();
    fakeHost.sleeps.clear();
    ConfigurationParameters = {};
    ConfigurationParameters.doIperf2Tests = c.iperf2;
    writeFile(kConfigPath, c.configuration);

    console([] { EXPECT_EQ(run({"connTester", "10.0.0.5"}), 0); });

    EXPECT_THAT(commands(), ElementsAreArray(c.commands));
    EXPECT_EQ(fakeHost.sleeps.size(), c.waits);
    EXPECT_EQ(fileExists(logFile("connection_test_results.txt")), c.hasResult);
    std::filesystem::remove_all(LOG_PATH);
  }
}

TEST_F(RunDriver, AsksForTheSwitchesAnewBeforeTheReverseDirectionAndTheResultLine) {
  configure("doPingTests=false\n");
  for (const std::string& last : {kForward.front(), kReverse.front()}) {
    SCOPED_TRACE(last);
    fakeHost.commands.clear();
    ConfigurationParameters = {};
    fakeHost.onCommand = [&last](const std::string& command) {
      play(command);
      bool& isOn = ConfigurationParameters.doIperf3Tests;
      isOn = isOn && commands().back() != last;
    };

    console([] { run({"connTester", "10.0.0.5"}); });

    EXPECT_EQ(commands(),
              last == kForward.front() ? commandsOf({kForward}) : commandsOf({kForward, kReverse}));
    EXPECT_FALSE(fileExists(logFile("connection_test_results.txt")));
  }
}

TEST_F(RunDriver, CutsNoCommandAndNoPathOfTheLongestRun) {
  std::string home = std::filesystem::current_path().string() + "/";
  home.resize(183, 'h');
  setenv("HOME", home.c_str(), 1);
  formatInto(LOG_PATH, "%s/Library/Logs/Qelmora/", home.c_str());
  std::filesystem::create_directories(LOG_PATH);
  for (const char* const history :
       {"ping_history.log", "iperf2_history.log", "iperf3_history_forward_csv.log",
        "iperf3_history_reverse_csv.log", "connection_test_results_history.log"}) {
    writeFile(logFile(history), repeated("1,2,3,4,5,6,7,8,9\n", 10));
  }
  fakeHost.onCommand = [](const std::string& command) {
    play(command);
    if (!fakeHost.runsCommands) {
      writeFile(logFile("ping_latest.log"), "round-trip = 1/2/3/4 ms\n");
      fakeHost.now += 9;
    }
  };
  configure("numPings=-2147483648\niperfTestTime=-2147483648\n");
  ConfigurationParameters.doIperf2Tests = true;

  console([] { run({"connTester", "255.255.255.255"}); });

  EXPECT_THAT(
      commands(),
      ElementsAre(
          kCreate, "ping -c -2147483648 255.255.255.255  | tee  LOG/ping_latest.log\n",
          kPing.back(),
          "(mv  \"LOG/ping_history.log\" \"LOG/archive/ping_history_20261116T054000.log\") 2>nul\n",
          "/usr/bin/iperf -c 255.255.255.255 -y C -t -2147483648 > LOG/iperf2_latest.log\n",
          kIperf2.back(),
          "(mv  \"LOG/iperf2_history.log\" "
          "\"LOG/archive/iperf2_history_20261116T054009.log\") 2>nul\n",
          "/usr/local/bin/Qelmora/iperf3 -c 255.255.255.255 -t -2147483648 -J   > "
          "LOG/iperf3_latest.log\n",
          kForward.back(),
          "(mv  \"LOG/iperf3_history_forward_csv.log\" "
          "\"LOG/archive/iperf3_history_forward_20261116T054019.log\") 2>nul\n",
          "/usr/local/bin/Qelmora/iperf3 -c 255.255.255.255 -t -2147483648 -J  -R > "
          "LOG/iperf3_latest-R.log\n",
          kReverse.back(),
          "(mv  \"LOG/iperf3_history_reverse_csv.log\" "
          "\"LOG/archive/iperf3_history_reverse_20261116T054029.log\") 2>nul\n",
          "mv  LOG/connection_test_results_history.log "
          "LOG/archive/connection_test_results_history_20261116T054039.log\n"));
  EXPECT_THAT(namesIn(LOG_PATH_ARCHIVE),
              ElementsAre("connection_test_results_history_20261116T054039.log",
                          "iperf2_history_20261116T054009.log",
                          "iperf3_history_forward_20261116T054019.log",
                          "iperf3_history_reverse_20261116T054029.log",
                          "ping_history_20261116T054000.log"));
  // A character more in HOME makes this one two characters longer than `cmd` holds.
  EXPECT_EQ(fakeHost.commands.back().size(), sizeof(cmd) - 2);
}

TEST_F(RunDriver, TakesTheLastOfOneOrTwoArgumentsAsTheAddress) {
  const struct {
    std::vector<std::string> arguments;
    const char* address;
    const char* banner;
  } cases[] = {{{"connTester"}, "", "name connTester argc is 1. Server IP address: \n"},
               {{"./x/connTester", "10.0.0.5"},
                "10.0.0.5",
                "name ./x/connTester argc is 2. Server IP address: 10.0.0.5\n"},
               {{"t", "anything that is too long", "255.255.255.255"},
                "255.255.255.255",
                "name t argc is 3. Server IP address: 255.255.255.255\n"},
               {{"t", "1.1.1.1", "2", "an address that is too long"},
                "",
                "name t argc is 4. Server IP address: \n"},
               {{"t", "-h"}, "-h", "name t argc is 2. Server IP address: -h\n"},
               {{"t", "%s;"}, "%s;", "name t argc is 2. Server IP address: %s;\n"},
               {{"t", ""}, "", "name t argc is 2. Server IP address: \n"}};
  configure("doPingTests=false\ndoIperf3Tests=false\n");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.banner);
    copyInto(ipaddr, "");

    EXPECT_EQ(console([&] { run(c.arguments); }),
              std::string("current time 20261116T054000 ") + c.banner);

    EXPECT_STREQ(ipaddr, c.address);
    EXPECT_EQ(arg_count, static_cast<int>(c.arguments.size()));
  }
}

TEST_F(RunDriver, CopiesTheAddressByItsOwnLengthWithoutATerminator) {
  configure("doPingTests=false\ndoIperf3Tests=false\n");
  copyInto(ipaddr, "192.168.1.10");

  console([] { run({"connTester", "10.0."}); });

  EXPECT_EQ(std::string(ipaddr, sizeof(ipaddr)), std::string("10.0.68.1.10\0\0\0\0", 16));
}

class Init : public RunFixture {};

TEST_F(Init, StampsPrintsConfiguresAndCreatesTheDirectories) {
  configure("numPings=3\noutputFormat=9\n");
  myName = "connTester";
  arg_count = 2;
  formatInto(ipaddr, "%s", "10.0.0.5");
  formatInto(currentTimeStamp, "%s", "");
  fakeHost.shellStatus = 5;
  fakeHost.onCommand = [](const std::string&) { std::printf("created\n"); };

  EXPECT_EQ(console([] { EXPECT_EQ(init(), 5); }),
            std::string(kBanner) + "outputFormat out of range (1-3). Set to 1.\ncreated\n");

  EXPECT_EQ(ConfigurationParameters.numPings, 3);
  EXPECT_STREQ(currentTimeStamp, kStartStamp);
  EXPECT_EQ(cmd, "mkdir -p " + std::string(LOG_PATH_ARCHIVE) + "\n");
}

TEST_F(Init, TakesHomeAsItStands) {
  const struct {
    const char* home;
    std::string logPath;
  } cases[] = {{"/home/u", "/home/u/Library/Logs/Qelmora/"},
               {"", "/Library/Logs/Qelmora/"},
               {"/a %s b", "/a %s b/Library/Logs/Qelmora/"},
               {nullptr, "(null)/Library/Logs/Qelmora/"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.logPath);
    fakeHost.commands.clear();
    unsetenv("HOME");
    if (c.home != nullptr) {
      setenv("HOME", c.home, 1);
    }

    console([] { init(); });

    EXPECT_EQ(LOG_PATH, c.logPath);
    EXPECT_EQ(LOG_PATH_ARCHIVE, c.logPath + "archive/");
    EXPECT_THAT(fakeHost.commands, ElementsAre("mkdir -p " + c.logPath + "archive/\n"));
  }
}

}  // namespace
