#include "views/show.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace watch {
namespace {

constexpr char kOutput[] =
    "PING 192.0.2.10 (192.0.2.10) 56(84) bytes of data.\n"
    "64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=12.1 ms\n"
    "64 bytes from 192.0.2.10: icmp_seq=2 ttl=57 time=15.2 ms\n"
    "64 bytes from 192.0.2.10: icmp_seq=2 ttl=57 time=99.9 ms (DUP!)\n"
    "64 bytes from 192.0.2.10: icmp_seq=3 ttl=57 time=13.6 ms\n"
    "3 packets transmitted, 3 packets received, 0% packet loss\n"
    "PING 192.0.2.10 (192.0.2.10) 56(84) bytes of data.\n"
    "64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=50.0 ms\n";

class Show : public testing::Test {
 protected:
  Show() {
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "ping_history_verbose.log") << kOutput;
    std::ofstream(folder / "connection_test_results_history.log")
        << "1\n2\n3\n2026-11-21 10:00:00 : Latency = 13 ms, Read Transfer Rate = 244 Mbps \x1b[0m\n"
           "2026-11-21 10:00:00 : Latency = n/a ms\n";
  }
  ~Show() override { std::filesystem::remove_all(folder); }

  std::string show(const watch::Run& run) const {
    return showView(run, {runs, files, directory, kNow + 3 * kHour}, style);
  }

  const std::filesystem::path folder = "/tmp/watch_show_test";
  const std::vector<std::string> files = {
      "connection_test_results_history.log", "archive/ping_history_20261121T050112.log",
      "ping_history_verbose.log", "iperf3_history_forward_csv.log",
      "iperf3_history_reverse_csv.log"};
  const LogDirectory directory{folder};
  std::vector<watch::Run> runs;
  Zone berlin{"Europe/Berlin"};
  Style style{true, false, true, 80};
};

TEST_F(Show, TellsEachFigureWithItsFileAndLine) {
  for (int i = 5; i > 0; --i) {
    runs.push_back(okRun(kNow - i * kDay));
  }

  EXPECT_EQ(show(okRun(kNow)), R"(Sat 21 Nov 2026, 10:00:00 +01:00 (3 h ago)
ok
192.168.1.20 -> 192.0.2.10, iperf3 of 10 s, 10 pings

  ping    12.1 / 13.0 / 15.2 ms   10 of 10 back, deviation 0.8   ▁█▄
  write   41.0 Mbit/s             51.3 MB in 10.0 s of 10 s
  read    244.0 Mbit/s            305.1 MB in 10.0 s of 10 s
  usual at 10:00 in the 28 days before: latency 13.0 ms, write 41.0 Mbit/s, read
  244.0 Mbit/s

Kept in /tmp/watch_show_test
  ping    archive/ping_history_20261121T050112.log:10
          ping_history_verbose.log:1-6
  write   iperf3_history_forward_csv.log:5
  read    iperf3_history_reverse_csv.log:6
  result  connection_test_results_history.log:4
          says "Latency = 13 ms, Read Transfer Rate = 244 Mbps ?[0m"
)");
}

