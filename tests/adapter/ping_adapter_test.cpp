#include "adapter/process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr char kNoPing[] =
    "ping adapter: no system ping behind this one in PATH; install one, for example with: "
    "apt-get install iputils-ping\n";

/// A directory with "system/" in it, where a fake system's ping can stand: PATH names the adapter's
/// directory, then this one.
class PingAdapter : public testing::Test {
 protected:
  void SetUp() override {
    char name[] = "/tmp/adapter.XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    directory = name;
    fs::create_directory(directory / "system");
    fs::current_path(directory);
    setPath(adapterDirectory() + ":" + (directory / "system").string());
  }

  void TearDown() override {
    fs::current_path("/");
    fs::remove_all(directory);
  }

  static std::string adapterDirectory() { return fs::path(PING_ADAPTER).parent_path(); }

  static void setPath(const std::string& path) { setenv("PATH", path.c_str(), 1); }

  /// Writes an executable script that stands at `path` below the directory.
  void writeScript(const std::string& path, const std::string& text) const {
    std::ofstream(directory / path) << text;
    fs::permissions(directory / path, fs::perms::owner_all);
  }

  /// Makes `commands` of the shell the system's ping. It has only what the shell itself brings.
  void fakePing(const std::string& commands) const {
    writeScript("system/ping", "#!/bin/sh\n" + commands);
  }

  /// Runs the adapter and returns what it printed on both its outputs, then how it ended.
  static std::string run(
      const std::vector<std::string>& arguments = {},
      const std::function<void()>& prepare = [] {}) {
    std::vector<std::string> all = {PING_ADAPTER};
    all.insert(all.end(), arguments.begin(), arguments.end());
    Process adapter(all, prepare);
    const std::string output = adapter.readOutput();
    return output + adapter.readErrors() + adapter.end();
  }

  fs::path directory;
};

TEST_F(PingAdapter, PassesEveryArgumentOn) {
  fakePing(R"(for argument; do printf '<%s>\n' "$argument"; done)");

  EXPECT_EQ(run({"-c", "3", "", "two  words", "$HOME;'\"*", "-n", "a\nline", "\xff"}),
            "<-c>\n<3>\n<>\n<two  words>\n<$HOME;'\"*>\n<-n>\n<a\nline>\n<\xff>\nexit status 0");
}

TEST_F(PingAdapter, GivesThePingItsOwnNameAndTheEnglishLanguage) {
  std::ofstream("print.pl") << R"(open(F, '/proc/self/cmdline'); print <F>, " $ENV{LC_ALL}\n";)";
  fs::create_symlink("/usr/bin/perl", directory / "system/ping");

  EXPECT_EQ(run({"print.pl"}, [] { setenv("LC_ALL", "de_DE.UTF-8", 1); }),
            std::string("ping\0print.pl\0", 14) + " C.UTF-8\nexit status 0");
}

TEST_F(PingAdapter, GivesThePingTheDescriptorsOfTheCallerAndNoOther) {
  fakePing("echo /proc/self/fd/*");
  const std::string alone = Process({(directory / "system/ping").string()}).readOutput();

  EXPECT_EQ(run(), alone + "exit status 0");
}

TEST_F(PingAdapter, TurnsTheSummaryAndPassesTheOtherLinesOn) {
  fakePing(R"(echo "64 bytes from 10.0.0.5: seq=0 ttl=64 time=1.000 ms"
echo "64 bytes from 10.0.0.5: seq=1 ttl=64 time=3.000 ms"
echo
echo "round-trip min/avg/max = 1.000/2.000/3.000 ms"
echo "rtt min/avg/max/mdev = 1.000/2.000/3.000/1.000 ms"
)");

  EXPECT_EQ(run(), R"(64 bytes from 10.0.0.5: seq=0 ttl=64 time=1.000 ms
64 bytes from 10.0.0.5: seq=1 ttl=64 time=3.000 ms

round-trip min/avg/max/stddev = 1.000/2.000/3.000/1.000 ms
round-trip min/avg/max/stddev = 1.000/2.000/3.000/1.000 ms
exit status 0)");
}

