#include "guard/rewritten_line.h"

#include <gtest/gtest.h>

namespace watch {

namespace {

constexpr char kAll[] =
    "\r\x1b[Jfirst\r"
    "\r\x1b[Jsecond\r"
    "\r\x1b[J";

// A terminal that has wrapped the line anew keeps the cursor at its beginning, and what is erased
// from there to the end of the screen is the whole of it.
TEST(RewrittenLine, LeavesTheCursorAtItsBeginningAndErasesAllBehind) {
  testing::internal::CaptureStderr();
  {
    RewrittenLine line;
    line.clear();
    line.write("first");
    line.write("first");
    line.write("second");
    line.clear();
    line.clear();
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), kAll);
}

TEST(RewrittenLine, IsGoneAtItsEnd) {
  testing::internal::CaptureStderr();
  {
    RewrittenLine line;
    line.write("first");
    line.write("second");
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), kAll);
}

}  // namespace

}  // namespace watch
