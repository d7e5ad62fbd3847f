#include "ping_summary.h"

#include "support/files.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// `text` after each of its lines has gone through the adapter.
std::string adapt(const std::string& text) {
  ReplyTimes times;
  std::string adapted;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t length = text.substr(start).find('\n');
    const std::string line = text.substr(start, length == std::string::npos ? length : length + 1);
    adapted += adaptLine(line, times);
    start += line.size();
  }
  return adapted;
}

TEST(PingSummary, OfEachPingHasTheRecognisedForm) {
  const struct {
    const char* file;
    const char* summary;  // in place of the last line
  } cases[] = {
      {"iputils_20221126_reply.log",
       "round-trip min/avg/max/stddev = 0.010/0.027/0.038/0.012 ms\n"},
      {"busybox_1.35_reply.log", "round-trip min/avg/max/stddev = 0.025/0.048/0.061/0.017 ms\n"},
      {"inetutils_2.4_reply.log", nullptr},
      {"inetutils_2.4_one_reply.log", nullptr},
      {"inetutils_2.4_no_reply.log", nullptr},
      {"iputils_20221126_no_reply.log", nullptr},
      {"macos_reply.log", nullptr},
      {"macos_no_reply.log", nullptr},
      {"windows_reply.log", nullptr},
      {"windows_no_reply.log", nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    const std::string text = readFile(std::string(TEST_DATA_DIR "/ping/") + c.file);
    const std::size_t lastLine = text.rfind('\n', text.size() - 2) + 1;

    EXPECT_EQ(adapt(text), c.summary != nullptr ? text.substr(0, lastLine) + c.summary : text);
  }
}

TEST(PingSummary, KeepsItsNumbersAndWhatFollowsThem) {
  using std::string_literals::operator""s;
  for (const std::string& rest :
       {"0.003/0.005/0.011/0.003 ms, pipe 2\n"s,
        "0.003/0.006/0.009/0.003 ms, ipg/ewma 0.037/0.008 ms\n"s,
        "0.003/0.006/0.009/0.003 ms, pipe 3, ipg/ewma 0.037/0.008 ms\n"s,
        "1203.7/1203.75/1203.777/0 ms"s, "1/2/3/4 ms\r\n"s, "1/2/3/4 ms\0 and\n"s}) {
    EXPECT_EQ(adapt("rtt min/avg/max/mdev = " + rest), "round-trip min/avg/max/stddev = " + rest);
  }
}

TEST(PingSummary, OfAnotherFormIsLeftAsItIs) {
  const char* const lines[] = {
      "",
      "\n",
      "round-trip min/avg/max/stddev = 0.010/0.027/0.038/0.012 ms\n",
      "round-trip min/avg/max/std-dev = 0.010/0.027/0.038/0.012 ms\n",  // OpenBSD
      "round-trip (ms)  min/avg/max = 0/0/1\n",                         // HP-UX
      "round-trip min/avg/max = 1/2/3/4 ms\n",
      "round-trip min/avg/max = 1/2 ms\n",
      "round-trip min/avg/max = 1/2/3\n",
      "round-trip min/avg/max = 1/2/3ms\n",
      "round-trip min/avg/max = 1/2/3 s\n",
      "round-trip min/avg/max = 1/2/3 m",
      "round-trip min/avg/max = 1//3 ms\n",
      "round-trip min/avg/max = ",
      "rtt min/avg/max/mdev = 1/2/3 ms\n",
      "rtt min/avg/max/mdev = 1/2/3/4/5 ms\n",
      "rtt min/avg/max/mdev = 1,0/2,0/3,0/0,5 ms\n",
      "rtt min/avg/max/mdev = x/1/2/3 ms\n",
      "rtt min/avg/max/mdev = \n",
      "rtt min/avg/max/mdev =\n",
      "rtt min/avg/max = 1/2/3 ms\n",
      " rtt min/avg/max/mdev = 1/2/3/4 ms\n",
      "the rtt min/avg/max/mdev = 1/2/3/4 ms\n",
      "RTT min/avg/max/mdev = 1/2/3/4 ms\n"};
  for (const char* const line : lines) {
    SCOPED_TRACE(line);

    EXPECT_EQ(adapt(line), line);
  }
}

TEST(PingSummary, GetsTheDeviationOfAllReplies) {
  const struct {
    const char* replies;
    const char* received;
    const char* deviation;
  } cases[] = {
      {"64 bytes from 10.0.0.5: seq=0 ttl=64 time=12.5 ms\n", "1 packets received", "0.000"},
      {"seq=0 time=0.1 ms\nseq=1 time=0.1 ms\n", "2 packets received", "0.000"},
      {"seq=0 time=1 ms\nseq=1 time=2 ms\nseq=2 time=3 ms\n", "3 packets received", "0.816"},
      {"seq=0 time=1 ms\nseq=1 time=3 ms\nseq=1 time=8 ms (DUP!)\n",
       "2 packets received, 1 duplicates", "2.944"},
      {"seq=0 time=1 ms\nuptime=9 ms\n9 replies, time 9ms\n", "1 packets received", "0.000"},
      // Squares of these have no decimals left in a double.
      {"seq=0 time=90000000.001 ms\nseq=1 time=90000000.002 ms\nseq=2 time=90000000.003 ms\n",
       "3 packets received", "0.001"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.replies);
    const std::string output =
        std::string(c.replies) + "9 packets transmitted, " + c.received + ", 7% packet loss\n";

    EXPECT_EQ(adapt(output + "round-trip min/avg/max = 1/2/3 ms, and more\n"),
              output + "round-trip min/avg/max/stddev = 1/2/3/" + c.deviation + " ms, and more\n");
  }
}

TEST(PingSummary, GetsNoDeviationWhereTheTimeOfAReplyIsMissing) {
  const struct {
    const char* replies;
    const char* received;
  } cases[] = {
      {"", "1 packets received"},  // as with -q
      {"", "0 packets received"},
      {"seq=1 time=1 ms\n", "2 packets received"},
      {"seq=0 time=1 ms\nseq=1 time<1 ms\n", "2 packets received"},
      {"seq=0 time=1 ms\nseq=1 time= ms\n", "2 packets received"},
      {"seq=0 time=1 ms\nseq=1 time=2 s\n", "2 packets received"},
      {"seq=0 time=1 ms\nseq=1 ttl=64\n", "2 packets received"},
      {"seq=0 time=1 ms\n", "1 packets received, 1 duplicates"},
      {"seq=0 time=1 ms\n", "1 received"},  // not as busybox says it
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.replies);
    const std::string output = std::string(c.replies) + "2 packets transmitted, " + c.received +
                               ", 7% packet loss\nround-trip min/avg/max = 1/2/3 ms\n";

    EXPECT_EQ(adapt(output), output);
  }
}

}  // namespace
