#include "text_buffer.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

/// A buffer of eight characters, with one more behind it that nothing may touch.
struct Guarded {
  char buffer[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
  char guard = '#';
};

/// All characters of the buffer and the one behind it.
std::string_view whole(const Guarded& text) {
  return {text.buffer, sizeof(text.buffer) + sizeof(text.guard)};
}

TEST(FormatInto, CutsWhatDoesNotFitAndReturnsTheUncutLength) {
  const struct {
    int number;
    int length;
    const char* text;
  } cases[] = {{1, 4, "abc1"}, {1234, 7, "abc1234"}, {12345, 8, "abc1234"}, {123456, 9, "abc1234"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.number);
    Guarded text;

    EXPECT_EQ(formatInto(text.buffer, "%s%d", "abc", c.number), c.length);

    EXPECT_STREQ(text.buffer, c.text);
    EXPECT_EQ(text.guard, '#');
  }
}

TEST(FormatLineInto, EndsACutLineInItsNewline) {
  const struct {
    int number;
    const char* text;
  } cases[] = {{1, "abc1\n"}, {123, "abc123\n"}, {1234, "abc123\n"}, {123456, "abc123\n"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.number);
    Guarded text;

    formatLineInto(text.buffer, "%s%d\n", "abc", c.number);

    EXPECT_STREQ(text.buffer, c.text);
    EXPECT_EQ(text.guard, '#');
  }
}

TEST(CopyInto, FillsUpWithZerosAndCutsWhatDoesNotFit) {
  const struct {
    std::string_view text;
    std::string_view copy;
  } cases[] = {{"", {"\0\0\0\0\0\0\0\0#", 9}},
               {"abc", {"abc\0\0\0\0\0#", 9}},
               {"abc12345", "abc12345#"},
               {"abc123456", "abc12345#"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    Guarded text;

    copyInto(text.buffer, c.text);

    EXPECT_EQ(whole(text), c.copy);
  }
}

}  // namespace
