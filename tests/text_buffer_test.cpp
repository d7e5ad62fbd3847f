#include "text_buffer.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

/// A buffer of eight characters, with one more behind it that nothing may touch.
struct Guarded {
  char buffer[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
  char guard = '#';
};

TEST(FormatInto, WritesTheTextAndReturnsItsLength) {
  Guarded text;

  EXPECT_EQ(formatInto(text.buffer, "%s-%d", "a", 12), 4);

  EXPECT_STREQ(text.buffer, "a-12");
}

TEST(FormatInto, KeepsATextThatFillsTheBuffer) {
  Guarded text;

  EXPECT_EQ(formatInto(text.buffer, "%s%d", "abc", 1234), 7);

  EXPECT_STREQ(text.buffer, "abc1234");
  EXPECT_EQ(text.guard, '#');
}

TEST(FormatInto, CutsWhatDoesNotFitAndReturnsTheUncutLength) {
  Guarded text;

  EXPECT_EQ(formatInto(text.buffer, "%s%d", "abc", 123456), 9);

  EXPECT_STREQ(text.buffer, "abc1234");
  EXPECT_EQ(text.guard, '#');
}

TEST(FormatLineInto, WritesTheLine) {
  Guarded text;

  formatLineInto(text.buffer, "%s,%d\n", "a", 12);

  EXPECT_STREQ(text.buffer, "a,12\n");
}

TEST(FormatLineInto, KeepsALineThatFillsTheBuffer) {
  Guarded text;

  formatLineInto(text.buffer, "%s%d\n", "abc", 123);

  EXPECT_STREQ(text.buffer, "abc123\n");
  EXPECT_EQ(text.guard, '#');
}

TEST(FormatLineInto, EndsACutLineInItsNewline) {
  for (const int number : {1234, 12345, 123456}) {
    SCOPED_TRACE(number);
    Guarded text;

    formatLineInto(text.buffer, "%s%d\n", "abc", number);

    EXPECT_STREQ(text.buffer, "abc123\n");
    EXPECT_EQ(text.guard, '#');
  }
}

/// All characters of the buffer and the one behind it.
std::string_view whole(const Guarded& text) {
  return {text.buffer, sizeof(text.buffer) + sizeof(text.guard)};
}

TEST(CopyInto, FillsWhatIsLeftWithZeros) {
  Guarded text;

  copyInto(text.buffer, "abc");
  EXPECT_EQ(whole(text), std::string_view("abc\0\0\0\0\0#", 9));

  copyInto(text.buffer, "");
  EXPECT_EQ(whole(text), std::string_view("\0\0\0\0\0\0\0\0#", 9));
}

TEST(CopyInto, LeavesNoTerminatorInAFullField) {
  Guarded text;

  copyInto(text.buffer, "abc12345");

  EXPECT_EQ(whole(text), "abc12345#");
}

TEST(CopyInto, CutsWhatDoesNotFit) {
  Guarded text;

  copyInto(text.buffer, "abc123456");

  EXPECT_EQ(whole(text), "abc12345#");
}

}  // namespace
