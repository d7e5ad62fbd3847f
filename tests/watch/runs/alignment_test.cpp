#include "runs/alignment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace watch {
namespace {

constexpr Members kBoth = 3;

/// Letters that are the same belong together; one alone costs 10. A letter "=" is beyond doubt.
Costs<2> letters(const std::string& left, const std::string& right) {
  return {{left.size(), right.size()},
          [=](Members members, const Places<2>& at) {
            if (members != kBoth) {
              return 10;
            }
            return left[at[0]] == right[at[1]] ? 0 : kImpossible;
          },
          [](const Places<2>& from, const Places<2>& end) {
            const auto lefts = static_cast<int>(end[0] - from[0]);
            const auto rights = static_cast<int>(end[1] - from[1]);
            return 10 * std::abs(lefts - rights);
          },
          [=](const Places<2>& from) -> std::optional<SureRow<2>> {
            const std::size_t one = left.find('=', from[0]);
            const std::size_t other = right.find('=', from[1]);
            return one == std::string::npos || other == std::string::npos
                       ? std::nullopt
                       : std::optional(SureRow<2>{kBoth, {one, other}});
          }};
}

/// The rows as text: "aa", "a-" or "-a", with a "?" behind a doubtful one.
std::string aligned(const std::string& left, const std::string& right) {
  std::string text;
  for (const Row<2>& row : align(letters(left, right))) {
    text += text.empty() ? "" : " ";
    text += row.places[0] == kAlone ? '-' : left[row.places[0]];
    text += row.places[1] == kAlone ? '-' : right[row.places[1]];
    text += row.doubtful != 0 ? "?" : "";
  }
  return text;
}

TEST(Alignment, PairsWhatBelongsTogether) {
  EXPECT_EQ(aligned("abc", "abc"), "aa bb cc");
}

TEST(Alignment, LeavesAloneWhatHasNoPartner) {
  EXPECT_EQ(aligned("abc", "ac"), "aa b- cc");
  EXPECT_EQ(aligned("ac", "abc"), "aa -b cc");
  EXPECT_EQ(aligned("abcd", "bcd"), "a- bb cc dd");
  EXPECT_EQ(aligned("abc", "abcd"), "aa bb cc -d");
}

TEST(Alignment, MayHaveNothingOnOneSide) {
  EXPECT_EQ(aligned("", ""), "");
  EXPECT_EQ(aligned("ab", ""), "a- b-");
  EXPECT_EQ(aligned("", "ab"), "-a -b");
}

TEST(Alignment, DoubtsWhatAnotherChoiceWouldDoAsWell) {
  EXPECT_EQ(aligned("aa", "a"), "a-? aa?");
  EXPECT_EQ(aligned("xaay", "xay"), "xx a-? aa? yy");
  EXPECT_EQ(aligned("a", "aaa"), "-a? -a? aa?");
}

TEST(Alignment, KeepsDoubtBetweenRowsBeyondDoubt) {
  EXPECT_EQ(aligned("a=aa=a", "a=a=a"), "aa == a-? aa? == aa");
}

TEST(Alignment, TakesFewLossesRatherThanMany) {
  EXPECT_EQ(aligned("abcdefgh", "bcdefghx"), "a- bb cc dd ee ff gg hh -x");
}

TEST(Alignment, WeighsALongStretchOfEqualElements) {
  constexpr std::size_t kLength = 20'000;
  const auto rows = align(letters(std::string(kLength, 'a'), std::string(kLength - 1, 'a')));

  EXPECT_EQ(rows.size(), kLength);
  EXPECT_TRUE(std::ranges::all_of(rows, [](const Row<2>& row) { return row.doubtful != 0; }));
}

TEST(Alignment, WeighsAsManyPlacesAsTheStretchIsLong) {
  const struct {
    std::size_t length;
    std::size_t more;
    bool isWeighed;
  } cases[] = {{100, 100, true}, {1000, 50, true}, {1000, 60, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.length);
    SCOPED_TRACE(c.more);

    const auto rows =
        align(letters("x" + std::string(c.length + c.more, 'a'), "x" + std::string(c.length, 'a')));

    EXPECT_EQ(rows.front().doubtful == 0, c.isWeighed);
  }
}

TEST(Alignment, KeepsTheOrderOfWhatIsTooMuchToWeigh) {
  constexpr std::size_t kLength = 5'000;
  constexpr std::size_t kMore = 200;
  const auto rows = align(letters(std::string(kLength + kMore, 'a'), std::string(kLength, 'a')));

  EXPECT_EQ(rows.size(), kLength + kMore);
  EXPECT_TRUE(std::ranges::all_of(rows, [](const Row<2>& row) { return row.doubtful == kBoth; }));
  std::size_t lefts = 0;
  std::size_t rights = 0;
  for (const Row<2>& row : rows) {
    EXPECT_EQ(row.places[0], lefts++);
    EXPECT_TRUE(row.places[1] == kAlone || row.places[1] == rights++);
  }
  EXPECT_EQ(rights, kLength);
}

TEST(Alignment, FindsTheOnlyPlaceThatIsSought) {
  const std::string text = "--a---b-b";
  const auto find = [&](char letter, std::size_t expected, std::size_t reach) {
    return findOnly(expected, 0, text.size(), reach,
                    [&](std::size_t i) { return text[i] == letter; });
  };

  EXPECT_EQ(find('a', 2, 0), 2U);
  EXPECT_EQ(find('a', 5, 3), 2U);
  EXPECT_EQ(find('a', 5, 2), std::nullopt);
  EXPECT_EQ(find('b', 7, 3), std::nullopt);
  EXPECT_EQ(find('b', 7, 0), std::nullopt);
  EXPECT_EQ(find('b', 6, 1), 6U);
}

}  // namespace
}  // namespace watch
