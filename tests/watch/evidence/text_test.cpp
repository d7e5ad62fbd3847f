#include "evidence/text.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

TEST(Text, IsPrintableWithoutControlCharactersAndBytesOfOtherAlphabets) {
  EXPECT_EQ(printable(""), "");
  EXPECT_EQ(printable(" ~az"), " ~az");
  EXPECT_EQ(printable({"\0\x1b[31m\x7f\x80\xff\n", 10}), "??[31m????");
}

TEST(Text, IsANumberAsAWhole) {
  EXPECT_EQ(wholeNumber<std::uint32_t>("4294967295"), 4294967295U);
  EXPECT_EQ(wholeNumber<std::int64_t>("-7"), -7);
  EXPECT_EQ(wholeNumber<double>("-0.5"), -0.5);
  for (const char* const text : {"", " 7", "7 ", "+7", "0x7", "4294967296", "-7", "7.0", "n/a"}) {
    EXPECT_FALSE(wholeNumber<std::uint32_t>(text)) << text;
  }
}

TEST(Text, HasANumberTakenOffItsFront) {
  const struct {
    std::string_view text;
    std::optional<double> number;
    std::string_view rest;
  } cases[] = {{"13.5 ms", 13.5, " ms"}, {"13.", 13, ""}, {"7/8", 7, "/8"}, {"", {}, ""},
               {" 7", {}, " 7"},         {"ms", {}, "ms"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    std::string_view text = c.text;

    EXPECT_EQ(takeNumber<double>(text), c.number);
    EXPECT_EQ(text, c.rest);
  }
}

TEST(Columns, AreBetweenCommas) {
  std::string_view columns[3];

  EXPECT_TRUE(splitColumns("a,,c d", columns));
  EXPECT_EQ(columns[0], "a");
  EXPECT_EQ(columns[1], "");
  EXPECT_EQ(columns[2], "c d");
  for (const char* const text : {"", "a", "a,b", "a,b,c,", "a,b,c,d"}) {
    EXPECT_FALSE(splitColumns(text, columns)) << text;
  }
}

TEST(Columns, AreCountedFromTheEnd) {
  const struct {
    const char* text;
    unsigned columns;
    std::size_t comma;
  } cases[] = {{"a,b,c", 1, 3},
               {"a,b,c", 2, 1},
               {"a,b,c", 3, std::string_view::npos},
               {",b", 1, 0},
               {",b", 2, std::string_view::npos},
               {"", 1, std::string_view::npos}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);

    EXPECT_EQ(commaBefore(c.text, c.columns), c.comma);
  }
}

}  // namespace
}  // namespace watch
