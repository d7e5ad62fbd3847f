#include "views/style.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

constexpr Style kPlain = {false, false, false, 80};
constexpr Style kColours = {true, true, true, 80};

TEST(Paint, ColoursEachToneWhereThereAreColours) {
  EXPECT_EQ(paint(kColours, Tone::plain, "x"), "x");
  EXPECT_EQ(paint(kColours, Tone::strong, "x"), "\x1b[1mx\x1b[0m");
  EXPECT_EQ(paint(kColours, Tone::dim, "x"), "\x1b[2mx\x1b[0m");
  EXPECT_EQ(paint(kColours, Tone::good, "x"), "\x1b[32mx\x1b[0m");
  EXPECT_EQ(paint(kColours, Tone::warning, "x"), "\x1b[33mx\x1b[0m");
  EXPECT_EQ(paint(kColours, Tone::bad, "x"), "\x1b[1m\x1b[31mx\x1b[0m");
  EXPECT_EQ(paint(kColours, Tone::accent, "x"), "\x1b[36mx\x1b[0m");
}

TEST(Paint, LeavesTheTextAloneWithoutColours) {
  for (const Tone tone : {Tone::plain, Tone::strong, Tone::bad}) {
    EXPECT_EQ(paint(kPlain, tone, "x"), "x");
  }
}

TEST(Paint, ShowsAClassInItsTone) {
  EXPECT_EQ(tone(Class::ok), Tone::good);
  EXPECT_EQ(tone(Class::partial), Tone::warning);
  EXPECT_EQ(tone(Class::failed), Tone::bad);
}

TEST(Sparkline, HasABarForEachValueAndADotForNone) {
  const std::optional<double> values[] = {0, 1, 2, 3, 4, 5, 6, 7, std::nullopt, 99, -1};

  EXPECT_EQ(sparkline(kColours, values, 7), "▁▂▃▄▅▆▇█·█▁");
}

TEST(Sparkline, HasDigitsWhereTheTerminalHasNoBars) {
  const std::optional<double> values[] = {0, 7, std::nullopt};

  EXPECT_EQ(sparkline(kPlain, values, 7), "18.");
}

TEST(Sparkline, HasLowBarsWhereTheMostIsNothing) {
  const std::optional<double> values[] = {0, 0};

  EXPECT_EQ(sparkline(kColours, values, 0), "▁▁");
}

TEST(Columns, CountCharactersAndNoColours) {
  EXPECT_EQ(columns(""), 0U);
  EXPECT_EQ(columns("read"), 4U);
  EXPECT_EQ(columns("▁▂·"), 3U);
  EXPECT_EQ(columns(paint(kColours, Tone::bad, "▁▂·")), 3U);
}

TEST(Columns, AreFilledWithBlanks) {
  EXPECT_EQ(right("▁", 3), "  ▁");
  EXPECT_EQ(left("▁", 3), "▁  ");
  EXPECT_EQ(right("read", 3), "read");
  EXPECT_EQ(left("read", 3), "read");
  EXPECT_EQ(left(paint(kColours, Tone::good, "ok"), 3), "\x1b[32mok\x1b[0m ");
  EXPECT_EQ(trimmed("a b  "), "a b");
  EXPECT_EQ(trimmed("   "), "");
}

}  // namespace
}  // namespace watch
