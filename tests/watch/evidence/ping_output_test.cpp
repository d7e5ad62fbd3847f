#include "evidence/ping_output.h"

#include "evidence/log_directory.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <string>
#include <vector>

namespace watch {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr char kHeader[] = "PING 192.0.2.10 (192.0.2.10): 56 data bytes\n";
constexpr char kReplies[] =
    "64 bytes from 192.0.2.10: icmp_seq=0 ttl=57 time=13.5 ms\n"
    "64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=12.25 ms\n";
constexpr double kTimes[] = {13.5, 12.25};
constexpr char kSummary[] = "round-trip min/avg/max/stddev = 12.250/12.875/13.500/0.625 ms\n";

std::string told(const PingOutput& output) {
  const auto number = [](const auto& value) { return value ? fmt::format("{}", *value) : "-"; };
  std::string summary = "-";
  if (output.summary) {
    const auto [min, avg, max, stddev] = *output.summary;
    summary = fmt::format("{}/{}/{}/{}", min, avg, max, stddev);
  }
  return fmt::format("{}-{}: {}, {} of {}, {} {}{}, replies [{}]", output.from.first,
                     output.from.last, output.target, number(output.received), number(output.sent),
                     summary, output.summaryIsRead ? "read" : "not read",
                     output.summaryIsWhole ? " whole" : "", fmt::join(output.replies, " "));
}

std::vector<std::string> readAll(const std::string& text) {
  std::vector<PingOutput> outputs;
  PingOutputReader reader(outputs);
  eachLine(text,
           [&](std::string_view line, std::uint32_t number) { reader.take(line, 0, number); });
  std::vector<std::string> all;
  for (const PingOutput& output : outputs) {
    all.push_back(told(output));
  }
  return all;
}

TEST(PingOutput, OfEachToolIsRead) {
  const struct {
    const char* file;
    const char* told;
  } cases[] = {
      {"busybox_1.35_reply.log",
       "1-8: 127.0.0.1, 3 of 3, 0.025/0.048/0.061/nan read, replies [0.025 0.06 0.061]"},
      {"inetutils_2.4_no_reply.log", "1-3: 10.99.0.7, 0 of 2, - not read, replies []"},
      {"inetutils_2.4_one_reply.log",
       "1-5: 127.0.0.1, 1 of 1, 0.025/0.025/0.025/0 read whole, replies [0.025]"},
      {"inetutils_2.4_reply.log",
       "1-7: 127.0.0.1, 3 of 3, 0.05/0.056/0.06/0 read whole, replies [0.06 0.05 0.058]"},
      {"iputils_20221126_no_reply.log", "1-5: 10.99.0.7, 0 of 2, - not read, replies []"},
      {"iputils_20221126_reply.log",
       "1-8: 127.0.0.1, 3 of 3, 0.01/0.027/0.038/0.012 not read, replies [0.01 0.038 0.034]"},
      {"macos_no_reply.log", "1-6: 192.168.1.99, 0 of 3, - not read, replies []"},
      {"macos_reply.log",
       "1-15: 192.168.1.10, 10 of 10, 14.123/15.456/17.789/1.234 read whole, replies [14.601 14.43 "
       "14.21 14.123 16.06 16.505 16.534 16.116 17.789 14.192]"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);

    EXPECT_THAT(readAll(readFile(std::string(TEST_DATA_DIR "/ping/") + c.file)),
                ElementsAre(c.told));
  }
}

TEST(PingOutput, EndsWhereTheNextBegins) {
  EXPECT_THAT(
      readAll(std::string(kHeader) + kReplies + kSummary + kHeader + kReplies),
      ElementsAre(
          "1-4: 192.0.2.10, - of -, 12.25/12.875/13.5/0.625 read whole, replies [13.5 12.25]",
          "5-7: 192.0.2.10, - of -, - not read, replies [13.5 12.25]"));
  EXPECT_THAT(readAll(std::string(kHeader) + kHeader),
              ElementsAre("1-1: 192.0.2.10, - of -, - not read, replies []",
                          "2-2: 192.0.2.10, - of -, - not read, replies []"));
}

TEST(PingOutput, NamesItsTarget) {
  const struct {
    const char* header;
    const char* target;
  } cases[] = {{"PING localhost (127.0.0.1) 56(84) bytes of data.", "localhost"},
               {"PING 2001:db8::1(2001:db8::1) 56 data bytes", "2001:db8::1"},
               {"PING 2001:db8::1 (2001:db8::1): 56 data bytes", "2001:db8::1"},
               {"PING fe80::1%eth0(fe80::1%eth0) 56 data bytes", "fe80::1%eth0"},
               {"PING \x1b[2J\xff (192.0.2.1): 56 data bytes", "?[2J?"},
               {"PING 192.0", "192.0"},
               {"PING ", ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.header);
    std::vector<PingOutput> outputs;

    PingOutputReader(outputs).take(c.header, 0, 1);

    ASSERT_EQ(outputs.size(), 1U);
    EXPECT_EQ(outputs[0].target, c.target);
  }
}

TEST(PingOutput, CountsRepliesThatTellTheirTime) {
  const struct {
    const char* line;
    std::uint32_t replies;
  } cases[] = {
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=13.9 ms", 1},
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=1234 ms", 1},
      {"64 bytes from a time=b (192.0.2.10): icmp_seq=1 ttl=57 time=13.9 ms", 1},
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=13.9 ms (BAD CHECKSUM!)", 1},
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=13.9 ms (DUP!)", 0},
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=13.9 ms (DUP!) (BAD CHECKSUM!)", 0},
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=13.9 m", 0},
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=1", 0},
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=", 0},
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=nan ms", 0},
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=inf ms", 0},
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=-13.9 ms", 0},
      {"64 bytes from 192.0.2.10: icmp_seq=1 ttl=57 time=1e999 ms", 0},
      {"16 bytes from 192.0.2.10: icmp_seq=1 ttl=57", 0},
      {"From 10.0.0.1 icmp_seq=1 Destination Host Unreachable", 0},
      {"Request timeout for icmp_seq 0", 0},
      {"", 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    std::vector<PingOutput> outputs;
    PingOutputReader reader(outputs);
    reader.take("PING a (a): 56 data bytes", 0, 1);

    reader.take(c.line, 0, 2);

    EXPECT_EQ(outputs[0].replies.size(), c.replies);
    EXPECT_EQ(outputs[0].from.last, 2U);
  }
}

TEST(PingOutput, TellsWhatWasSentAndReceived) {
  const struct {
    const char* line;
    const char* told;
  } cases[] = {
      {"10 packets transmitted, 7 packets received, 30% packet loss", "7 of 10"},
      {"2 packets transmitted, 0 received, +2 errors, 100% packet loss, time 1001ms", "0 of 2"},
      {"3 packets transmitted, 3 packets received, +3 duplicates, 0.0% packet loss", "3 of 3"},
      {"10 packets transmitted, 1", "- of -"},
      {"10 packets transmitted, 10 packets rec", "- of -"},
      {"10 packets transmitted, ", "- of -"},
      {"4294967296 packets transmitted, 4294967296 received", "- of -"},
      {"-1 packets transmitted, -1 received", "- of -"},
      {"10 packets trans", "- of -"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);

    EXPECT_THAT(readAll(std::string(kHeader) + c.line),
                ElementsAre(fmt::format("1-2: 192.0.2.10, {}, - not read, replies []", c.told)));
  }
}

TEST(PingOutput, TellsWhatTheTesterCanHaveReadOfTheSummary) {
  const struct {
    const char* line;
    const char* told;
  } cases[] = {
      {"round-trip min/avg/max/stddev = 13.4/13.9/14.4/0.3 ms", "13.4/13.9/14.4/0.3 read whole"},
      {"round-trip min/avg/max/stddev = 13.4/13.9/14.4/nan ms", "13.4/13.9/14.4/nan read whole"},
      {"round-trip min/avg/max/stddev = 13.4/13.9/14.4/0.", "13.4/13.9/14.4/0 read whole"},
      {"round-trip min/avg/max/stddev = 13.4/13.9/14.4/", "13.4/13.9/14.4/nan read"},
      {"round-trip min/avg/max/stddev = 13.4/13.9/14.4", "- read"},
      {"round-trip min/avg/max/stddev = 13.4/13.9/14.4 ms", "13.4/13.9/14.4/nan read"},
      {"round-trip min/avg/max/stddev = 13.4/13.9/", "- read"},
      {"round-trip min/avg/max/stddev = ", "- read"},
      {"round-trip min/avg/max/stddev =", "- not read"},
      {"round-trip min/avg/max/stddev", "- not read"},
      {"round-trip = a/b/c/d ms", "- read"},
      {"rtt min/avg/max/mdev = 13.4/13.9/14.4/0.3 ms, pipe 2", "13.4/13.9/14.4/0.3 not read"},
      {"  round-trip = 13.4/13.9/14.4/0.3 ms", "- not read"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);

    EXPECT_THAT(readAll(std::string(kHeader) + c.line),
                ElementsAre(fmt::format("1-2: 192.0.2.10, - of -, {}, replies []", c.told)));
  }
}

TEST(PingOutput, IsFoundBehindOneThatWasCutAnywhere) {
  const std::string first = std::string(kHeader) + kReplies +
                            "\n--- 192.0.2.10 ping statistics ---\n"
                            "10 packets transmitted, 2 packets received, 80.0% packet loss\n" +
                            kSummary;
  const std::string second = std::string(kHeader) + kReplies;
  const std::size_t oneReply = first.find("13.5 ms\n") + sizeof("13.5 ms") - 1;
  const std::size_t twoReplies = first.find("12.25 ms\n") + sizeof("12.25 ms") - 1;
  for (std::size_t length = sizeof("PING ") - 1; length < first.size(); ++length) {
    SCOPED_TRACE(first.substr(0, length));

    std::vector<PingOutput> outputs;
    PingOutputReader reader(outputs);
    eachLine(first.substr(0, length) + second,
             [&](std::string_view line, std::uint32_t number) { reader.take(line, 0, number); });

    ASSERT_EQ(outputs.size(), 2U);
    const std::size_t whole = length >= twoReplies ? 2 : length >= oneReply ? 1 : 0;
    EXPECT_THAT(outputs[0].replies, ElementsAreArray(kTimes, whole));
    EXPECT_EQ(outputs[0].target,
              first.substr(5, std::min(length, sizeof("PING 192.0.2.10") - 1) - 5));
    EXPECT_EQ(outputs[1].target, "192.0.2.10");
    EXPECT_THAT(outputs[1].replies, ElementsAreArray(kTimes));
    EXPECT_EQ(outputs[1].from.first, outputs[0].from.last + (first[length - 1] == '\n' ? 1 : 0));
  }
}

TEST(PingOutput, MissesTheLinesBeforeTheFirst) {
  const struct {
    std::string text;
    std::uint32_t linesBefore;
    std::size_t outputs;
  } cases[] = {{"", 0, 0},
               {kHeader, 0, 1},
               {kReplies, 2, 0},
               {std::string("\n") + kReplies + kHeader + kReplies, 3, 1},
               {std::string(1'000'000, '\0') + kHeader, 1, 1},
               {std::string("ping: PING 1\nPINGS a (a)\n"), 2, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text.substr(0, 100));
    std::vector<PingOutput> outputs;
    PingOutputReader reader(outputs);

    eachLine(c.text,
             [&](std::string_view line, std::uint32_t number) { reader.take(line, 0, number); });

    EXPECT_EQ(reader.linesBefore(), c.linesBefore);
    EXPECT_EQ(outputs.size(), c.outputs);
  }
}

}  // namespace
}  // namespace watch