TEST_F(Show, FitsANarrowTerminal) {
  style.width = 40;
  for (int i = 3; i > 0; --i) {
    runs.push_back(okRun(kNow - i * kHour));
  }

  EXPECT_EQ(show(cutRun(kNow)), R"(Sat 21 Nov 2026, 10:00:00 +01:00 (3 h ago)
partial: read cut, 3.1 of 10 s
192.168.1.20 -> 192.0.2.10, iperf3 of 10
s, 10 pings

  ping    12.1 / 13.0 / 15.2 ms
          10 of 10 back, deviation 0.8
  write   41.0 Mbit/s
          51.3 MB in 10.0 s of 10 s
  read    61.2 Mbit/s
          23.7 MB in 3.1 s of 10 s
          3.1 of 10 s: no rate of the
          line, left out of all figures
  usual in the 28 days before: latency
  13.0 ms, write 41.0 Mbit/s, read 244.0
  Mbit/s

Kept in /tmp/watch_show_test
  ping    archive/ping_history_20261121T050112.log:10
          ping_history_verbose.log:1-6
  write   iperf3_history_forward_csv.log:5
  read    iperf3_history_reverse_csv.log:6
  result  connection_test_results_history.log:4
          says "Latency = 13 ms, Read
          Transfer Rate = 244 Mbps ?[0m"
          which does not show the cut
)");
}

TEST_F(Show, HasColours) {
  style.hasColour = true;

  EXPECT_EQ(
      show(cutRun(kNow)),
      "\x1b[1mSat 21 Nov 2026, 10:00:00 +01:00\x1b[0m (3 h ago)\n"
      "\x1b[33mpartial\x1b[0m: read cut, 3.1 of 10 s\n"
      "192.168.1.20 -> 192.0.2.10, iperf3 of 10 s, 10 pings\n"
      "\n"
      "\x1b[1m  ping    \x1b[0m12.1 / \x1b[1m13.0\x1b[0m / 15.2 ms   10 of 10 back, deviation 0.8  "
      " \x1b[36m▁█▄\x1b[0m\n"
      "\x1b[1m  write   \x1b[0m\x1b[1m41.0\x1b[0m Mbit/s             51.3 MB in 10.0 s of 10 s\n"
      "\x1b[1m  read    \x1b[0m\x1b[33m61.2\x1b[0m Mbit/s             23.7 MB in 3.1 s of 10 s\n"
      "          \x1b[33m3.1 of 10 s: no rate of the line, left out of all figures\x1b[0m\n"
      "\n"
      "\x1b[1mKept in\x1b[0m /tmp/watch_show_test\n"
      "  ping    archive/ping_history_20261121T050112.log:10\n"
      "          ping_history_verbose.log:1-6\n"
      "  write   iperf3_history_forward_csv.log:5\n"
      "  read    iperf3_history_reverse_csv.log:6\n"
      "  result  connection_test_results_history.log:4\n"
      "          \x1b[2msays \"Latency = 13 ms, Read Transfer Rate = 244 Mbps ?[0m\"\x1b[0m\n"
      "          \x1b[2mwhich does not show the cut\x1b[0m\n");
}

TEST_F(Show, FoldsNothingInAPipe) {
  style = {false, false, false, 80};
  watch::Run run = cutRun(kNow);
  run.read.reason =
      "the server has said at some length that it is busy running a test. try again later";

  EXPECT_EQ(show(run), R"(Sat 21 Nov 2026, 10:00:00 +01:00 (3 h ago)
partial: read cut, the server has said at some length that it is busy running a test. try again later
192.168.1.20 -> 192.0.2.10, iperf3 of 10 s, 10 pings

  ping    12.1 / 13.0 / 15.2 ms   10 of 10 back, deviation 0.8
  write   41.0 Mbit/s             51.3 MB in 10.0 s of 10 s
  read    61.2 Mbit/s             23.7 MB in 3.1 s of 10 s
          the server has said at some length that it is busy running a test. try again later: no rate of the line, left out of all figures

Kept in /tmp/watch_show_test
  ping    archive/ping_history_20261121T050112.log:10
          ping_history_verbose.log:1-6
  write   iperf3_history_forward_csv.log:5
  read    iperf3_history_reverse_csv.log:6
  result  connection_test_results_history.log:4
          says "Latency = 13 ms, Read Transfer Rate = 244 Mbps ?[0m"
          which does not show the cut
)");
}

TEST_F(Show, SaysWhatIsUnsure) {
  EXPECT_EQ(show(unsureRun(kNow)), R"(Sat 21 Nov 2026, 10:00:00 +01:00 (3 h ago)
partial: no ping
192.168.1.20 -> 192.0.2.10, iperf3 of 10 s

  ping    -
          no ping has run
  write   41.0 Mbit/s             51.3 MB in 10.0 s of 10 s
  read    244.0 Mbit/s            305.1 MB in 10.0 s of 10 s

Unsure: no output of a ping: switched off, or there was no ping

Kept in /tmp/watch_show_test
  write   iperf3_history_forward_csv.log:5
  read    iperf3_history_reverse_csv.log:6
  result  connection_test_results_history.log:4
          says "Latency = 13 ms, Read Transfer Rate = 244 Mbps ?[0m"
)");
}

TEST_F(Show, TellsARunOfWhichOnlyThePlaceIsKnown) {
  EXPECT_EQ(show(failedRun({})), R"(The time of this run is not known
failed: no reply, no test

  ping    -                       0 of 10 back
          nothing came back
  write   -
          no test
  read    -
          no test

Kept in /tmp/watch_show_test
  result  connection_test_results_history.log:5
          says "Latency = n/a ms"
)");
}

TEST_F(Show, TellsAnOrphan) {
  EXPECT_EQ(show(orphan()), R"(The time of this run is not known
partial: only the output of a ping

  ping    12.0 / 12.5 / 13.0 ms   7 of 10 back   ▁█▄
          the tester has not read this output; these are of the replies

Unsure: of one of two runs

Kept in /tmp/watch_show_test
  ping    ping_history_verbose.log:1-6
)");
}

TEST_F(Show, TellsWhatARunThatIsGoingOnHasMeasured) {
  watch::Run run = endedRun(kNow);
  run.ongoing = true;
  run.foldUnresolved = true;

  EXPECT_EQ(show(run), R"(Sat 21 Nov 2026, 10:00:00 +01:00 (3 h ago)
going on; up to now:
This hour of the clock came twice; which one it was cannot be told.
192.168.1.20 -> 192.0.2.10, iperf3 of 10 s, 10 pings

  ping    12.1 / 13.0 / 15.2 ms   10 of 10 back, deviation 0.8   ▁█▄
  write   41.0 Mbit/s             51.3 MB in 10.0 s of 10 s
  read    -
          not yet

Kept in /tmp/watch_show_test
  ping    archive/ping_history_20261121T050112.log:10
          ping_history_verbose.log:1-6
  write   iperf3_history_forward_csv.log:5
)");
}

}  // namespace
}  // namespace watch
