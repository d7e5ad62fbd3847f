// The marks of pictures: their colours, and what they mean.
#pragma once

#include "figures/stretch.h"
#include "report/chart.h"
#include "report/html.h"
#include "report/station.h"

#include <array>
#include <cstddef>
#include <string>

namespace watch {

/// The class of its colour.
const char* colour(Mark mark);

/// What they mean, each with the number of runs that have it.
Html legend(const Station& station);

/// Boxes by their marks, which are drawn in one path each.
class MarkedBoxes {
 public:
  void add(Mark mark, double x, double y, double width, double height);
  /// The worse above the better.
  Html draw() const;

 private:
  std::array<Path, kMarks> paths_;
};

/// A bar of how many runs of the stretch have which mark, for a table.
Html bar(const Stretch& stretch);

}  // namespace watch
