// What both adapters do alike, in front of fake tools.

#include "adapter/adapter_fixture.h"
#include "adapter/process.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

class Adapter : public AdapterFixture, public testing::WithParamInterface<const char*> {
 protected:
  Adapter() : AdapterFixture(GetParam()) {}

  /// The arguments by which the tool is to take a second. With a grace of one more, that makes two.
  std::vector<std::string> oneSecond() const { return {name == "ping" ? "-c" : "-t", "1"}; }

  std::string saying(const std::string& message) const {
    return name + " adapter: " + message + "\n";
  }
};

INSTANTIATE_TEST_SUITE_P(Of, Adapter, testing::Values(PING_ADAPTER, IPERF3_ADAPTER),
                         [](const testing::TestParamInfo<const char*>& adapter) {
                           return fs::path(adapter.param).filename().string();
                         });

void block(int signal) {
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, signal);
  sigprocmask(SIG_BLOCK, &blocked, nullptr);
}

TEST_P(Adapter, GivesTheToolItsNameAndEveryArgument) {
  using std::string_literals::operator""s;
  writeFile("print.pl", "open(F, '/proc/self/cmdline'); print <F>;");
  linkTool("/usr/bin/perl");

  EXPECT_EQ(run({"print.pl", "-c", "3", "", "two  words", "$HOME;'\"*", "-n", "a\nline", "\xff"}),
            name + "\0print.pl\0-c\0"s + "3\0\0two  words\0$HOME;'\"*\0-n\0a\nline\0\xff\0"s +
                "exit status 0");
}

TEST_P(Adapter, GivesTheToolTheDescriptorsOfTheCallerAndNoOther) {
  fakeTool("echo /proc/self/fd/*");
  const std::string alone = Process({tool}).readOutput();

  EXPECT_EQ(run(), alone + "exit status 0");
}

TEST_P(Adapter, PassesALineOnBeforeTheToolGoesOn) {
  fakeTool("echo first; read -r line; echo \"$line\"; read -r line; echo last");
  Process process({adapter});

  EXPECT_EQ(process.readLine(), "first\n");
  process.writeInput("second\n");
  EXPECT_EQ(process.readLine(), "second\n");
  process.writeInput("third\n");
  EXPECT_EQ(process.result(), "last\nexit status 0");
}

TEST_P(Adapter, PassesEveryByteOn) {
  using std::string_literals::operator""s;
  const std::string bytes = "\0zero\0\n\r\ncarriage\r\n\n\xff\xfe\x80\n"s +
                            std::string(3'000'000, 'x') + "\n time=\n\tno newline"s;
  writeFile("bytes", bytes);
  fakeTool("exec /bin/cat bytes");

  EXPECT_TRUE(run() == bytes + "exit status 0");
}

TEST_P(Adapter, LeavesTheErrorOutputAlone) {
  fakeTool("echo 'rtt min/avg/max/mdev = 1/2/3/4 ms' >&2");

  EXPECT_EQ(run(), "rtt min/avg/max/mdev = 1/2/3/4 ms\nexit status 0");
}

TEST_P(Adapter, EndsAsItsToolDoes) {
  for (const std::string status : {"0", "1", "2", "77", "126", "127", "143", "255"}) {
    fakeTool("exit " + status);

    EXPECT_EQ(run(), "exit status " + status);
  }
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGKILL, SIGUSR1, SIGPIPE, SIGALRM, SIGTERM}) {
    const std::string number = std::to_string(signal);
    fakeTool("echo dying; kill -" + number + " $$");

    EXPECT_EQ(run(), "dying\nkilled by signal " + number);
  }
}