TEST_F(PingAdapter, PassesALineOnBeforeThePingGoesOn) {
  fakePing("echo first; read -r line; echo \"$line\"; read -r line; echo last");
  Process adapter({PING_ADAPTER});

  EXPECT_EQ(adapter.readLine(), "first\n");
  adapter.writeInput("second\n");
  EXPECT_EQ(adapter.readLine(), "second\n");
  adapter.writeInput("third\n");
  EXPECT_EQ(adapter.readLine(), "last\n");
  EXPECT_EQ(adapter.end(), "exit status 0");
}

TEST_F(PingAdapter, PassesOtherBytesOnUnchanged) {
  using std::string_literals::operator""s;
  const std::string bytes = "\0zero\0\n\r\ncarriage\r\n\n\xff\xfe\x80\n"s +
                            std::string(3'000'000, 'x') + "\n time=\n\tno newline"s;
  std::ofstream("bytes", std::ios::binary) << bytes;
  fakePing("exec /bin/cat bytes");

  EXPECT_TRUE(run() == bytes + "exit status 0");
}

TEST_F(PingAdapter, PassesASummaryOnThatHasNoNewline) {
  fakePing("printf 'rtt min/avg/max/mdev = 1/2/3/4 ms'");

  EXPECT_EQ(run(), "round-trip min/avg/max/stddev = 1/2/3/4 msexit status 0");
}

TEST_F(PingAdapter, LeavesTheErrorOutputAlone) {
  fakePing("echo 'rtt min/avg/max/mdev = 1/2/3/4 ms' >&2");

  EXPECT_EQ(run(), "rtt min/avg/max/mdev = 1/2/3/4 ms\nexit status 0");
}

TEST_F(PingAdapter, EndsWithTheExitStatusOfThePing) {
  for (const std::string status : {"0", "1", "2", "77", "126", "127", "143", "255"}) {
    fakePing("exit " + status);

    EXPECT_EQ(run(), "exit status " + status);
  }
}

TEST_F(PingAdapter, EndsWithTheExitStatusEvenWhereTheEndsOfChildrenAreIgnored) {
  fakePing("exit 2");

  EXPECT_EQ(run({}, [] { std::signal(SIGCHLD, SIG_IGN); }), "exit status 2");
}

TEST_F(PingAdapter, DiesByTheSignalThatKilledThePing) {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGKILL, SIGUSR1, SIGPIPE, SIGALRM, SIGTERM}) {
    const std::string number = std::to_string(signal);
    fakePing("echo dying; kill -" + number + " $$");

    EXPECT_EQ(run(), "dying\nkilled by signal " + number);
  }
}

TEST_F(PingAdapter, EndsWithTheShellsStatusForASignalThatItBlocks) {
  writeScript("system/ping",
              "#!/usr/bin/perl\n"
              "use POSIX; sigprocmask(SIG_UNBLOCK, POSIX::SigSet->new(SIGTERM)); kill TERM => $$;");
  const auto blockTermination = [] {
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
  };

  EXPECT_EQ(run({}, blockTermination), "exit status 143");
}

