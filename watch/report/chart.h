// Pictures with axes. What is drawn on them has coordinates from 0 to kWidth and, from the top, to
// kHeight, and is stretched to the space that there is; labels are not. No element has a style of
// its own, which the page's policy would refuse.
#pragma once

#include "report/html.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace watch {

inline constexpr double kWidth = 10000;
inline constexpr double kHeight = 1000;

/// "12.5%".
std::string percentage(double share);

/// A label on the left, `share` of the height below the top.
Html rowLabel(double share, const std::string& text);

/// Collects the path of a line or an area. Coordinates are rounded to whole numbers.
class Path {
 public:
  Path& moveTo(double x, double y);
  Path& lineTo(double x, double y);
  Path& close();
  /// A rectangle by itself.
  Path& addBox(double x, double y, double width, double height);

  bool isEmpty() const { return text_.empty(); }
  /// `<path class="name" d="…"/>`, or nothing when it is empty.
  Html draw(const char* name) const;

 private:
  std::string text_;
};

/// Values from 0 at the bottom to a round one at the top, with a line at each step.
struct Scale {
  double top;
  double step;

  double y(double value) const { return kHeight * (1 - value / top); }
};
Scale scaleFor(double most);

/// A point of a series: the middle, and between which nine in ten are. Without a value, the line
/// has a gap.
struct Point {
  double x;
  double low;
  double middle;
  double high;
};
using Series = std::vector<std::optional<Point>>;

/// The line through the middles, with a dot for each point of a few, and for one without
/// neighbours.
Html drawLine(const Series& series, const Scale& scale);
/// The band between two of the values of each point.
Html drawBand(const Series& series, const Scale& scale, double Point::*low, double Point::*high,
              const char* name);

/// A place on the axis of time, and what stands there. A minor one has no label on a phone.
struct Tick {
  double share;
  std::string label;
  bool isMinor = false;
};

struct Chart {
  /// What it shows, for those who don't see it.
  std::string label;
  /// The class, which has the colours and, as a rule, the height.
  std::string style;
  std::optional<Scale> scale;
  std::vector<Tick> ticks;
  bool hasTickLabels = true;
  Html drawing = {};
  /// Labels other than those of the scale and the ticks.
  Html labels = {};
  /// In pixels, where it depends on what is drawn.
  std::optional<std::int64_t> height = {};
};
Html draw(const Chart& chart);

}  // namespace watch
