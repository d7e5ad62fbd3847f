// What both adapters do alike, in front of fake tools.

#include "adapter/adapter_fixture.h"
#include "adapter/process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

class Adapter : public AdapterFixture, public testing::WithParamInterface<const char*> {
 protected:
  Adapter() : AdapterFixture(GetParam()) {}

  /// The arguments by which the tool is to take a second. With a grace of one more, that makes two.
  std::vector<std::string> oneSecond() const {
    return {adapter, name == "ping" ? "-c" : "-t", "1"};
  }

  std::string saying(const std::string& message) const {
    return name + " adapter: " + message + "\n";
  }
};

INSTANTIATE_TEST_SUITE_P(Of, Adapter, testing::Values(PING_ADAPTER, IPERF3_ADAPTER),
                         [](const testing::TestParamInfo<const char*>& adapter) {
                           return fs::path(adapter.param).filename().string();
                         });

TEST_P(Adapter, PassesEveryArgumentOn) {
  fakeTool(R"(for argument; do printf '<%s>\n' "$argument"; done)");

  EXPECT_EQ(run({"-c", "3", "", "two  words", "$HOME;'\"*", "-n", "a\nline", "\xff"}),
            "<-c>\n<3>\n<>\n<two  words>\n<$HOME;'\"*>\n<-n>\n<a\nline>\n<\xff>\nexit status 0");
}

TEST_P(Adapter, GivesTheToolItsOwnName) {
  std::ofstream("print.pl") << "open(F, '/proc/self/cmdline'); print <F>;";
  fs::create_symlink("/usr/bin/perl", directory / "system" / name);

  EXPECT_EQ(run({"print.pl"}), name + std::string("\0print.pl\0", 10) + "exit status 0");
}

TEST_P(Adapter, GivesTheToolTheDescriptorsOfTheCallerAndNoOther) {
  fakeTool("echo /proc/self/fd/*");
  const std::string alone = Process({(directory / "system" / name).string()}).readOutput();

  EXPECT_EQ(run(), alone + "exit status 0");
}

TEST_P(Adapter, PassesALineOnBeforeTheToolGoesOn) {
  fakeTool("echo first; read -r line; echo \"$line\"; read -r line; echo last");
  Process process({adapter});

  EXPECT_EQ(process.readLine(), "first\n");
  process.writeInput("second\n");
  EXPECT_EQ(process.readLine(), "second\n");
  process.writeInput("third\n");
  EXPECT_EQ(process.readLine(), "last\n");
  EXPECT_EQ(process.end(), "exit status 0");
}

TEST_P(Adapter, PassesEveryByteOn) {
  using std::string_literals::operator""s;
  const std::string bytes = "\0zero\0\n\r\ncarriage\r\n\n\xff\xfe\x80\n"s +
                            std::string(3'000'000, 'x') + "\n time=\n\tno newline"s;
  std::ofstream("bytes", std::ios::binary) << bytes;
  fakeTool("exec /bin/cat bytes");

  EXPECT_TRUE(run() == bytes + "exit status 0");
}

TEST_P(Adapter, LeavesTheErrorOutputAlone) {
  fakeTool("echo 'rtt min/avg/max/mdev = 1/2/3/4 ms' >&2");

  EXPECT_EQ(run(), "rtt min/avg/max/mdev = 1/2/3/4 ms\nexit status 0");
}

TEST_P(Adapter, EndsWithTheExitStatusOfTheTool) {
  for (const std::string status : {"0", "1", "2", "77", "126", "127", "143", "255"}) {
    fakeTool("exit " + status);

    EXPECT_EQ(run(), "exit status " + status);
  }
}

TEST_P(Adapter, EndsWithTheExitStatusEvenWhereTheEndsOfChildrenAreIgnored) {
  fakeTool("exit 2");

  EXPECT_EQ(run({}, [] { std::signal(SIGCHLD, SIG_IGN); }), "exit status 2");
}

TEST_P(Adapter, DiesByTheSignalThatKilledTheTool) {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGKILL, SIGUSR1, SIGPIPE, SIGALRM, SIGTERM}) {
    const std::string number = std::to_string(signal);
    fakeTool("echo dying; kill -" + number + " $$");

    EXPECT_EQ(run(), "dying\nkilled by signal " + number);
  }
}

TEST_P(Adapter, DiesByASignalThatTheCallerBlocks) {
  writeScript("system/" + name,
              "#!/usr/bin/perl\n"
              "use POSIX; sigprocmask(SIG_UNBLOCK, POSIX::SigSet->new(SIGTERM)); kill TERM => $$;");
  const auto blockTermination = [] {
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
  };

  EXPECT_EQ(run({}, blockTermination), "killed by signal 15");
}

