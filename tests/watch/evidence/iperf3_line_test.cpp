#include "evidence/iperf3_line.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace watch {
namespace {

constexpr char kForward[] =
    "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,1180000000,943718400,0,0";
constexpr char kReverse[] =
    "1605505205,192.168.1.20,54014,192.168.1.10,5201,0,10,0,0,1147000000,917504000";
constexpr char kNothing[] = ",,0,,0,0,,0,0,0,0";

/// What a line says, one word a member; "-" for nothing, "none" for no line.
std::string told(const std::optional<Iperf3Line>& line) {
  if (!line) {
    return "none";
  }
  const auto word = [](const std::string& text) { return (text.empty() ? "-" : text) + " "; };
  return word(line->start ? std::to_string(*line->start) : "") + word(line->client) +
         std::to_string(line->clientPort) + " " + word(line->server) +
         std::to_string(line->serverPort) + " " +
         word(line->duration ? std::to_string(*line->duration) : "") + std::to_string(line->bytes) +
         " " + std::to_string(std::llround(line->bps));
}

TEST(Iperf3Line, TellsOfATest) {
  const auto forward = parseForwardLine(kForward);
  const auto reverse = parseReverseLine(kReverse);

  EXPECT_EQ(told(forward),
            "1605505183 192.168.1.20 54012 192.168.1.10 5201 10 1180000000 943718400");
  EXPECT_EQ(told(reverse),
            "1605505205 192.168.1.20 54014 192.168.1.10 5201 10 1147000000 917504000");
  EXPECT_TRUE(forward->connected());
  EXPECT_FALSE(forward->from.isThere());
}

TEST(Iperf3Line, TellsOfATestThatFailed) {
  for (const auto parse : {parseForwardLine, parseReverseLine}) {
    const auto line = parse(kNothing);

    EXPECT_EQ(told(line), "- - 0 - 0 - 0 0");
    EXPECT_FALSE(line->connected());
  }
}

TEST(Iperf3Line, IsReadInManyForms) {
  const struct {
    std::string text;
    std::string told;
  } cases[] = {
      {"1605505183\r,::1,54012,::1,5201,0,10\r,1,2,0,0", "1605505183 ::1 54012 ::1 5201 10 1 2"},
      {"\r,,0,,0,0,,0,0,0,0", "- - 0 - 0 - 0 0"},
      {",a,1,b,2,0,,3,4,0,0", "- a 1 b 2 - 3 4"},
      {"9999999999,a,1,b,65535,0,0,0,0,0,0", "9999999999 a 1 b 65535 0 0 0"},
      {"1,\x1b[2J\xff,1,b\x7f\t c,2,0,1,3,4,0,0", "1 ?[2J? 1 b?? c 2 1 3 4"},
      {"1,a,1,b,2,0,1,18446744073709551615,4,0,0", "1 a 1 b 2 1 18446744073709551615 4"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);

    EXPECT_EQ(told(parseForwardLine(c.text)), c.told);
  }
}

TEST(Iperf3Line, IsReadAsAWholeOrNotAtAll) {
  const std::string texts[] = {"",
                               ",,,,,,,,,,",
                               "1605505183",
                               "99999999999,a,1,b,2,0,1,3,4,0,0",
                               "16055x5183,a,1,b,2,0,1,3,4,0,0",
                               "1.5,a,1,b,2,0,1,3,4,0,0",
                               "1,a,1,b,2,0,1,3,4,0",
                               "1,a,1,b,2,0,1,3,4,0,0,",
                               "1,a,1,b,2,0,1,3,4,0,0 ",
                               "1,a,1,b,2,0,1,3,4,5,6",
                               "1,a,1,b,2,0,1,3,4,5,0",
                               "1,a,1,b,2,0,1,3,4,0,01605505",
                               "1,a,1,b,2,1,1,3,4,0,0",
                               "1,a,1,b,2,0,-1,3,4,0,0",
                               "1,a,1,b,2,0,ten,3,4,0,0",
                               "1,a,65536,b,2,0,1,3,4,0,0",
                               "1,a,-1,b,2,0,1,3,4,0,0",
                               "1,a,,b,2,0,1,3,4,0,0",
                               "1,a,1,b,2,0,1,,4,0,0",
                               "1,a,1,b,2,0,1,3,,0,0",
                               "1,a,1,b,2,0,1,-3,4,0,0",
                               "1,a,1,b,2,0,1,18446744073709551616,4,0,0",
                               std::string(kForward) + '\0',
                               std::string(kForward) + kForward,
                               std::string(1'000'000, '1'),
                               std::string(1'000'000, ',')};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text.substr(0, 100));

    EXPECT_EQ(told(parseForwardLine(text)), "none");
  }
}

TEST(Iperf3Line, IsNoneInTheHistoryOfTheOtherDirection) {
  EXPECT_EQ(told(parseForwardLine(kReverse)), "none");
  EXPECT_EQ(told(parseReverseLine(kForward)), "none");
}

TEST(Iperf3Line, IsFoundBehindACutOne) {
  const std::string first = kReverse;
  for (const std::string& second :
       {std::string(kReverse), std::string(kNothing),
        std::string("1605505205\r,a,54014,b,5201,0,10\r,0,0,1147000000,917504000")}) {
    for (std::size_t length = 1; length <= first.size(); ++length) {
      SCOPED_TRACE(first.substr(0, length) + second);

      EXPECT_EQ(lastIperf3Line(first.substr(0, length) + second), length);
    }
  }
}

TEST(Iperf3Line, IsNotFoundWhereNoneCanBegin) {
  const std::string texts[] = {"",
                               kNothing,
                               kForward,
                               "605505183,a,1,b,2,0,1,3,4,0,0",
                               "x605505183,a,1,b,2,0,1,3,4,0,0",
                               ",a,1,b,2,0,1,3,4,0,0",
                               "\r,a,1,b,2,0,1,3,4,0,0",
                               std::string(1'000'000, '1')};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text.substr(0, 100));

    EXPECT_EQ(lastIperf3Line(text), std::string_view::npos);
  }
}

TEST(Iperf3Line, IsOfTheSameTestWithItsStartAndPorts) {
  const auto test = [](const char* text) { return *parseForwardLine(text); };
  const Iperf3Line one = test("7,a,1,b,2,0,1,3,4,0,0");

  EXPECT_TRUE(isSameTest(one, test("7,c,1,d,2,0,9,9,9,0,0")));
  EXPECT_FALSE(isSameTest(one, test("8,a,1,b,2,0,1,3,4,0,0")));
  EXPECT_FALSE(isSameTest(one, test("7,a,9,b,2,0,1,3,4,0,0")));
  EXPECT_FALSE(isSameTest(one, test("7,a,1,b,9,0,1,3,4,0,0")));
  EXPECT_FALSE(isSameTest(test(kNothing), test(kNothing)));
}

}  // namespace
}  // namespace watch
