#include "report/chart.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

TEST(Scale, EndsWithARoundFigure) {
  const struct {
    double most;
    double top;
    double step;
  } cases[] = {
      {0, 1, 1},     {1, 1, 0.5},     {0.003, 0.003, 0.001},     {13, 15, 5},          {60, 60, 20},
      {61, 100, 50}, {250, 300, 100}, {95'000, 100'000, 50'000}, {3'000, 3'000, 1'000}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.most);

    const Scale scale = scaleFor(c.most);

    EXPECT_DOUBLE_EQ(scale.top, c.top);
    EXPECT_DOUBLE_EQ(scale.step, c.step);
    EXPECT_EQ(scale.y(0), kHeight);
    EXPECT_EQ(scale.y(scale.top), 0);
  }
}

TEST(Percentage, HasNoZerosAtItsEnd) {
  EXPECT_EQ(percentage(0), "0%");
  EXPECT_EQ(percentage(0.125), "12.5%");
  EXPECT_EQ(percentage(1), "100%");
  EXPECT_EQ(percentage(1.0 / 3), "33.33%");
}

TEST(Path, IsDrawnOfWholeNumbers) {
  EXPECT_EQ(Path().moveTo(1.4, 2.6).lineTo(3, 4).close().draw("line").source(),
            R"(<path class="line" d="M1 3L3 4z"/>)");
  EXPECT_EQ(Path().addBox(1, 2, 3, 4).draw("q5").source(),
            R"(<path class="q5" d="M1 2h3v4h-3z"/>)");
  EXPECT_EQ(Path().draw("line").source(), "");
}

TEST(Line, HasGapsWhereThereIsNoValue) {
  Series series(100);
  series[0] = Point{0, 1, 1, 1};
  series[1] = Point{100, 1, 2, 2};
  series[50] = Point{5000, 0, 0, 0};
  const Scale scale{2, 1};

  EXPECT_EQ(drawLine(series, scale).source(), R"(<path class="line" d="M0 500L100 0M5000 1000"/>)"
                                              R"(<path class="dots" d="M5000 1000L5000 1000"/>)");
  EXPECT_EQ(drawBand(series, scale, &Point::low, &Point::high, "band").source(),
            R"(<path class="band" d="M0 500L100 0L100 500L0 500zM5000 1000L5000 1000z"/>)");
}

TEST(Chart, HasNoStyleOfItsOwn) {
  const Chart chart{"What it <shows>", "course", Scale{2, 1}, {{0, "Jan"}, {0.5, "Feb", true}}};

  EXPECT_EQ(
      draw(chart).source(),
      R"(<svg class="course" role="img" aria-label="What it &lt;shows&gt;">)"
      R"(<svg width="100%" height="100%" viewBox="0 0 10000 1000" preserveAspectRatio="none">)"
      R"(<path class="grid" d="M0 500L10000 500M0 0L10000 0"/>)"
      R"(<path class="grid" d="M5000 0L5000 1000"/></svg>)"
      R"(<text class="y" x="0" y="100%" dx="-8" dy=".32em">0</text>)"
      R"(<text class="y" x="0" y="50%" dx="-8" dy=".32em">1</text>)"
      R"(<text class="y" x="0" y="0%" dx="-8" dy=".32em">2</text>)"
      R"(<text class="x" x="0%" y="100%" dx="2" dy="1.35em">Jan</text>)"
      R"(<text class="x minor" x="50%" y="100%" dx="2" dy="1.35em">Feb</text></svg>)");
}

}  // namespace
}  // namespace watch
