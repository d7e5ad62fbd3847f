// What the ping adapter does with the output of a ping, in front of fake ones.

#include "adapter/adapter_fixture.h"
#include "adapter/process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr char kOutputLeft[] =
    "ping adapter: the output of ping had not ended 1 second after it and was left\n";

class PingAdapter : public AdapterFixture {
 protected:
  PingAdapter() : AdapterFixture(PING_ADAPTER) {}
};

TEST_F(PingAdapter, HasThePingSpeakEnglish) {
  fakeTool("echo \"$LC_ALL\"");

  EXPECT_EQ(run({}, [] { setenv("LC_ALL", "de_DE.UTF-8", 1); }), "C.UTF-8\nexit status 0");
}

TEST_F(PingAdapter, TurnsTheSummaryAndPassesTheOtherLinesOn) {
  fakeTool(R"(echo "64 bytes from 10.0.0.5: seq=0 ttl=64 time=1.000 ms"
echo "64 bytes from 10.0.0.5: seq=1 ttl=64 time=3.000 ms"
echo
echo "2 packets transmitted, 2 packets received, 0% packet loss"
echo "round-trip min/avg/max = 1.000/2.000/3.000 ms"
printf "rtt min/avg/max/mdev = 1.000/2.000/3.000/1.000 ms"
)");

  EXPECT_EQ(run(), R"(64 bytes from 10.0.0.5: seq=0 ttl=64 time=1.000 ms
64 bytes from 10.0.0.5: seq=1 ttl=64 time=3.000 ms

2 packets transmitted, 2 packets received, 0% packet loss
round-trip min/avg/max/stddev = 1.000/2.000/3.000/1.000 ms
round-trip min/avg/max/stddev = 1.000/2.000/3.000/1.000 msexit status 0)");
}

TEST_F(PingAdapter, PassesALineWithoutEndOnInPieces) {
  constexpr std::size_t kSize = 4096 * 1000;
  fakeTool("/bin/head -c " + std::to_string(kSize) + " /dev/zero; read -r line");
  Process process({adapter});

  EXPECT_TRUE(process.readBytes(kSize) == std::string(kSize, '\0'));
  process.writeInput("go on\n");

  EXPECT_EQ(process.result(), "exit status 0");
}

TEST_F(PingAdapter, TurnsNoPartOfALongLine) {
  const std::string summary = "rtt min/avg/max/mdev = 1/2/3/4 ms";
  const std::string turned = "round-trip min/avg/max/stddev = 1/2/3/4 ms";
  const std::string filling(4096 - summary.size() - 1, ' ');
  const struct {
    std::string output;
    std::string passedOn;
  } cases[] = {
      {summary + filling + "\n", turned + filling + "\n"},  // just short enough
      {summary + filling + " \n", summary + filling + " \n"},
      {summary + filling + " " + summary, summary + filling + " " + summary},
      {summary + filling + " " + summary + "\n" + summary + "\n",
       summary + filling + " " + summary + "\n" + turned + "\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    fakeTool("printf '" + c.output + "'");

    EXPECT_EQ(run(), c.passedOn + "exit status 0");
  }
}

TEST_F(PingAdapter, LetsThePingGoOnThatHasClosedItsOutput) {
  fakeTool("echo first; exec >&-; read -r line; exit 3");
  Process process({adapter});
  EXPECT_EQ(process.readLine(), "first\n");
  process.awaitEndOfFilter();

  process.writeInput("go on\n");

  EXPECT_EQ(process.result(), "exit status 3");
}

TEST_F(PingAdapter, EndsThePingWhenTheReaderOfTheOutputHasGone) {
  fakeTool("trap '' PIPE TERM HUP\necho first; read -r line; echo second; read -r line");
  for (const auto disposition : {SIG_DFL, SIG_IGN}) {
    Process process({adapter}, [disposition] { std::signal(SIGPIPE, disposition); });
    EXPECT_EQ(process.readLine(), "first\n");

    process.closeOutput();
    process.writeInput("go on\n");

    EXPECT_EQ(process.readErrors(), "");
    EXPECT_EQ(process.end(), "killed by signal 13");
  }
}

// The kernel spares a ping that has gained rights. It spares a child of the ping, too.
TEST_F(PingAdapter, LetsTheNextLineEndAPingThatIsSparedWhenItIsKilledItself) {
  fakeTool("exec 3<&0; { echo first; read -r line <&3; while :; do echo next; done; } &\nwait");
  Process process({adapter}, [] { std::signal(SIGPIPE, SIG_DFL); });
  EXPECT_EQ(process.readLine(), "first\n");

  process.sendSignal(SIGKILL);
  EXPECT_EQ(process.end(), "killed by signal 9");
  process.writeInput("go on\n");

  EXPECT_EQ(process.readErrors(), "");
}

TEST_F(PingAdapter, LeavesOutputThatGoesOnAfterThePing) {
  setGraceSeconds("1");
  fakeTool("exec 3<&0; /bin/cat <&3 2>&- & echo last; exit 3");
  EXPECT_EQ(run(), std::string("last\n") + kOutputLeft + "exit status 3");

  fakeTool("exec 3<&0; /bin/cat <&3 2>&- & echo ready; wait");
  EXPECT_EQ(runInto(SIGTERM), std::string(kOutputLeft) + "killed by signal 15");
}

TEST_F(PingAdapter, LeavesOutputThatNobodyTakes) {
  setGraceSeconds("1");
  fakeTool("while :; do echo sixteen letters; done");
  Process process({adapter}, [] { fcntl(STDOUT_FILENO, F_SETPIPE_SZ, 1); });
  process.awaitFullOutput();

  process.sendSignal(SIGTERM);

  EXPECT_EQ(process.readErrors(), kOutputLeft);
  EXPECT_EQ(process.end(), "killed by signal 15");
}

TEST_F(PingAdapter, EndsThePingAndSaysWhyTheOutputCannotBeWritten) {
  const struct {
    const char* reason;
    std::function<void()> prepare;
  } cases[] = {
      {"No space left on device", [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); }},
      {"Bad file descriptor", [] { close(STDOUT_FILENO); }},
      {"Bad file descriptor",
       [] {
         close(STDIN_FILENO);
         close(STDOUT_FILENO);
       }},
  };
  fakeTool("echo first; while :; do :; done");
  for (const auto& c : cases) {
    EXPECT_EQ(run({}, c.prepare), std::string("ping adapter: cannot write the output of ping: ") +
                                      c.reason + "\nexit status 1");
  }
}

TEST_F(PingAdapter, SaysThatThereIsNoPipeToRunThePing) {
  fakeTool("echo never");
  const auto leaveOneDescriptor = [] {
    const rlim_t limit = static_cast<rlim_t>(dup(STDIN_FILENO)) + 1;
    const rlimit limits = {limit, limit};
    close(static_cast<int>(limit) - 1);
    setrlimit(RLIMIT_NOFILE, &limits);
  };

  EXPECT_EQ(run({}, leaveOneDescriptor),
            "ping adapter: cannot run " + tool + ": Too many open files\nexit status 126");
}

}  // namespace