TEST_F(PingAdapter, PassesSignalsOnAndReadsToTheEndOfTheOutput) {
  const struct {
    int number;
    const char* name;
  } cases[] = {{SIGHUP, "HUP"}, {SIGINT, "INT"}, {SIGQUIT, "QUIT"}, {SIGTERM, "TERM"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    fakePing("trap 'echo; echo rtt min/avg/max/mdev = 1/2/3/4 ms; exit 3' " + std::string(c.name) +
             "\necho ready\nread -r line");
    Process adapter({PING_ADAPTER});
    EXPECT_EQ(adapter.readLine(), "ready\n");

    adapter.sendSignal(c.number);

    EXPECT_EQ(adapter.readOutput(), "\nround-trip min/avg/max/stddev = 1/2/3/4 ms\n");
    EXPECT_EQ(adapter.end(), "exit status 3");
  }
}

TEST_F(PingAdapter, DiesByASignalThatThePingDoesNotCatch) {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
    fakePing("echo ready; read -r line");
    Process adapter({PING_ADAPTER});
    EXPECT_EQ(adapter.readLine(), "ready\n");

    adapter.sendSignal(signal);

    EXPECT_EQ(adapter.readErrors(), "");
    EXPECT_EQ(adapter.end(), "killed by signal " + std::to_string(signal));
  }
}

TEST_F(PingAdapter, LeavesSignalsIgnoredThatTheCallerIgnores) {
  fakePing("kill -1 $$; echo ready; read -r line; echo \"$line\"");
  Process adapter({PING_ADAPTER}, [] { std::signal(SIGHUP, SIG_IGN); });
  EXPECT_EQ(adapter.readLine(), "ready\n");

  adapter.sendSignal(SIGHUP);
  adapter.writeInput("still there\n");

  EXPECT_EQ(adapter.readLine(), "still there\n");
  EXPECT_EQ(adapter.end(), "exit status 0");
}

TEST_F(PingAdapter, LeavesASignalOfTheTerminalToTheTerminal) {
  fakePing(R"(count=0
trap 'count=$((count + 1)); echo "statistics"' QUIT
echo ready
until read -r line; do :; done
echo "$count"
)");
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_EQ(grantpt(terminal), 0);
  ASSERT_EQ(unlockpt(terminal), 0);
  const std::string name = ptsname(terminal);
  Process adapter({PING_ADAPTER}, [&name] { dup2(open(name.c_str(), O_RDWR), STDIN_FILENO); });
  EXPECT_EQ(adapter.readLine(), "ready\n");

  EXPECT_EQ(write(terminal, "\x1c", 1), 1);  // the key that quits
  EXPECT_EQ(adapter.readLine(), "statistics\n");
  EXPECT_EQ(write(terminal, "go on\n", 6), 6);

  EXPECT_EQ(adapter.readOutput(), "1\n");
  EXPECT_EQ(adapter.end(), "exit status 0");
  close(terminal);
}

TEST_F(PingAdapter, EndsThePingWhenTheReaderOfTheOutputHasGone) {
  fakePing("trap '' PIPE TERM HUP\necho first; read -r line; echo second; read -r line");
  for (const auto disposition : {SIG_DFL, SIG_IGN}) {
    Process adapter({PING_ADAPTER}, [disposition] { std::signal(SIGPIPE, disposition); });
    EXPECT_EQ(adapter.readLine(), "first\n");

    adapter.closeOutput();
    adapter.writeInput("go on\n");

    EXPECT_EQ(adapter.readErrors(), "");
    EXPECT_EQ(adapter.end(), "killed by signal 13");
  }
}

TEST_F(PingAdapter, LetsTheNextLineEndThePingWhenItIsKilledItself) {
  fakePing("echo first; read -r line; echo second; read -r line");
  Process adapter({PING_ADAPTER}, [] { std::signal(SIGPIPE, SIG_DFL); });
  EXPECT_EQ(adapter.readLine(), "first\n");

  adapter.sendSignal(SIGKILL);
  EXPECT_EQ(adapter.end(), "killed by signal 9");
  adapter.writeInput("go on\n");

  EXPECT_EQ(adapter.readErrors(), "");
}

TEST_F(PingAdapter, EndsThePingAndSaysWhyTheOutputCannotBeWritten) {
  const struct {
    const char* reason;
    std::function<void()> prepare;
  } cases[] = {
      {"No space left on device", [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); }},
      {"Bad file descriptor", [] { close(STDOUT_FILENO); }},
  };
  fakePing("echo first; read -r line");
  for (const auto& c : cases) {
    EXPECT_EQ(run({}, c.prepare), std::string("ping adapter: cannot write the output of ping: ") +
                                      c.reason + "\nexit status 1");
  }
}