TEST_P(Adapter, DiesByASignalThatTheCallerIgnores) {
  writeScript("system/" + name, "#!/usr/bin/perl\n$SIG{TERM} = 'DEFAULT'; kill TERM => $$;");

  EXPECT_EQ(run({}, [] { std::signal(SIGTERM, SIG_IGN); }), "killed by signal 15");
}

TEST_P(Adapter, LeavesTheToolTheSignalsThatTheCallerBlocks) {
  fakeTool(
      "while read -r line; do case $line in SigBlk:*) echo \"$line\";; esac; done "
      "</proc/self/status");
  const auto blockAlarm = [] {
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGALRM);
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
  };

  EXPECT_EQ(run({}, blockAlarm), "SigBlk:\t0000000000002000\nexit status 0");
}

TEST_P(Adapter, PassesSignalsOnAndReadsToTheEndOfTheOutput) {
  const struct {
    int number;
    const char* name;
  } cases[] = {{SIGHUP, "HUP"}, {SIGINT, "INT"}, {SIGQUIT, "QUIT"}, {SIGTERM, "TERM"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    fakeTool("trap 'echo trapped; echo the end; exit 3' " + std::string(c.name) +
             "\necho ready\nread -r line");
    Process process({adapter});
    EXPECT_EQ(process.readLine(), "ready\n");

    process.sendSignal(c.number);

    EXPECT_EQ(process.readOutput(), "trapped\nthe end\n");
    EXPECT_EQ(process.readErrors(), "");
    EXPECT_EQ(process.end(), "exit status 3");
  }
}

TEST_P(Adapter, DiesByASignalThatTheToolDoesNotCatch) {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
    fakeTool("echo ready; read -r line");
    Process process({adapter});
    EXPECT_EQ(process.readLine(), "ready\n");

    process.sendSignal(signal);

    EXPECT_EQ(process.readErrors(), "");
    EXPECT_EQ(process.end(), "killed by signal " + std::to_string(signal));
  }
}

TEST_P(Adapter, LeavesSignalsIgnoredThatTheCallerIgnores) {
  setGraceSeconds("1");
  fakeTool("kill -1 $$; echo ready; read -r line; /bin/sleep 1.5; echo \"$line\"");
  Process process({adapter}, [] { std::signal(SIGHUP, SIG_IGN); });
  EXPECT_EQ(process.readLine(), "ready\n");

  process.sendSignal(SIGHUP);
  process.writeInput("still there\n");

  EXPECT_EQ(process.readLine(), "still there\n");
  EXPECT_EQ(process.end(), "exit status 0");
}

TEST_P(Adapter, LeavesASignalOfTheTerminalToTheTerminal) {
  fakeTool(R"(count=0
trap 'count=$((count + 1)); echo statistics' QUIT
trap 'echo "$count"; exit 0' TERM
echo ready
until read -r line; do :; done
)");
  const Terminal terminal;
  Process process({adapter}, [&terminal] { terminal.become(STDIN_FILENO); });
  EXPECT_EQ(process.readLine(), "ready\n");

  // Two signals on each other's heels would be one to the tool. So it gets the terminal's before
  // the adapter can do anything, and the adapter has taken both before the tool ends.
  process.stop();
  terminal.press('\x1c');  // the key that quits
  EXPECT_EQ(process.readLine(), "statistics\n");
  process.sendSignal(SIGTERM);
  process.sendSignal(SIGCONT);

  EXPECT_EQ(process.readOutput(), "1\n");
  EXPECT_EQ(process.end(), "exit status 0");
}

TEST_P(Adapter, InterruptsTheToolAtItsTimeLimit) {
  setGraceSeconds("1");
  fakeTool("trap 'echo interrupted; exit 3' INT; echo ready; read -r line");
  const auto start = std::chrono::steady_clock::now();
  Process process(oneSecond());

  EXPECT_EQ(process.readOutput(), "ready\ninterrupted\n");

  EXPECT_EQ(process.readErrors(),
            saying(name + " had not ended after 2 seconds and was interrupted"));
  EXPECT_EQ(process.end(), "exit status 3");
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  EXPECT_LT(process.busySeconds(), 0.5);
}