TEST_P(Adapter, EndsAsItsToolDoesWhateverTheCallerHasDoneWithSignals) {
  const struct {
    const char* what;
    std::function<void()> prepare;
    const char* commands;
    const char* result;
  } cases[] = {
      {"ignored the ends of children", [] { std::signal(SIGCHLD, SIG_IGN); }, "exit 2",
       "exit status 2"},
      {"ignored the signal", [] { std::signal(SIGTERM, SIG_IGN); },
       "exec /usr/bin/perl -e '$SIG{TERM} = \"DEFAULT\"; kill TERM => $$'", "killed by signal 15"},
      {"blocked the signal", [] { block(SIGTERM); },
       "exec /usr/bin/perl -e 'use POSIX; sigprocmask(SIG_UNBLOCK, POSIX::SigSet->new(SIGTERM)); "
       "kill TERM => $$'",
       "killed by signal 15"},
      {"blocked another signal", [] { block(SIGALRM); },
       "while read -r line; do case $line in SigBlk:*) echo \"$line\"; esac; done "
       "</proc/self/status",
       "SigBlk:\t0000000000002000\nexit status 0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    fakeTool(c.commands);

    EXPECT_EQ(run({}, c.prepare), c.result);
  }
}

TEST_P(Adapter, PassesSignalsOnAndReadsToTheEndOfTheOutput) {
  const struct {
    int number;
    const char* name;
  } cases[] = {{SIGHUP, "HUP"}, {SIGINT, "INT"}, {SIGQUIT, "QUIT"}, {SIGTERM, "TERM"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    fakeTool("trap 'echo trapped; echo the end; exit 3' " + std::string(c.name) +
             "\necho ready; read -r line");
    EXPECT_EQ(runInto(c.number), "trapped\nthe end\nexit status 3");

    fakeTool("echo ready; read -r line");
    EXPECT_EQ(runInto(c.number), "killed by signal " + std::to_string(c.number));
  }
}

TEST_P(Adapter, LeavesSignalsIgnoredThatTheCallerIgnores) {
  setGraceSeconds("1");
  fakeTool("kill -1 $$; echo ready; read -r line; /bin/sleep 1.5; echo \"$line\"");
  Process process({adapter}, [] { std::signal(SIGHUP, SIG_IGN); });
  EXPECT_EQ(process.readLine(), "ready\n");

  process.sendSignal(SIGHUP);
  process.writeInput("still there\n");

  EXPECT_EQ(process.result(), "still there\nexit status 0");
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

  EXPECT_EQ(process.result(), "1\nexit status 0");
}

TEST_P(Adapter, InterruptsTheToolAtItsTimeLimit) {
  setGraceSeconds("1");
  fakeTool("trap 'echo interrupted; exit 3' INT; echo ready; read -r line");
  const auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(run(oneSecond()),
            "ready\ninterrupted\n" +
                saying(name + " had not ended after 2 seconds and was interrupted") +
                "exit status 3");

  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  rusage usage = {};
  getrusage(RUSAGE_CHILDREN, &usage);
  EXPECT_LT(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec, 1);
}

TEST_P(Adapter, InterruptsAToolEvenWhereTheCallerIgnoresInterrupts) {
  setGraceSeconds("1");
  fakeTool("exec /usr/bin/perl -e '$SIG{INT} = sub { exit 3 }; sleep'");

  EXPECT_EQ(run(oneSecond(), [] { std::signal(SIGINT, SIG_IGN); }),
            saying(name + " had not ended after 2 seconds and was interrupted") + "exit status 3");
}

TEST_P(Adapter, KillsAToolThatGoesOnAfterItsTimeLimit) {
  setGraceSeconds("1");
  fakeTool("trap 'echo interrupted' INT; echo ready; until read -r line; do :; done");

  EXPECT_EQ(run({name == "ping" ? "--count" : "--time", "1"}),
            "ready\ninterrupted\n" +
                saying(name + " had not ended after 2 seconds and was interrupted, then killed "
                              "after 1 second more") +
                "killed by signal 9");
}

TEST_P(Adapter, KillsAToolThatGoesOnAfterASignalToEnd) {
  setGraceSeconds("1");
  fakeTool("trap '' HUP INT TERM; echo ready; read -r line");
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    EXPECT_EQ(runInto(signal),
              saying(name + " had not ended 1 second after a signal to end and was killed") +
                  "killed by signal 9");
  }
}

TEST_P(Adapter, LetsAToolGoOnAfterASignalToQuit) {
  setGraceSeconds("1");
  fakeTool("trap 'echo statistics' QUIT; /bin/sleep 2 & echo ready; wait; wait; exit 3");

  EXPECT_EQ(runInto(SIGQUIT), "statistics\nexit status 3");
}

TEST_P(Adapter, EndsAlsoWhereNobodyTakesItsMessage) {
  setGraceSeconds("1");
  fakeTool("exec 2>&-; read -r line");
  Process process({adapter, oneSecond()[0], oneSecond()[1]}, [] {
    fcntl(STDERR_FILENO, F_SETPIPE_SZ, 1);
    const int capacity = fcntl(STDERR_FILENO, F_GETPIPE_SZ);
    const std::string text(static_cast<std::size_t>(capacity), 'x');
    EXPECT_EQ(write(STDERR_FILENO, text.data(), text.size()), capacity);
  });

  EXPECT_EQ(process.end(), "killed by signal 2");
}

TEST_P(Adapter, TakesItsToolAlongWhenItIsKilled) {
  fakeTool("echo ready; read -r line");

  // Its outputs are read to their ends, when the tool has ended.
  EXPECT_EQ(runInto(SIGKILL), "killed by signal 9");
}

TEST_P(Adapter, GoesThroughOtherAdaptersToTheTool) {
  fs::create_directory("copy");
  fs::copy_file(adapter, "copy/" + name);
  fakeTool("echo reached");
  for (const std::string& adapters : {adapterDirectory + ":copy", "copy:" + adapterDirectory,
                                      adapterDirectory + ":copy:" + adapterDirectory}) {
    SCOPED_TRACE(adapters);
    setPath(adapters + ":system");

    EXPECT_EQ(run(), "reached\nexit status 0");
  }
}

TEST_P(Adapter, SaysThatTheToolCannotBeRun) {
  writeScript(tool, "no program");

  EXPECT_EQ(run(), saying("cannot run " + tool + ": Exec format error") + "exit status 126");
}

}  // namespace