TEST_F(PingAdapter, EndsThePingWhenInputAndOutputAreClosed) {
  fakePing("echo first; while :; do :; done");

  EXPECT_EQ(run({},
                [] {
                  close(STDIN_FILENO);
                  close(STDOUT_FILENO);
                }),
            "ping adapter: cannot write the output of ping: Bad file descriptor\nexit status 1");
}

TEST_F(PingAdapter, SaysThatThereIsNoPing) {
  EXPECT_EQ(run(), std::string(kNoPing) + "exit status 127");
}

TEST_F(PingAdapter, SaysThatThereIsNoPingWithoutAPath) {
  EXPECT_EQ(run({}, [] { unsetenv("PATH"); }), std::string(kNoPing) + "exit status 127");
}

TEST_F(PingAdapter, TakesNoDirectoryAndNoFileThatIsNotExecutable) {
  fs::create_directories("directory/ping");
  fs::create_directory("text");
  std::ofstream("text/ping") << "#!/bin/sh\n";
  setPath("directory:text:missing:" + adapterDirectory() + ":directory:text:missing");

  EXPECT_EQ(run(), std::string(kNoPing) + "exit status 127");
}

TEST_F(PingAdapter, TakesTheFirstPingBehindItself) {
  for (const char* const name : {"before", "first", "second"}) {
    fs::create_directory(name);
    writeScript(std::string(name) + "/ping", "#!/bin/sh\necho " + std::string(name));
  }
  writeScript("ping", "#!/bin/sh\necho working directory");
  fs::create_directory("link");
  fs::create_symlink(PING_ADAPTER, "link/ping");
  const std::string adapter = adapterDirectory();
  const struct {
    std::string path;
    const char* taken;
  } cases[] = {
      {adapter + ":first:second", "first"},
      {"before:" + adapter + ":second:first", "second"},
      {adapter + ":before:" + adapter + ":first", "first"},
      {adapter + ":link:first", "first"},
      {"link:first", "first"},
      {"first:second", "first"},  // called by its path
      {adapter + "::first", "working directory"},
      {adapter + ":", "working directory"},
      {"", "working directory"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path);
    setPath(c.path);

    EXPECT_EQ(run(), std::string(c.taken) + "\nexit status 0");
  }
}

TEST_F(PingAdapter, GoesThroughAnotherAdapterToThePing) {
  fs::create_directory("copy");
  fs::copy_file(PING_ADAPTER, "copy/ping");
  fakePing("echo reached");
  for (const std::string& adapters : {adapterDirectory() + ":copy", "copy:" + adapterDirectory(),
                                      adapterDirectory() + ":copy:" + adapterDirectory()}) {
    SCOPED_TRACE(adapters);
    setPath(adapters + ":system");

    EXPECT_EQ(run(), "reached\nexit status 0");
  }
}

TEST_F(PingAdapter, SaysThatThePingCannotBeRun) {
  writeScript("system/ping", "no program");

  EXPECT_EQ(run(), "ping adapter: cannot run " + (directory / "system/ping").string() +
                       ": Exec format error\nexit status 126");
}

TEST_F(PingAdapter, SaysThatThereIsNoPipeToRunThePing) {
  fakePing("echo never");
  const auto leaveOneDescriptor = [] {
    const rlim_t limit = static_cast<rlim_t>(dup(STDIN_FILENO)) + 1;
    const rlimit limits = {limit, limit};
    close(static_cast<int>(limit) - 1);
    setrlimit(RLIMIT_NOFILE, &limits);
  };

  EXPECT_EQ(run({}, leaveOneDescriptor), "ping adapter: cannot run " +
                                             (directory / "system/ping").string() +
                                             ": Too many open files\nexit status 126");
}

}  // namespace