TEST_P(Adapter, InterruptsAToolEvenWhereTheCallerIgnoresInterrupts) {
  setGraceSeconds("1");
  writeScript("system/" + name, "#!/usr/bin/perl\n$SIG{INT} = sub { exit 3 }; sleep;");
  Process process(oneSecond(), [] { std::signal(SIGINT, SIG_IGN); });

  EXPECT_EQ(process.readErrors(),
            saying(name + " had not ended after 2 seconds and was interrupted"));
  EXPECT_EQ(process.end(), "exit status 3");
}

TEST_P(Adapter, KillsAToolThatGoesOnAfterItsTimeLimit) {
  setGraceSeconds("1");
  fakeTool("trap 'echo interrupted' INT; echo ready; until read -r line; do :; done");
  Process process(oneSecond());

  EXPECT_EQ(process.readOutput(), "ready\ninterrupted\n");

  EXPECT_EQ(process.readErrors(), saying(name + " had not ended after 2 seconds and was "
                                                "interrupted, then killed after 1 second more"));
  EXPECT_EQ(process.end(), "killed by signal 9");
}

TEST_P(Adapter, KillsAToolThatGoesOnAfterASignalToEnd) {
  setGraceSeconds("1");
  fakeTool("trap '' HUP INT TERM; echo ready; read -r line");
  const int signals[] = {SIGHUP, SIGINT, SIGTERM};
  Process processes[] = {Process({adapter}), Process({adapter}), Process({adapter})};
  for (std::size_t i = 0; i < std::size(signals); ++i) {
    EXPECT_EQ(processes[i].readLine(), "ready\n");
    processes[i].sendSignal(signals[i]);
  }

  for (Process& process : processes) {
    EXPECT_EQ(process.readErrors(),
              saying(name + " had not ended 1 second after a signal to end and was killed"));
    EXPECT_EQ(process.end(), "killed by signal 9");
  }
}

TEST_P(Adapter, LetsAToolGoOnAfterASignalToQuit) {
  setGraceSeconds("1");
  fakeTool(
      "trap 'echo statistics' QUIT; echo ready; until read -r line; do :; done; "
      "/bin/sleep 1.5; exit 3");
  Process process({adapter});
  EXPECT_EQ(process.readLine(), "ready\n");

  process.sendSignal(SIGQUIT);

  EXPECT_EQ(process.readLine(), "statistics\n");
  process.writeInput("go on\n");
  EXPECT_EQ(process.readErrors(), "");
  EXPECT_EQ(process.end(), "exit status 3");
}

TEST_P(Adapter, EndsByASignalAlsoWhereNobodyTakesItsMessage) {
  setGraceSeconds("1");
  fakeTool("exec 2>&-; echo ready; read -r line");
  Process process(oneSecond(), [] {
    fcntl(STDERR_FILENO, F_SETPIPE_SZ, 1);
    const int capacity = fcntl(STDERR_FILENO, F_GETPIPE_SZ);
    const std::string text(static_cast<std::size_t>(capacity), 'x');
    EXPECT_EQ(write(STDERR_FILENO, text.data(), text.size()), capacity);
  });
  EXPECT_EQ(process.readLine(), "ready\n");
  process.awaitEndOfChildren();

  process.sendSignal(SIGTERM);

  EXPECT_EQ(process.end(), "killed by signal 15");
}

TEST_P(Adapter, TakesItsToolAlongWhenItIsKilled) {
  fakeTool("echo ready; read -r line");
  Process process({adapter});
  EXPECT_EQ(process.readLine(), "ready\n");

  process.sendSignal(SIGKILL);

  EXPECT_EQ(process.end(), "killed by signal 9");
  EXPECT_EQ(process.readErrors(), "");  // to its end, when the tool has ended
}

TEST_P(Adapter, GoesThroughOtherAdaptersToTheTool) {
  fs::create_directory("copy");
  fs::copy_file(adapter, "copy/" + name);
  fakeTool("echo reached");
  for (const std::string& adapters : {adapterDirectory() + ":copy", "copy:" + adapterDirectory(),
                                      adapterDirectory() + ":copy:" + adapterDirectory()}) {
    SCOPED_TRACE(adapters);
    setPath(adapters + ":system");

    EXPECT_EQ(run(), "reached\nexit status 0");
  }
}

TEST_P(Adapter, EndsWhereTheToolCallsItAgain) {
  fakeTool("exec " + adapter);

  EXPECT_EQ(run(), saying("called again by what it has taken for the system's " + name) +
                       "exit status 126");
}

TEST_P(Adapter, SaysThatTheToolCannotBeRun) {
  writeScript("system/" + name, "no program");

  EXPECT_EQ(run(),
            saying("cannot run " + (directory / "system" / name).string() + ": Exec format error") +
                "exit status 126");
}

}  // namespace
